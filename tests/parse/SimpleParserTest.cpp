#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;

namespace {

TEST(SimpleParser, ReadsSiblingsWithNamesAsWritten) {
    SimpleParser p;
    p.parse("<zuvo:servertime>1000</zuvo:servertime>\n"
            "<zuvo:clienttime kind='c' zone='utc'>2000</zuvo:clienttime>");
    EXPECT_EQ(p.getValue("zuvo:servertime"), "1000");
    EXPECT_EQ(p.getValue("servertime"), "");
    EXPECT_EQ(p.getValue("zuvo:clienttime"), "2000");
    EXPECT_EQ(p.getAttr("zuvo:clienttime", "zone"), "utc");
    EXPECT_EQ(p.getAttr("zuvo:clienttime", "missing"), "");
    EXPECT_EQ(p.getAttr("zuvo:missing", "zone"), "");
    EXPECT_EQ(p.getValue("xml"), "");
}

TEST(SimpleParser, TrimsJoinsAndReplaces) {
    SimpleParser p;
    p.parse("<a x='1'>first</a><a y='2'>  a b \n</a>"
            "<outer>before<inner>in</inner>after</outer>"
            "<lines>\n\tone\n\ttwo\n</lines><cr>v&#13;</cr>");
    EXPECT_EQ(p.getValue("a"), "a b");
    EXPECT_EQ(p.getAttr("a", "x"), "");
    EXPECT_EQ(p.getAttr("a", "y"), "2");
    EXPECT_EQ(p.getValue("inner"), "beforein");
    EXPECT_EQ(p.getValue("outer"), "after");
    EXPECT_EQ(p.getValue("lines"), "onetwo");
    EXPECT_EQ(p.getValue("cr"), "v\r");
}

TEST(SimpleParser, EmptyFragmentParses) {
    SimpleParser p;
    p.parse("");
    EXPECT_EQ(p.getValue("xml"), "");
}

TEST(SimpleParser, MalformedFragmentsThrowExpatText) {
    const struct {
        const char* fragment;
        const char* message;
    } cases[] = {
        {"<a>1</b>", "mismatched tag"},
        {"</xml><b/>", "junk after document element"},
        {"<a>", "mismatched tag"},
        {"<?xml version='1.0'?><a/>", "XML or text declaration not at start of entity"},
    };
    for (const auto& c : cases) {
        SimpleParser p;
        try {
            p.parse(c.fragment);
            ADD_FAILURE() << "no exception for " << c.fragment;
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), c.message) << c.fragment;
        }
    }
}

TEST(SimpleParser, TablesKeepWhatWasReadBeforeAnError) {
    SimpleParser p;
    EXPECT_THROW(p.parse("<a>1</a><b>"), std::runtime_error);
    EXPECT_EQ(p.getValue("a"), "1");
}

} // namespace
