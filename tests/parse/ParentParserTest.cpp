#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const ParentParser::TagConfigTable TEST_TAGS[] = {
    {31, "body"}, {32, "item"}, {40, "payload"}, {33, "alias"}, {33, "twin"}};

// A sub-parser that logs its hooks; `reject` and `fail` name elements whose
// start (or end) it refuses, or whose end throws.
class TestParser : public ParentParser {
public:
    TestParser(Expat& expat, ResponseData& data, const TagConfigTable* table = TEST_TAGS,
               unsigned int count = 5)
        : ParentParser(expat, data, table, count) {}
    const char* getParserName() const override { return "TestParser"; }
    std::string log, rejectStart, rejectEnd, noContextAt, logicErrorAt;

protected:
    bool canParseResultSubTag(unsigned int tag) const override { return tag == 31; }
    bool onResultSubTagStartEvent(unsigned int parent, unsigned int tag, const std::string& name,
                                  const std::map<std::string, std::string>&) override {
        log += "<" + std::to_string(parent) + ">" + std::to_string(tag) + " ";
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
    const struct {
        const char* tag;
        const char* text;
        int ResponseData::*field;
        int expected;
    } ints[] = {
        {"code", "-12", &ResponseData::code, -12},
        {"retrycontrol", "3", &ResponseData::retryControl, 3},
        {"mintimeout", "45x", &ResponseData::minTimeout, 45},
        {"lowfrequencypollinterval", "3600", &ResponseData::lowFrequencyPollInterval, 3600},
        {"mediumfrequencypollinterval", " 600", &ResponseData::mediumFrequencyPollInterval, 600},
        {"highfrequencypollinterval", "60", &ResponseData::highFrequencyPollInterval, 60},
        {"hightomediumpollswitchinterval", "12", &ResponseData::highToMediumPollSwitchInterval, 12},
        {"mediumtolowpollswitchinterval", "abc", &ResponseData::mediumToLowPollSwitchInterval, 0},
        {"loginterval", "86400", &ResponseData::logInterval, 86400},
    };
    const struct {
        const char* tag;
        const char* text;
        std::string ResponseData::*field;
    } texts[] = {
        {"protocolversion", "2.9", &ResponseData::protocolVersion},
        {"usertext", "Hi there ", &ResponseData::userText},
        {"loglevel", "debug", &ResponseData::logLevel},
        {"supportphone", "+1 555 0100", &ResponseData::supportPhone},
        {"testdriveripaddr", "10.0.0.9", &ResponseData::testDriverIpAddr},
    };
    std::string params;
    for (const auto& row : ints)
        params += el(3, row.tag, row.text);
    for (const auto& row : texts)
        params += el(3, row.tag, row.text);
    params += block(3, "loguploads",
                    el(4, "crash", "") + el(4, "unknown", "") + el(4, "application", "") +
                        el(4, "performance", "") + el(4, "movielog", "") + el(4, "crash", ""));
    const std::string header =
        block(2, "parameters", params) +
        el(2, "payload", base64(timesFragment("4294967295", "77")), " encrypted=\"false\"");

    const Parsed run(responseDoc(header, "", " method=\"ping\""));
    ASSERT_TRUE(run.ok) << run.out;
    for (const auto& row : ints)
        EXPECT_EQ(run.data.*row.field, row.expected) << row.tag;
    for (const auto& row : texts)
        EXPECT_EQ(run.data.*row.field, row.text) << row.tag;
    EXPECT_EQ(run.data.serverTime, 4294967295u);
    EXPECT_EQ(run.data.clientTime, 77u);
    EXPECT_EQ(run.data.method, "ping");
    typedef ResponseData R;
    EXPECT_EQ(run.data.logUploads,
              std::vector<R::LogCategoryType>({R::CATEGORY_CRASH, R::CATEGORY_APPLICATION,
                                               R::CATEGORY_PERFORMANCE, R::CATEGORY_MOVIELOG,
                                               R::CATEGORY_CRASH}));
    EXPECT_EQ(run.out, "");
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

TEST(ParentParser, ProtocolVersionLaterWins) {
    EXPECT_EQ(Parsed(responseDoc("", "")).data.protocolVersion, "2.7");
    const std::string doc = responseDoc(el(2, "protocolversion", "3.1"), "");
    EXPECT_EQ(Parsed(doc).data.protocolVersion, "3.1");
    std::string late = doc; // a header element after "result" is still read
    late.insert(late.rfind("</zuvo:response>"), el(1, "protocolversion", "4.0"));
    EXPECT_EQ(Parsed(late).data.protocolVersion, "4.0");
    EXPECT_EQ(Parsed("<a><zuvo:response version='8'/></a>").data.protocolVersion, "");
}

TEST(ParentParser, HeaderTextAroundChildrenAndUntouchedFields) {
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

// Answers every decrypt with a fixed fragment and records what it was given.
class ScriptedContext : public krel::KrelContext {
public:
    std::vector<unsigned char> decrypt(const std::vector<unsigned char>& sealed) override {
        seen.assign(sealed.begin(), sealed.end());
        const std::string plain = timesFragment("1", "2");
        return std::vector<unsigned char>(plain.begin(), plain.end());
    }
    std::string seen;
};

TEST(ParentParser, EncryptedAttributeDecidesTheDecoding) {
    const std::string sent = base64(timesFragment("3", "4"));
    const struct {
        const char* attrs;
        bool decrypted;
    } cases[] = {
        {" encrypted=\"false\"", false},
        {" encrypted=\"FALSE\"", true},
        {" encrypted=\"true\"", true},
        {" encrypted=\"no\"", true},
        {"", true},
        {" zuvo:encrypted=\"false\"", false},
    };
    for (const auto& c : cases) {
        ScriptedContext* script = new ScriptedContext;
        const Context context(script);
        const Parsed run(responseDoc(el(2, "payload", sent, c.attrs), ""), context);
        ASSERT_TRUE(run.ok) << c.attrs;
        EXPECT_EQ(script->seen, c.decrypted ? sent : "") << c.attrs;
        EXPECT_EQ(run.data.serverTime, c.decrypted ? 1u : 3u) << c.attrs;
    }
}

TEST(ParentParser, EncryptedHeaderPayload) {
    const Context context = keyedContext();
    std::string sealed = seal(context, timesFragment("1700000000", "1700000003"));
    const std::string good = responseDoc(el(2, "payload", sealed), "");

    // Without a cipher context: a rejection, nothing thrown, nothing after read.
    const Parsed none(responseDoc(el(2, "payload", sealed) + el(2, "code", "4"), ""));
    EXPECT_FALSE(none.ok);
    EXPECT_EQ(none.out, rejection("TestParser", "payload", "responseheader response <start> "));
    EXPECT_EQ(none.data.code, 0);

    // Undecodable payloads throw out of parse; the same parser then reads
    // the good sealed payload.
    sealed[20] = sealed[20] == 'A' ? 'B' : 'A';
    Rig again;
    EXPECT_THROW(again.parse(responseDoc(el(2, "payload", sealed), ""), context),
                 std::runtime_error);
    EXPECT_THROW(
        again.parse(responseDoc(el(2, "payload", "#?", " encrypted='false'"), ""), context),
        std::invalid_argument);
    EXPECT_THROW(again.parse(responseDoc(el(2, "payload", seal(context, "<a>")), ""), context),
                 std::runtime_error);
    EXPECT_EQ(again.data.serverTime, 0u);
    EXPECT_TRUE(again.parse(good, context));
    EXPECT_EQ(again.data.serverTime, 1700000000u);
    EXPECT_EQ(again.data.clientTime, 1700000003u);
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

TEST(ParentParser, RejectionsAndHookExceptions) {
    const std::string body = block(2, "body", el(3, "item", "one") + el(3, "twin", ""));
    const std::string doc = responseDoc(basicHeader(), body);
    const struct {
        std::string doc, rejectStart, rejectEnd, noContextAt, tag, stack;
    } cases[] = {
        {responseDoc(basicHeader(), body, ""), "", "", "", "result", "response <start> "},
        {doc, "body", "", "", "body", "result response <start> "},
        {doc, "item", "", "", "item", "body result response <start> "},
        {doc, "", "twin", "", "twin", "alias body result response <start> "},
        {doc, "", "", "item", "item", "item body result response <start> "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tag);
        Rig run;
        TestParser& parser = run.parser;
        parser.rejectStart = c.rejectStart;
        parser.rejectEnd = c.rejectEnd;
        parser.noContextAt = c.noContextAt;
        EXPECT_FALSE(run.parse(c.doc));
        EXPECT_EQ(run.out, rejection("TestParser", c.tag, c.stack));
        EXPECT_EQ(run.data.serverTime, 1000u) << "fields read before the rejection stay";

        // Any other exception reaches the caller; the parser is then reusable.
        parser.rejectStart = parser.rejectEnd = parser.noContextAt = "";
        parser.logicErrorAt = "item";
        EXPECT_THROW(run.parse(doc), std::logic_error);
        parser.logicErrorAt = parser.log = "";
        EXPECT_TRUE(run.parse(doc));
        EXPECT_EQ(parser.log, "<3>31 <31>32 32[one] /32 <31>33 /33 /31 ");
    }
}

TEST(ParentParser, ShowError) {
    const std::string doc = "<zuvo:response><!--" + std::string(60, 'h') + "--><zuvo:a></zuvo:b>" +
                            std::string(70, 't') + "</zuvo:response>";
    const std::string::size_type at = doc.find("zuvo:b>"); // expat points at the name
    CoutCapture capture;
    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data);
    ASSERT_FALSE(parser.parse(doc, Context()));
    parser.showError(doc);
    EXPECT_THROW(parser.showError(doc.substr(0, 10)), std::out_of_range);
    ASSERT_FALSE(parser.parse("<a>&bad;</a>", Context()));
    parser.showError("<a>&bad;</a>");
    ASSERT_FALSE(parser.parse("", Context()));
    parser.showError("");
    EXPECT_EQ(capture.text(), "Parse error at offset " + std::to_string(at) + ": mismatched tag\n" +
                                  doc.substr(at - 50, 50) + "[#!#]" + doc.substr(at, 50) +
                                  "\nParse error at offset 3: undefined entity\n"
                                  "<a>[#!#]&bad;</a>\n"
                                  "Parse error at offset 0: no element found\n[#!#]\n");
}

TEST(ParentParser, TagTables) {
    ExpatParser expat;
    ResponseData data;
    ParentParser::TagConfigTable rows[] = {{31, "alpha"}, {32, NULL}};
    const TestParser parser(expat, data);
    const TestParser first(expat, data, rows, 2);
    rows[0].tagName = "beta"; // same address, new content: a table of its own
    const TestParser second(expat, data, rows, 2);
    EXPECT_EQ(parser.tagStrToTagType("payload"), 24u) << "a base name cannot be redefined";
    EXPECT_EQ(parser.tagStrToTagType("zuvo:item"), 30u);
    EXPECT_EQ(first.tagStrToTagType("alpha"), 31u);
    EXPECT_EQ(second.tagStrToTagType("alpha"), 30u);
    EXPECT_EQ(second.tagStrToTagType("beta"), 31u);
    EXPECT_EQ(parser.getTagTypeName(33), "alias") << "first name in name order";
    EXPECT_EQ(parser.getTagTypeName(40), "<unknown>");
}

} // namespace
