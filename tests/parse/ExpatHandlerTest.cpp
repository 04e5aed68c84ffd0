#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;

namespace {

// Writes every event as text; stops at the start of a chosen element.
class EventLog : public ExpatHandler {
public:
    explicit EventLog(Expat& expat) : ExpatHandler(expat) {}
    bool run(const std::string& text) {
        events.clear();
        reset();
        setContext();
        return parse(text);
    }
    std::string events, stopAt;

protected:
    void onTagStartEvent(const std::string& name,
                         const std::map<std::string, std::string>& attributes) override {
        events += "<" + name;
        for (const auto& a : attributes)
            events += " " + a.first + "=" + a.second;
        events += ">";
        if (name == stopAt)
            abortParsing();
    }
    void onTagEndEvent(const std::string& name) override { events += "</" + name + ">"; }
    void onDataEvent(const std::string& text) override { events += "[" + text + "]"; }
};

TEST(ExpatHandler, StripZuvoAndIsBlank) {
    EXPECT_EQ(stripZuvo("zuvo:zuvo:a"), "zuvo:a");
    EXPECT_EQ(stripZuvo("xsi:zuvo:type"), "xsi:zuvo:type");
    EXPECT_EQ(stripZuvo("zuvo"), "zuvo");
    EXPECT_TRUE(isBlank("") && isBlank(" \t\n "));
    EXPECT_FALSE(isBlank(" \r") || isBlank("\tx"));
}

TEST(ExpatHandler, NamesAttributesAndTextAreNormalised) {
    // Defaulted attributes ("d") are left out; of two names that strip alike
    // the first wins; each piece of text is trimmed at its end on its own.
    ExpatParser expat;
    EventLog log(expat);
    ASSERT_TRUE(log.run("<!DOCTYPE zuvo:r [<!ATTLIST zuvo:r d CDATA 'dflt'>]>\n"
                        "<zuvo:r zuvo:m='zuvo:x' m='second' b='1'>\n"
                        "\t<x:zuvo:e>word\t\n\t</x:zuvo:e>\n\t<zuvo:s>two  </zuvo:s>\n"
                        "\t<zuvo:t>one\n\ttwo&#13;\n</zuvo:t>\n\t<zuvo:u>   \n</zuvo:u>\n"
                        "\t<zuvo:v>a&amp;b</zuvo:v>\n</zuvo:r>"));
    EXPECT_EQ(log.events, "<r b=1 m=x><x:zuvo:e>[word]</x:zuvo:e><s>[two  ]</s>"
                          "<t>[one][\ttwo][\r]</t><u></u><v>[a][&][b]</v></r>");
}

TEST(ExpatHandler, StopsAndReuse) {
    ExpatParser expat;
    EventLog log(expat);
    EXPECT_FALSE(log.run("<a><b></a>"));

    // No event follows a stop, not even the end of the empty element.
    log.stopAt = "b";
    EXPECT_FALSE(log.run("<a><b/><c/></a>"));
    EXPECT_EQ(log.events, "<a><b>");

    log.stopAt.clear();
    EXPECT_TRUE(log.run("<a><b/></a>"));
    EXPECT_EQ(log.events, "<a><b></b></a>");

    Expat none = {NULL};
    EXPECT_THROW(EventLog(none).run("<a/>"), std::invalid_argument);
}

} // namespace
