#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(SimpleParser, ReadsAFlatFragment) {
    SimpleParser p;
    p.parse("<zuvo:servertime>1000</zuvo:servertime>\n"
            "<a x='1'>first</a><a y='2'>  a b \n</a>"
            "<outer>before<inner>in</inner>after</outer><cr>v&#13;</cr>");
    EXPECT_EQ(p.getValue("zuvo:servertime"), "1000");
    EXPECT_EQ(p.getValue("servertime"), "");
    EXPECT_EQ(p.getValue("a"), "a b");
    EXPECT_EQ(p.getAttr("a", "x"), "") << "the later element's attributes replace";
    EXPECT_EQ(p.getAttr("a", "y"), "2");
    EXPECT_EQ(p.getAttr("none", "y"), "");
    EXPECT_EQ(p.getValue("inner"), "beforein");
    EXPECT_EQ(p.getValue("outer"), "after");
    EXPECT_EQ(p.getValue("cr"), "v\r");
}

TEST(SimpleParser, MalformedFragmentsThrowExpatText) {
    const char* const cases[][2] = {
        {"<a>1</a><b>", "mismatched tag"},
        {"</xml><b/>", "junk after document element"},
        {"<?xml version='1.0'?>", "XML or text declaration not at start of entity"},
    };
    for (const auto& c : cases) {
        SimpleParser p;
        try {
            p.parse(c[0]);
            ADD_FAILURE() << "no exception for " << c[0];
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), c[1]);
        }
        EXPECT_EQ(p.getValue("a"), c[0][1] == 'a' ? "1" : "") << "what was read stays";
    }
}

// Fragments follow one another on a thread through one reused expat parser:
// whatever came before (a failure, a stopped parse, a long fragment, a
// fragment on another thread) leaves the next result and message untouched.
TEST(SimpleParser, EachFragmentReadsAsIfFirst) {
    const std::string longText(40000, 'x');
    const struct {
        std::string fragment;
        const char* error; // null: parses
    } sequence[] = {
        {"<a>1</a><b>", "mismatched tag"},
        {"<a>2</a>", nullptr},
        {"<?xml version='1.0'?>", "XML or text declaration not at start of entity"},
        {"<a>" + longText + "</a>", nullptr},
        {"<a>3</a><b x='1' x='2'/>", "duplicate attribute"},
        {"<a>5</a>", nullptr},
    };
    const auto readAll = [&] {
        for (const auto& step : sequence) {
            SimpleParser p;
            try {
                p.parse(step.fragment);
                EXPECT_EQ(step.error, nullptr) << step.fragment.substr(0, 20);
                EXPECT_EQ(p.getValue("a"), step.fragment.substr(3, step.fragment.size() - 7));
            } catch (const std::runtime_error& e) {
                ASSERT_NE(step.error, nullptr) << e.what();
                EXPECT_STREQ(e.what(), step.error);
            }
        }
    };
    readAll();
    std::thread other(readAll);
    other.join();
    readAll();
}

// The payload reader is the fragment reader over a decoded payload.
TEST(PayloadDecryptor, BothFormsAndAMissingContext) {
    const std::string fragment = "<zuvo:cticket expiration=\"99\">T1ck</zuvo:cticket>\n";
    const Context context = keyedContext();
    const PayloadDecryptor plain(Context(), base64(fragment), false);
    const PayloadDecryptor sealed(context, seal(context, fragment), true);
    for (const PayloadDecryptor* p : {&plain, &sealed}) {
        EXPECT_EQ(p->getValueString("zuvo:cticket"), "T1ck");
        EXPECT_EQ(p->getAttr("zuvo:cticket", "expiration"), "99");
        EXPECT_EQ(p->getValueUcVector("zuvo:cticket"),
                  std::vector<unsigned char>({'T', '1', 'c', 'k'}));
        EXPECT_TRUE(p->getValueUcVector("zuvo:rs").empty());
    }
    EXPECT_EQ(PayloadDecryptor(Context(), "", false).getValueString("xml"), "");
    try {
        PayloadDecryptor(Context(), "not even Base64!", true);
        FAIL() << "no exception";
    } catch (const ZuvoExceptionNoCipherContext& e) {
        EXPECT_STREQ(e.what(), "No ZUVO cipher context");
    }
}

} // namespace
