#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const ParentParser::TagConfigTable FAIL_TAGS[] = {{31, "body"}, {32, "item"}};

// Reads "body"; refuses the start of "refuse", and on the start of "imply"
// opens an implied "payload" that nothing closes.
class FailParser : public ParentParser {
public:
    FailParser(Expat& expat, ResponseData& data) : ParentParser(expat, data, FAIL_TAGS, 2) {}
    const char* getParserName() const override { return "FailParser"; }

protected:
    bool canParseResultSubTag(unsigned int tag) const override { return tag == 31; }
    bool onResultSubTagStartEvent(unsigned int, unsigned int, const std::string& name,
                                  const std::map<std::string, std::string>&) override {
        if (name == "imply")
            PushContext(TAG_PAYLOAD);
        return name != "refuse";
    }
    bool onResultSubTagEndEvent(unsigned int, const std::string&) override { return true; }
    void onResultSubDataEvent(unsigned int, const std::string&) override {}
};

struct Rig {
    ExpatParser expat;
    ResponseData data;
    FailParser parser{expat, data};
};

// What a parser without a sink prints for `doc`: the rejection report, or
// for malformed XML the report of showError.
std::string defaultReport(const std::string& doc, const Context& context) {
    Rig rig;
    CoutCapture capture;
    if (!rig.parser.parse(doc, context) && rig.parser.lastFailure().kind == ParseFailure::MALFORMED)
        rig.parser.showError(doc);
    return capture.text();
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += name + " ";
    return text;
}

// The 1-based line and 0-based column of byte `at` of `text`.
std::pair<unsigned long, unsigned long> position(const std::string& text, std::size_t at) {
    const std::string before = text.substr(0, at);
    const std::size_t newline = before.rfind('\n');
    return {1 + std::count(before.begin(), before.end(), '\n'),
            newline == std::string::npos ? at : at - newline - 1};
}

const std::string GOOD = responseDoc(basicHeader(), el(2, "body", "x"));

TEST(ParseFailure, EveryKindRecordedAndRoutedToTheSink) {
    const std::string sealedHeader = el(2, "payload", "c2VhbGVk");
    const struct {
        ParseFailure::Kind kind;
        std::string doc, element, open;
        std::string at; ///< the first occurrence marks where the parse stopped
        int expatCode;
        const char* expatMessage;
    } cases[] = {
        {ParseFailure::REJECTED, responseDoc(basicHeader(), block(2, "body", el(3, "refuse", ""))),
         "refuse", "body result response <start> ", "<zuvo:refuse", 0, ""},
        {ParseFailure::MISMATCHED_END,
         responseDoc(basicHeader(), block(2, "body", el(3, "imply", ""))), "body",
         "payload body result response <start> ", "</zuvo:body", 0, ""},
        {ParseFailure::MISSING_METHOD, responseDoc(basicHeader(), "", ""), "result",
         "response <start> ", "<zuvo:result", 0, ""},
        {ParseFailure::NO_CIPHER_CONTEXT, responseDoc(sealedHeader, ""), "payload",
         "responseheader response <start> ", "</zuvo:payload", 0, ""},
        {ParseFailure::MALFORMED,
         responseDoc(basicHeader(), block(2, "body", el(3, "item", "a &bad; b"))), "",
         "item body result response <start> ", "&bad;", XML_ERROR_UNDEFINED_ENTITY,
         "undefined entity"},
        {ParseFailure::MALFORMED, "", "", "<start> ", "", XML_ERROR_NO_ELEMENTS,
         "no element found"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.doc);
        const std::string expectedReport = defaultReport(c.doc, Context());
        ASSERT_FALSE(expectedReport.empty());

        Rig rig;
        std::vector<std::string> reports;
        rig.parser.setReportSink([&](const std::string& report) { reports.push_back(report); });
        CoutCapture capture;
        ASSERT_TRUE(rig.parser.parse(GOOD, Context())) << "a failure before is cleared";
        EXPECT_FALSE(rig.parser.parse(c.doc, Context()));
        if (c.kind == ParseFailure::MALFORMED) {
            EXPECT_TRUE(reports.empty()) << "malformed XML is reported on request only";
            rig.parser.showError(c.doc);
        }
        EXPECT_EQ(capture.text(), "") << "nothing reaches standard output while a sink is set";
        EXPECT_EQ(reports, std::vector<std::string>{expectedReport});

        const ParseFailure& f = rig.parser.lastFailure();
        const std::size_t at = c.doc.find(c.at);
        EXPECT_EQ(f.kind, c.kind);
        EXPECT_EQ(f.parserName, "FailParser");
        EXPECT_EQ(f.element, c.element);
        EXPECT_EQ(joined(f.openElements), c.open);
        EXPECT_EQ(f.expatCode, c.expatCode);
        EXPECT_EQ(f.expatMessage, c.expatMessage);
        EXPECT_EQ(f.byteOffset, static_cast<long long>(at));
        EXPECT_EQ(std::make_pair(f.line, f.column), position(c.doc, at));

        // A good document clears the record; an empty sink restores standard output.
        EXPECT_TRUE(rig.parser.parse(GOOD, Context()));
        EXPECT_EQ(f.kind, ParseFailure::NONE);
        EXPECT_TRUE(f.parserName.empty() && f.openElements.empty() && f.byteOffset == -1);
        rig.parser.setReportSink(nullptr);
        rig.parser.parse(c.doc, Context());
        if (c.kind == ParseFailure::MALFORMED)
            rig.parser.showError(c.doc);
        EXPECT_EQ(capture.text(), expectedReport);
        EXPECT_EQ(reports.size(), 1u);
    }
}

TEST(ParseFailure, ThrownPayloadErrorLeavesNoRecord) {
    Rig rig;
    const std::string doc =
        responseDoc(el(2, "payload", "%%%", " encrypted=\"false\""), el(2, "body", "x"));
    const CoutCapture capture;
    ASSERT_FALSE(rig.parser.parse(responseDoc(basicHeader(), "", ""), Context()));
    EXPECT_THROW(rig.parser.parse(doc, Context()), std::invalid_argument);
    EXPECT_EQ(rig.parser.lastFailure().kind, ParseFailure::NONE);
}

TEST(ParseFailure, ParsersOnTwoThreadsKeepTheirOwnSinks) {
    const std::string rejected = responseDoc(basicHeader(), block(2, "body", el(3, "refuse", "")));
    const std::string noMethod = responseDoc(basicHeader(), "", "");
    const std::string reports[] = {defaultReport(rejected, Context()),
                                   defaultReport(noMethod, Context())};
    const int rounds = 200;
    int mixedUp[2] = {0, 0};
    int received[2] = {0, 0};
    auto work = [&](int id) {
        Rig rig;
        rig.parser.setReportSink([&, id](const std::string& report) {
            ++received[id];
            mixedUp[id] += report != reports[id];
        });
        const ParseFailure::Kind kind =
            id == 0 ? ParseFailure::REJECTED : ParseFailure::MISSING_METHOD;
        for (int i = 0; i < rounds; ++i) {
            mixedUp[id] += rig.parser.parse(id == 0 ? rejected : noMethod, Context());
            mixedUp[id] += rig.parser.lastFailure().kind != kind;
            mixedUp[id] += !rig.parser.parse(GOOD, Context());
        }
    };
    CoutCapture capture;
    std::thread first(work, 0), second(work, 1);
    first.join();
    second.join();
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(mixedUp[0] + mixedUp[1], 0);
    EXPECT_EQ(received[0], rounds);
    EXPECT_EQ(received[1], rounds);
}

} // namespace
