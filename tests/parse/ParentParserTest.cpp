#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const ParentParser::TagConfigTable TEST_TAGS[] = {
    {31, "body"}, {32, "item"}, {40, "payload"}, {33, "alias"}, {33, "twin"}};

// A sub-parser that logs its hooks and can reject or throw at an element.
class TestParser : public ParentParser {
public:
    TestParser(Expat& expat, ResponseData& data, const TagConfigTable* table = TEST_TAGS,
               unsigned int count = 5)
        : ParentParser(expat, data, table, count) {}

    const char* getParserName() const override { return "TestParser"; }

    std::string log;
    std::string rejectStart, rejectEnd, throwNoContextAt, throwLogicAt;

    using ParentParser::PopContext;
    using ParentParser::PushContext;

protected:
    bool canParseResultSubTag(unsigned int tag) const override { return tag == 31; }
    bool onResultSubTagStartEvent(unsigned int parent, unsigned int tag, const std::string& name,
                                  const std::map<std::string, std::string>&) override {
        log += "<" + std::to_string(parent) + ">" + std::to_string(tag) + " ";
        return name != rejectStart;
    }
    bool onResultSubTagEndEvent(unsigned int tag, const std::string& name) override {
        if (name == throwNoContextAt)
            throw ZuvoExceptionNoCipherContext();
        if (name == throwLogicAt)
            throw std::logic_error("hook failed");
        log += "/" + std::to_string(tag) + " ";
        return name != rejectEnd;
    }
    void onResultSubDataEvent(unsigned int tag, const std::string& text) override {
        log += std::to_string(tag) + "[" + text + "] ";
    }
};

// Parses `doc` into a fresh record with a fresh parser; returns the record.
struct Parsed {
    explicit Parsed(const std::string& doc, const Context& context = Context()) {
        CoutCapture capture;
        TestParser parser(expat, data);
        ok = parser.parse(doc, context);
        log = parser.log;
        out = capture.text();
    }
    ExpatParser expat;
    ResponseData data;
    bool ok;
    std::string log, out;
};

TEST(ParentParser, FillsEveryHeaderField) {
    const std::string header =
        el(2, "protocolversion", "2.9") +
        block(2, "status",
              el(3, "success", "true") + el(3, "code", "-12") + el(3, "usertext", "Hi there ")) +
        block(2, "parameters",
              el(3, "retrycontrol", "3") + el(3, "mintimeout", "45x") +
                  el(3, "lowfrequencypollinterval", "3600") +
                  el(3, "mediumfrequencypollinterval", " 600") +
                  el(3, "highfrequencypollinterval", "60") +
                  el(3, "hightomediumpollswitchinterval", "120") +
                  el(3, "mediumtolowpollswitchinterval", "abc") + el(3, "loginterval", "86400") +
                  el(3, "loglevel", "debug") + el(3, "supportphone", "+1 555 0100") +
                  el(3, "testdriveripaddr", "10.0.0.9") +
                  block(3, "loguploads",
                        el(4, "crash", "") + el(4, "unknown", "") + el(4, "application", "") +
                            el(4, "performance", "") + el(4, "movielog", "") +
                            el(4, "crash", ""))) +
        el(2, "payload", base64(timesFragment("4294967295", "77")), " encrypted=\"false\"");
    const Parsed run(responseDoc(header, "", " method=\"ping\""));

    ASSERT_TRUE(run.ok) << run.out;
    const ResponseData& d = run.data;
    EXPECT_EQ(d.callerTag, 0);
    EXPECT_EQ(d.callerFlags, 0);
    EXPECT_EQ(d.serverTime, 4294967295u);
    EXPECT_EQ(d.clientTime, 77u);
    EXPECT_EQ(d.protocolVersion, "2.9");
    EXPECT_EQ(d.method, "ping");
    EXPECT_TRUE(d.success);
    EXPECT_EQ(d.code, -12);
    EXPECT_EQ(d.actionId, 0);
    EXPECT_EQ(d.userText, "Hi there ");
    EXPECT_EQ(d.retryControl, 3);
    EXPECT_EQ(d.minTimeout, 45);
    EXPECT_EQ(d.lowFrequencyPollInterval, 3600);
    EXPECT_EQ(d.mediumFrequencyPollInterval, 600);
    EXPECT_EQ(d.highFrequencyPollInterval, 60);
    EXPECT_EQ(d.highToMediumPollSwitchInterval, 120);
    EXPECT_EQ(d.mediumToLowPollSwitchInterval, 0);
    EXPECT_EQ(d.logInterval, 86400);
    EXPECT_EQ(d.logLevel, "debug");
    EXPECT_EQ(d.supportPhone, "+1 555 0100");
    EXPECT_EQ(d.testDriverIpAddr, "10.0.0.9");
    typedef ResponseData R;
    EXPECT_EQ(d.logUploads,
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
        {el(3, "success", "false"), false, 0},
    };
    for (const auto& c : cases) {
        const Parsed run(responseDoc(block(2, "status", c.status), ""));
        ASSERT_TRUE(run.ok) << c.status;
        EXPECT_EQ(run.data.success, c.success) << c.status;
        EXPECT_EQ(run.data.actionId, c.actionId) << c.status;
    }
}

TEST(ParentParser, ProtocolVersionLaterWins) {
    const std::string result = el(2, "item", "");
    EXPECT_EQ(Parsed(responseDoc("", result)).data.protocolVersion, "2.7");
    EXPECT_EQ(Parsed(responseDoc(el(2, "protocolversion", "3.1"), result)).data.protocolVersion,
              "3.1");
    // An element after "result" is still read as a header element.
    const std::string doc = responseDoc(el(2, "protocolversion", "3.1"), result) + "";
    const std::string late =
        std::string(doc).insert(doc.rfind("</zuvo:response>"), el(1, "protocolversion", "4.0"));
    EXPECT_EQ(Parsed(late).data.protocolVersion, "4.0");
    // The attribute counts only on the document element "response".
    EXPECT_EQ(Parsed("<zuvo:other version='9'><zuvo:response version='8'/></zuvo:other>")
                  .data.protocolVersion,
              "");
}

TEST(ParentParser, RecordIsNotCleared) {
    ExpatParser expat;
    ResponseData data;
    data.userText = "kept";
    data.code = 9;
    data.logUploads.push_back(ResponseData::CATEGORY_CRASH);
    TestParser parser(expat, data);
    ASSERT_TRUE(
        parser.parse(responseDoc(block(2, "loguploads", el(3, "movielog", "")), ""), Context()));
    EXPECT_EQ(data.userText, "kept");
    EXPECT_EQ(data.code, 9);
    EXPECT_EQ(data.logUploads.size(), 2u);
}

TEST(ParentParser, HeaderTextAroundChildren) {
    // Text before a child joins the child's text and is dropped with it;
    // unknown elements are pushed and popped and their text dropped.
    const Parsed run(responseDoc(el(2, "usertext", "before<zuvo:x>inner</zuvo:x>after") +
                                     el(2, "supportphone", "<zuvo:mystery>lost</zuvo:mystery>"),
                                 ""));
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.data.userText, "after");
    EXPECT_EQ(run.data.supportPhone, "");
}

// A scripted cipher context: answers every decrypt with `plain`, counts calls.
class ScriptedContext : public krel::KrelContext {
public:
    explicit ScriptedContext(const std::string& plain) : plain(plain) {}
    std::vector<unsigned char> decrypt(const std::vector<unsigned char>& sealed) override {
        seen.assign(sealed.begin(), sealed.end());
        ++calls;
        return std::vector<unsigned char>(plain.begin(), plain.end());
    }
    std::string plain, seen;
    int calls = 0;
};

TEST(ParentParser, EncryptedAttributeDecidesTheDecoding) {
    const std::string fromContext = timesFragment("1", "2");
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
        ScriptedContext* script = new ScriptedContext(fromContext);
        const Context context(script);
        const Parsed run(responseDoc(el(2, "payload", sent, c.attrs), ""), context);
        ASSERT_TRUE(run.ok) << c.attrs;
        EXPECT_EQ(script->calls, c.decrypted ? 1 : 0) << c.attrs;
        EXPECT_EQ(run.data.serverTime, c.decrypted ? 1u : 3u) << c.attrs;
        EXPECT_EQ(run.data.clientTime, c.decrypted ? 2u : 4u) << c.attrs;
        EXPECT_EQ(script->seen, c.decrypted ? sent : "") << c.attrs;
    }
}

TEST(ParentParser, RealEncryptedHeaderPayload) {
    const Context context = keyedContext();
    const std::string header =
        el(2, "payload", seal(context, timesFragment("1700000000", "1700000003")));
    const Parsed run(responseDoc(header, ""), context);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(run.data.serverTime, 1700000000u);
    EXPECT_EQ(run.data.clientTime, 1700000003u);
}

TEST(ParentParser, EncryptedPayloadWithoutContextIsARejection) {
    const Parsed run(responseDoc(el(2, "payload", "c2VhbGVk") + el(2, "usertext", "after"), ""));
    EXPECT_FALSE(run.ok);
    EXPECT_EQ(run.out, rejection("TestParser", "payload", "responseheader response <start> "));
    EXPECT_EQ(run.data.serverTime, 0u);
    EXPECT_EQ(run.data.userText, "");
}

TEST(ParentParser, PayloadFailuresReachTheCallerAndTheParserStaysUsable) {
    const Context context = keyedContext();
    std::string sealed = seal(context, timesFragment("5", "6"));
    const std::string good = responseDoc(el(2, "payload", sealed) + el(2, "code", "1"), "");
    sealed[20] = sealed[20] == 'A' ? 'B' : 'A';
    const std::string tampered = responseDoc(el(2, "payload", sealed), "");
    const std::string notBase64 = responseDoc(el(2, "payload", "#?", " encrypted=\"false\""), "");
    const std::string notXml =
        responseDoc(el(2, "payload", base64("<a>"), " encrypted=\"false\""), "");

    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data);
    EXPECT_THROW(parser.parse(tampered, context), std::runtime_error);
    EXPECT_THROW(parser.parse(notBase64, context), std::invalid_argument);
    EXPECT_THROW(parser.parse(notXml, context), std::runtime_error);
    EXPECT_EQ(data.serverTime, 0u);

    EXPECT_TRUE(parser.parse(good, context));
    EXPECT_EQ(data.serverTime, 5u);
    EXPECT_EQ(data.code, 1);
    EXPECT_EQ(parser.GetContext(), static_cast<unsigned int>(ParentParser::TAG_START));
}

TEST(ParentParser, ResultModeEntryAndExit) {
    // "note" before the body and "usertext" after it are header elements;
    // the body and everything in it go to the hooks.
    const std::string result =
        el(2, "usertext", "early") +
        block(2, "body",
              el(3, "item", "one") + block(3, "payload", el(4, "unknown", "x")) +
                  el(3, "result", "r"),
              " a=\"1\"") +
        el(2, "usertext", "late") + el(2, "body", "again");
    const Parsed run(responseDoc("", result));
    ASSERT_TRUE(run.ok) << run.out;
    EXPECT_EQ(run.log, "<3>31 <31>32 32[one] /32 <31>24 <24>30 30[x] /30 /24 "
                       "<31>3 3[r] /3 /31 <3>31 31[again] /31 ");
    EXPECT_EQ(run.data.userText, "late");
}

TEST(ParentParser, Rejections) {
    const std::string body = block(2, "body", el(3, "item", "one") + el(3, "twin", ""));
    const struct {
        std::string doc;
        std::string rejectStart, rejectEnd;
        std::string expected;
    } cases[] = {
        {responseDoc(basicHeader(), body, ""), "", "",
         rejection("TestParser", "result", "response <start> ")},
        {responseDoc(basicHeader(), body), "item", "",
         rejection("TestParser", "item", "body result response <start> ")},
        {responseDoc(basicHeader(), body), "", "twin",
         rejection("TestParser", "twin", "alias body result response <start> ")},
        {responseDoc(basicHeader(), body), "body", "",
         rejection("TestParser", "body", "result response <start> ")},
    };
    for (const auto& c : cases) {
        CoutCapture capture;
        ExpatParser expat;
        ResponseData data;
        TestParser parser(expat, data);
        parser.rejectStart = c.rejectStart;
        parser.rejectEnd = c.rejectEnd;
        EXPECT_FALSE(parser.parse(c.doc, Context()));
        EXPECT_EQ(capture.text(), c.expected);
        EXPECT_EQ(data.serverTime, 1000u) << "fields read before the rejection stay";
        EXPECT_TRUE(data.success);
    }
}

TEST(ParentParser, HookExceptions) {
    const std::string doc = responseDoc("", block(2, "body", el(3, "item", "")));
    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data);
    {
        CoutCapture capture;
        parser.throwNoContextAt = "item";
        EXPECT_FALSE(parser.parse(doc, Context()));
        EXPECT_EQ(capture.text(),
                  rejection("TestParser", "item", "item body result response <start> "));
    }
    parser.throwNoContextAt.clear();
    parser.throwLogicAt = "item";
    EXPECT_THROW(parser.parse(doc, Context()), std::logic_error);
    parser.throwLogicAt.clear();
    parser.log.clear();
    EXPECT_TRUE(parser.parse(doc, Context()));
    EXPECT_EQ(parser.log, "<3>31 <31>32 /32 /31 ");
}

TEST(ParentParser, ShowErrorReport) {
    const std::string head(60, 'h');
    const std::string doc = "<zuvo:response><!--" + head + "--><zuvo:a></zuvo:b>" +
                            std::string(70, 't') + "</zuvo:response>";
    // Expat places a mismatched tag at its name.
    const std::string::size_type at = doc.find("zuvo:b>");
    CoutCapture capture;
    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data);
    ASSERT_FALSE(parser.parse(doc, Context()));
    parser.showError(doc);
    EXPECT_EQ(capture.text(), "Parse error at offset " + std::to_string(at) + ": mismatched tag\n" +
                                  doc.substr(at - 50, 50) + "[#!#]" + doc.substr(at, 50) + "\n");
    EXPECT_THROW(parser.showError(doc.substr(0, 10)), std::out_of_range);
}

TEST(ParentParser, ShowErrorNearTheStart) {
    CoutCapture capture;
    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data);
    ASSERT_FALSE(parser.parse("<a>&bad;</a>", Context()));
    parser.showError("<a>&bad;</a>");
    EXPECT_EQ(capture.text(), "Parse error at offset 3: undefined entity\n<a>[#!#]&bad;</a>\n");
}

TEST(ParentParser, TagTables) {
    ExpatParser expat;
    ResponseData data;
    TestParser parser(expat, data);
    EXPECT_EQ(parser.tagStrToTagType("response"), 1u);
    EXPECT_EQ(parser.tagStrToTagType("<invalid>"), 30u);
    EXPECT_EQ(parser.tagStrToTagType("payload"), 24u) << "a base name cannot be redefined";
    EXPECT_EQ(parser.tagStrToTagType("item"), 32u);
    EXPECT_EQ(parser.tagStrToTagType("zuvo:item"), 30u);
    EXPECT_EQ(parser.tagStrToTagType("nothing"), 30u);
    EXPECT_EQ(parser.getTagTypeName(0), "<start>");
    EXPECT_EQ(parser.getTagTypeName(29), "testdriveripaddr");
    EXPECT_EQ(parser.getTagTypeName(33), "alias") << "first name in name order";
    EXPECT_EQ(parser.getTagTypeName(40), "<unknown>");
    EXPECT_EQ(parser.GetContext(), 0u);
    parser.PushContext(32);
    EXPECT_EQ(parser.GetContext(), 32u);
    parser.PopContext();
    parser.PopContext();
    parser.PopContext();
    EXPECT_EQ(parser.GetContext(), 0u);
}

TEST(ParentParser, TablesWithEqualAddressesButNewContentAreReadAfresh) {
    ExpatParser expat;
    ResponseData data;
    ParentParser::TagConfigTable rows[] = {{31, "alpha"}, {32, NULL}};
    const TestParser first(expat, data, rows, 2);
    rows[0].tagName = "beta";
    const TestParser second(expat, data, rows, 2);
    const TestParser third(expat, data, NULL, 0);
    EXPECT_EQ(first.tagStrToTagType("alpha"), 31u);
    EXPECT_EQ(first.tagStrToTagType("beta"), 30u);
    EXPECT_EQ(second.tagStrToTagType("beta"), 31u);
    EXPECT_EQ(second.tagStrToTagType("alpha"), 30u);
    EXPECT_EQ(third.tagStrToTagType("alpha"), 30u);
    EXPECT_EQ(third.getTagTypeName(31), "<unknown>");
}

} // namespace
