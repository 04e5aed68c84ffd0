#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <thread>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const ParentParser::TagConfigTable TEST_TAGS[] = {
    {31, "body"}, {32, "item"}, {40, "payload"}, {33, "alias"}, {33, "twin"}};

// A sub-parser that logs its hooks. The names it is given pick elements
// whose start or end it refuses, whose end throws, or at whose start it opens
// an implied "payload" that nothing closes.
class TestParser : public ParentParser {
public:
    TestParser(Expat& expat, ResponseData& data, const TagConfigTable* table = TEST_TAGS,
               unsigned int count = 5)
        : ParentParser(expat, data, table, count) {}
    const char* getParserName() const override { return "TestParser"; }
    std::string log, rejectStart, rejectEnd, noContextAt, logicErrorAt, implyAt;

protected:
    bool canParseResultSubTag(unsigned int tag) const override { return tag == 31; }
    bool onResultSubTagStartEvent(unsigned int parent, unsigned int tag, const std::string& name,
                                  const std::map<std::string, std::string>&) override {
        log += "<" + std::to_string(parent) + ">" + std::to_string(tag) + " ";
        if (name == implyAt)
            PushContext(TAG_PAYLOAD);
        return name != rejectStart;
    }
    bool onResultSubTagEndEvent(unsigned int tag, const std::string& name) override {
        if (name == noContextAt)
            throw ZuvoExceptionNoCipherContext();
        if (name == logicErrorAt)
            throw std::logic_error("hook failed");
        log += "/" + std::to_string(tag) + " ";
        return name != rejectEnd;
    }
    void onResultSubDataEvent(unsigned int tag, const std::string& text) override {
        log += std::to_string(tag) + "[" + text + "] ";
    }
};

typedef Harness<TestParser, ResponseData> Rig;

// One document parsed by a fresh TestParser into a fresh record.
struct Parsed : Rig {
    explicit Parsed(const std::string& doc, const Context& context = Context())
        : ok(parse(doc, context)) {}
    const bool ok;
};

TEST(ParentParser, FillsEveryHeaderField) {
    // Numbers are read by the stream rule: their leading part, or 0.
    // clang-format off
    const char* const params[][2] = {
        {"code", "-12"}, {"retrycontrol", "3"}, {"mintimeout", "45x"},
        {"lowfrequencypollinterval", "3600"}, {"mediumfrequencypollinterval", " 600"},
        {"highfrequencypollinterval", "60"}, {"hightomediumpollswitchinterval", "12"},
        {"mediumtolowpollswitchinterval", "abc"}, {"loginterval", "86400"},
        {"protocolversion", "2.9"}, {"usertext", "Hi there "}, {"loglevel", "debug"},
        {"supportphone", "+1 555 0100"}, {"testdriveripaddr", "10.0.0.9"}};
    // clang-format on
    std::string lines;
    for (const auto& param : params)
        lines += el(3, param[0], param[1]);
    lines += block(3, "loguploads",
                   el(4, "crash", "") + el(4, "unknown", "") + el(4, "application", "") +
                       el(4, "performance", "") + el(4, "movielog", "") + el(4, "crash", ""));
    const std::string header =
        block(2, "parameters", lines) +
        el(2, "payload", base64(timesFragment("4294967295", "77")), " encrypted=\"false\"");

    const Parsed run(responseDoc(header, "", " method=\"ping\""));
    ASSERT_TRUE(run.ok) << run.out;
    EXPECT_EQ(run.out, "");
    const ResponseData& d = run.data;
    std::ostringstream fields;
    fields << d.code << ' ' << d.retryControl << ' ' << d.minTimeout << ' '
           << d.lowFrequencyPollInterval << ' ' << d.mediumFrequencyPollInterval << ' '
           << d.highFrequencyPollInterval << ' ' << d.highToMediumPollSwitchInterval << ' '
           << d.mediumToLowPollSwitchInterval << ' ' << d.logInterval << '|' << d.protocolVersion
           << '|' << d.userText << '|' << d.logLevel << '|' << d.supportPhone << '|'
           << d.testDriverIpAddr << '|' << d.serverTime << ' ' << d.clientTime << ' ' << d.method;
    EXPECT_EQ(fields.str(),
              "-12 3 45 3600 600 60 12 0 86400|2.9|Hi there |debug|+1 555 0100|10.0.0.9|"
              "4294967295 77 ping");
    typedef ResponseData R;
    EXPECT_EQ(d.logUploads,
              std::vector<R::LogCategoryType>({R::CATEGORY_CRASH, R::CATEGORY_APPLICATION,
                                               R::CATEGORY_PERFORMANCE, R::CATEGORY_MOVIELOG,
                                               R::CATEGORY_CRASH}));
}

TEST(ParentParser, SuccessAndActionId) {
    const struct {
        std::string status;
        bool success;
        int actionId;
    } cases[] = {
        {el(3, "actionid", "5") + el(3, "success", "true"), true, 0},
        {el(3, "success", "true") + el(3, "actionid", "5"), true, 5},
        {el(3, "actionid", "5") + el(3, "success", "True"), false, 5},
        {el(3, "actionid", "5") + el(3, "success", "true "), false, 5},
    };
    for (const auto& c : cases) {
        const Parsed run(responseDoc(block(2, "status", c.status), ""));
        EXPECT_EQ(run.data.success, c.success) << c.status;
        EXPECT_EQ(run.data.actionId, c.actionId) << c.status;
    }
}

TEST(ParentParser, HeaderVersionTextAndUntouchedFields) {
    // A "protocolversion" element, even one after "result", overrides the
    // version attribute; a "response" below the root is not read.
    EXPECT_EQ(Parsed(responseDoc("", "")).data.protocolVersion, "2.7");
    std::string late = responseDoc(el(2, "protocolversion", "3.1"), "");
    late.insert(late.rfind("</zuvo:response>"), el(1, "protocolversion", "4.0"));
    EXPECT_EQ(Parsed(late).data.protocolVersion, "4.0");
    EXPECT_EQ(Parsed("<a><zuvo:response version='8'/></a>").data.protocolVersion, "");

    // Text before a child joins the child's text and is dropped with it;
    // unknown elements are pushed and popped and their text is dropped.
    Rig run;
    run.data.code = 9;
    run.data.logUploads.push_back(ResponseData::CATEGORY_CRASH);
    ASSERT_TRUE(
        run.parse(responseDoc(el(2, "usertext", "before<zuvo:x>inner</zuvo:x>after") +
                                  el(2, "supportphone", "<zuvo:mystery>lost</zuvo:mystery>"),
                              "")));
    EXPECT_EQ(run.data.userText, "after");
    EXPECT_EQ(run.data.supportPhone, "");
    EXPECT_EQ(run.data.code, 9);
    EXPECT_EQ(run.data.logUploads.size(), 1u);
}

TEST(ParentParser, EncryptedAttributeDecidesTheDecoding) {
    // Decoding the wrong way throws: a sealed text is no Base64 fragment,
    // and a Base64 text does not open.
    const struct {
        const char* attrs;
        bool decrypted;
    } cases[] = {{" encrypted=\"false\"", false},
                 {" zuvo:encrypted=\"false\"", false},
                 {" encrypted=\"FALSE\"", true},
                 {" encrypted=\"true\"", true},
                 {"", true}};
    const Context context = keyedContext();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.attrs);
        const std::string payload =
            c.decrypted ? seal(context, timesFragment("1", "2")) : base64(timesFragment("3", "4"));
        const Parsed run(responseDoc(el(2, "payload", payload, c.attrs), ""), context);
        EXPECT_TRUE(run.ok);
        EXPECT_EQ(run.data.serverTime, c.decrypted ? 1u : 3u);
    }
}

TEST(ParentParser, ResultModeEntryAndExit) {
    // "usertext" before and after the body is read as a header element; the
    // body and everything in it go to the hooks, including a nested "result".
    const std::string result =
        el(2, "usertext", "early") +
        block(2, "body",
              el(3, "item", "one") + block(3, "payload", el(4, "unknown", "x")) +
                  el(3, "result", "r")) +
        el(2, "usertext", "late") + el(2, "body", "again");
    const Parsed run(responseDoc("", result));
    ASSERT_TRUE(run.ok) << run.out;
    EXPECT_EQ(run.parser.log, "<3>31 <31>32 32[one] /32 <31>24 <24>30 30[x] /30 /24 "
                              "<31>3 3[r] /3 /31 <3>31 31[again] /31 ");
    EXPECT_EQ(run.data.userText, "late");
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

const std::string GOOD = responseDoc(basicHeader(), "");
const std::string BODY = block(2, "body", el(3, "item", "one") + el(3, "twin", ""));

TEST(ParentParser, EveryFailureRecordedAndReportedOnce) {
    const std::string doc = responseDoc(basicHeader(), BODY);
    typedef ParseFailure F;
    const struct {
        F::Kind kind;
        std::string doc;
        std::string TestParser::*hook; ///< set to `hookAt`, when given
        std::string hookAt, element, open;
        std::string at; ///< the first occurrence marks where the parse stopped
        int expatCode;
        std::string expatMessage;
    } cases[] = {
        {F::MISSING_METHOD, responseDoc(basicHeader(), BODY, ""), nullptr, "", "result",
         "response <start> ", "<zuvo:result", 0, ""},
        {F::REJECTED, doc, &TestParser::rejectStart, "body", "body", "result response <start> ",
         "<zuvo:body", 0, ""},
        {F::REJECTED, doc, &TestParser::rejectEnd, "twin", "twin",
         "alias body result response <start> ", "</zuvo:twin", 0, ""},
        {F::NO_CIPHER_CONTEXT, doc, &TestParser::noContextAt, "item", "item",
         "item body result response <start> ", "</zuvo:item", 0, ""},
        {F::NO_CIPHER_CONTEXT, responseDoc(basicHeader() + el(2, "payload", "c2VhbGVk"), BODY),
         nullptr, "", "payload", "responseheader response <start> ",
         "</zuvo:payload>\n\t</zuvo:responseheader", 0, ""},
        {F::MISMATCHED_END, responseDoc(basicHeader(), block(2, "body", el(3, "imply", ""))),
         &TestParser::implyAt, "imply", "body", "payload body result response <start> ",
         "</zuvo:body", 0, ""},
        {F::MALFORMED, responseDoc(basicHeader(), block(2, "body", el(3, "item", "a &bad; b"))),
         nullptr, "", "", "item body result response <start> ", "&bad;", XML_ERROR_UNDEFINED_ENTITY,
         "undefined entity"},
        {F::MALFORMED, "", nullptr, "", "", "<start> ", "", XML_ERROR_NO_ELEMENTS,
         "no element found"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.doc);
        const bool malformed = c.kind == F::MALFORMED;
        const std::size_t at = c.doc.find(c.at);
        // Malformed XML is reported with up to 50 bytes either side of the
        // error, marked.
        const std::string expected =
            malformed
                ? "Parse error at offset " + std::to_string(at) + ": " + c.expatMessage + "\n" +
                      c.doc.substr(at < 50 ? 0 : at - 50, std::min<std::size_t>(at, 50)) + "[#!#]" +
                      c.doc.substr(at, 50) + "\n"
                : rejection("TestParser", c.element, c.open);
        Rig run;
        if (c.hook)
            run.parser.*c.hook = c.hookAt;
        std::vector<std::string> reports;
        run.parser.setReportSink([&](const std::string& report) { reports.push_back(report); });
        EXPECT_FALSE(run.parse(c.doc));
        EXPECT_EQ(run.data.serverTime, c.doc.empty() ? 0u : 1000u) << "what was read stays";
        if (malformed) {
            EXPECT_TRUE(reports.empty()) << "malformed XML is reported on request only";
            run.out = run.report(c.doc);
        }
        EXPECT_EQ(run.out, "") << "nothing reaches standard output while a sink is set";
        EXPECT_EQ(reports, std::vector<std::string>{expected});

        const ParseFailure& f = run.parser.lastFailure();
        EXPECT_EQ(f.kind, c.kind);
        EXPECT_EQ(f.parserName, "TestParser");
        EXPECT_EQ(f.element, c.element);
        EXPECT_EQ(joined(f.openElements), c.open);
        EXPECT_EQ(f.expatCode, c.expatCode);
        EXPECT_EQ(f.expatMessage, c.expatMessage);
        EXPECT_EQ(f.byteOffset, static_cast<long long>(at));
        EXPECT_EQ(std::make_pair(f.line, f.column), position(c.doc, at));

        // A good document clears the record; an empty sink restores standard output.
        EXPECT_TRUE(run.parse(GOOD));
        EXPECT_EQ(f.kind, ParseFailure::NONE);
        EXPECT_TRUE(f.parserName.empty() && f.openElements.empty() && f.byteOffset == -1);
        run.parser.setReportSink(nullptr);
        run.parse(c.doc);
        EXPECT_EQ(run.out + (malformed ? run.report(c.doc) : ""), expected);
        EXPECT_EQ(reports.size(), 1u);
        // Expat's report names the same place as the record, whatever the kind.
        EXPECT_EQ(run.report(c.doc).rfind("Parse error at offset " + std::to_string(at) + ": ", 0),
                  0u);
    }
}

TEST(ParentParser, PayloadsThatCannotBeOpenedThrowAndAreRecorded) {
    const std::string sealed = seal(keyedContext(7), timesFragment("1", "2"));
    const struct {
        std::string payload, attrs;
        Context context;
        bool invalidArgument; ///< else std::runtime_error
    } cases[] = {
        {sealed, "", keyedContext(8), false},                   // wrong key
        {sealed, "", Context(new krel::KrelContext()), false},  // a context without a key
        {sealed.substr(0, 20), "", keyedContext(7), false},     // truncated
        {"%%%", " encrypted=\"false\"", keyedContext(7), true}, // bad Base64
    };
    for (const auto& c : cases) {
        const std::string doc = responseDoc(el(2, "payload", c.payload, c.attrs), BODY);
        SCOPED_TRACE(doc);
        Rig run;
        std::vector<std::string> reports;
        run.parser.setReportSink([&](const std::string& report) { reports.push_back(report); });
        if (c.invalidArgument)
            EXPECT_THROW(run.parse(doc, c.context), std::invalid_argument);
        else
            EXPECT_THROW(run.parse(doc, c.context), std::runtime_error);
        EXPECT_TRUE(reports.empty()) << "nothing is reported for a payload";
        const ParseFailure& f = run.parser.lastFailure();
        const std::size_t at = doc.find("</zuvo:payload");
        EXPECT_EQ(f.kind, ParseFailure::PAYLOAD);
        EXPECT_EQ(f.element, "payload");
        EXPECT_EQ(joined(f.openElements), "responseheader response <start> ");
        EXPECT_EQ(f.byteOffset, static_cast<long long>(at));
        EXPECT_EQ(std::make_pair(f.line, f.column), position(doc, at));
        run.report(doc);
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports[0].rfind("Parse error at offset " + std::to_string(at) + ": ", 0), 0u);
        EXPECT_TRUE(run.parse(GOOD));
        EXPECT_EQ(f.kind, ParseFailure::NONE);
    }
}

TEST(ParentParser, OtherThrownErrorsReachTheCallerAndLeaveNoRecord) {
    const std::string doc = responseDoc(basicHeader(), BODY);
    Rig run;
    ASSERT_FALSE(run.parse(responseDoc(basicHeader(), "", "")));
    EXPECT_THROW(run.report("<zuvo:response>"), std::out_of_range) << "not the text parsed";
    // A payload that opens but is no fragment is not a payload failure.
    EXPECT_THROW(
        run.parse(responseDoc(el(2, "payload", base64("<a>"), " encrypted=\"false\""), "")),
        std::runtime_error);
    EXPECT_EQ(run.parser.lastFailure().kind, ParseFailure::NONE);
    // Any exception from a hook reaches the caller; the parser is then reusable.
    run.parser.logicErrorAt = "item";
    EXPECT_THROW(run.parse(doc), std::logic_error);
    run.parser.logicErrorAt = run.parser.log = "";
    EXPECT_TRUE(run.parse(doc));
    EXPECT_EQ(run.parser.log, "<3>31 <31>32 32[one] /32 <31>33 /33 /31 ");
}

TEST(ParentParser, ParsersOnTwoThreadsKeepTheirOwnSinksAndRecords) {
    const std::string docs[] = {responseDoc(basicHeader(), BODY),
                                responseDoc(basicHeader(), "", "")};
    const ParseFailure::Kind kinds[] = {ParseFailure::REJECTED, ParseFailure::MISSING_METHOD};
    const int rounds = 200;
    std::vector<std::string> reports[2];
    int wrong[2] = {0, 0};
    auto work = [&](int id) {
        Rig run;
        run.parser.rejectStart = "body";
        run.parser.setReportSink([&, id](const std::string& r) { reports[id].push_back(r); });
        for (int i = 0; i < rounds; ++i) {
            wrong[id] += run.parser.parse(docs[id], Context()) ||
                         run.parser.lastFailure().kind != kinds[id] ||
                         !run.parser.parse(GOOD, Context());
        }
    };
    CoutCapture capture;
    std::thread first(work, 0), second(work, 1);
    first.join();
    second.join();
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(wrong[0] + wrong[1], 0);
    EXPECT_EQ(reports[0], std::vector<std::string>(
                              rounds, rejection("TestParser", "body", "result response <start> ")));
    EXPECT_EQ(reports[1], std::vector<std::string>(
                              rounds, rejection("TestParser", "result", "response <start> ")));
}

TEST(ParentParser, TagTables) {
    ExpatParser expat;
    ResponseData data;
    ParentParser::TagConfigTable rows[] = {{31, "alpha"}, {32, NULL}};
    const TestParser parser(expat, data);
    const TestParser first(expat, data, rows, 2);
    rows[0].tagName = "beta"; // same address, new content: a table of its own
    const TestParser second(expat, data, rows, 2);
    EXPECT_EQ(parser.tagStrToTagType("zuvo:item"), 30u);
    EXPECT_EQ(first.tagStrToTagType("alpha"), 31u);
    EXPECT_EQ(second.tagStrToTagType("alpha"), 30u);
    EXPECT_EQ(second.tagStrToTagType("beta"), 31u);
    EXPECT_EQ(parser.getTagTypeName(40), "<unknown>");
}

// Names are told apart by their length and first and last eight bytes, and
// by the bytes between for longer ones: lookalikes of every length class.
TEST(ParentParser, LookalikeNamesKeepTheirIds) {
    const ParentParser::TagConfigTable rows[] = {{31, "body"},
                                                 {32, "a"},
                                                 {33, "abcdefgh"},
                                                 {34, "abcdefgh12345678"},
                                                 {35, "abcdefghX12345678"},
                                                 {36, "abcdefghY12345678"},
                                                 {37, "abcdefgh-middle-12345678"}};
    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data, rows, 7);
    const struct {
        const char* name;
        unsigned int id;
    } cases[] = {{"a", 32},
                 {"b", 30},
                 {"abcdefgh", 33},
                 {"abcdefg", 30},
                 {"abcdefgh1", 30},
                 {"abcdefgh12345678", 34},
                 {"abcdefgh1234567", 30},
                 {"abcdefghX12345678", 35},
                 {"abcdefghY12345678", 36},
                 {"abcdefghZ12345678", 30},
                 {"abcdefgh-middle-12345678", 37},
                 {"abcdefgh-niddle-12345678", 30}};
    std::string body;
    std::string expected = "<3>31 ";
    for (const auto& c : cases) {
        EXPECT_EQ(parser.tagStrToTagType(c.name), c.id) << c.name;
        body += el(3, c.name, "");
        expected += "<31>" + std::to_string(c.id) + " /" + std::to_string(c.id) + " ";
    }
    // Through a parse: every start and end reaches the hooks with its id.
    ASSERT_TRUE(parser.parse(responseDoc("", block(2, "body", body)), Context()));
    EXPECT_EQ(parser.log, expected + "/31 ");
}

} // namespace
