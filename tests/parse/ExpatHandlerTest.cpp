#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;

namespace {

// Writes every event as one line; can stop or throw at a chosen element.
class EventLog : public ExpatHandler {
public:
    explicit EventLog(Expat& expat) : ExpatHandler(expat) {}

    bool run(const std::string& text) {
        events.clear();
        reset();
        setContext();
        return parse(text);
    }

    std::string events;
    std::string stopAt;  // abortParsing() at the start of this element
    std::string throwAt; // throw std::logic_error at the start of this element

protected:
    void onTagStartEvent(const std::string& name,
                         const std::map<std::string, std::string>& attributes) override {
        events += "<" + name;
        for (const auto& a : attributes)
            events += " " + a.first + "=" + a.second;
        events += ">";
        if (name == stopAt)
            abortParsing();
        if (name == throwAt)
            throw std::logic_error("thrown by " + name);
    }
    void onTagEndEvent(const std::string& name) override { events += "</" + name + ">"; }
    void onDataEvent(const std::string& text) override { events += "[" + text + "]"; }
};

TEST(ExpatHandler, StripZuvoAndIsBlank) {
    EXPECT_EQ(stripZuvo("zuvo:result"), "result");
    EXPECT_EQ(stripZuvo("xsi:zuvo:type"), "xsi:zuvo:type");
    EXPECT_EQ(stripZuvo("zuvo"), "zuvo");
    EXPECT_EQ(stripZuvo("zuvo:"), "");
    EXPECT_EQ(stripZuvo("zuvo:zuvo:a"), "zuvo:a");
    EXPECT_TRUE(isBlank(""));
    EXPECT_TRUE(isBlank(" \t\n "));
    EXPECT_FALSE(isBlank(" \r"));
    EXPECT_FALSE(isBlank("\tx"));
}

TEST(ExpatHandler, NamesAttributesAndTextAreNormalised) {
    ExpatParser expat;
    EventLog log(expat);
    // Defaulted attributes ("d") are not reported; the first of two names
    // that strip to the same one wins; indentation-only text is dropped;
    // each line of text arrives as its own trimmed piece.
    ASSERT_TRUE(log.run("<!DOCTYPE zuvo:r [<!ATTLIST zuvo:r d CDATA 'dflt'>]>\n"
                        "<zuvo:r zuvo:m='zuvo:x' m='second' b='1'>\n"
                        "\t<x:zuvo:e>word\t\n\t</x:zuvo:e>\n"
                        "\t<zuvo:s>two  </zuvo:s>\n"
                        "\t<zuvo:t>one\n\ttwo&#13;\n</zuvo:t>\n"
                        "\t<zuvo:u>   \n</zuvo:u>\n"
                        "\t<zuvo:v>a&amp;b</zuvo:v>\n"
                        "</zuvo:r>"));
    EXPECT_EQ(log.events, "<r b=1 m=x>"
                          "<x:zuvo:e>[word]</x:zuvo:e>"
                          "<s>[two  ]</s>"
                          "<t>[one][\ttwo][\r]</t>"
                          "<u></u>"
                          "<v>[a][&][b]</v>"
                          "</r>");
}

TEST(ExpatHandler, MalformedAndAbortedDocumentsGiveFalse) {
    ExpatParser expat;
    EventLog log(expat);
    EXPECT_FALSE(log.run("<a><b></a>"));
    EXPECT_EQ(XML_GetErrorCode(expat.get().parser), XML_ERROR_TAG_MISMATCH);

    // No event follows a stop, not even the end of the empty element.
    log.stopAt = "b";
    EXPECT_FALSE(log.run("<a><b/><c/></a>"));
    EXPECT_EQ(log.events, "<a><b>");
    EXPECT_EQ(XML_GetErrorCode(expat.get().parser), XML_ERROR_ABORTED);
}

TEST(ExpatHandler, EventExceptionIsRethrownAndTheHandleStaysUsable) {
    ExpatParser expat;
    EventLog log(expat);
    log.throwAt = "b";
    try {
        log.run("<a><b/><c/></a>");
        FAIL() << "no exception";
    } catch (const std::logic_error& e) {
        EXPECT_STREQ(e.what(), "thrown by b");
    }
    EXPECT_EQ(log.events, "<a><b>");

    log.throwAt.clear();
    EXPECT_TRUE(log.run("<a><b/></a>"));
    EXPECT_EQ(log.events, "<a><b></b></a>");
}

TEST(ExpatHandler, MissingHandleIsAnArgumentError) {
    Expat none = {NULL};
    EventLog log(none);
    EXPECT_THROW(log.run("<a/>"), std::invalid_argument);
}

} // namespace
