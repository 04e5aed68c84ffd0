// The response envelope and header, which every response parser shares,
// through a parser of its own whose body hooks do the least they may: it
// reads "body" as its result, keeps the result text, and rejects the
// document at any "reject" element inside the body. So the fuzzer works on
// the header fields, the header payload (its fragment through "$S1"/"$B1"),
// result mode's start and end and the rejection of a hook, without the
// grammar of any real body in the way. Input layout: see ParserHarness.h.
#include "ParserHarness.h"

namespace {

using namespace fuzz;

class PlainParser : public ParentParser {
public:
    enum OwnTagType : unsigned int { TAG_BODY = TAG_FIRST_OWN, TAG_REJECT };

    PlainParser(Expat& expat, ResponseData& record)
        : ParentParser(expat, record, table, sizeof(table) / sizeof(table[0])), record(record) {}

    const char* getParserName() const override { return "PlainParser"; }

protected:
    bool canParseResultSubTag(unsigned int tagType) const override { return tagType == TAG_BODY; }
    bool onResultSubTagStartEvent(unsigned int, unsigned int tagType, const std::string&,
                                  const std::map<std::string, std::string>&) override {
        return tagType != TAG_REJECT;
    }
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string&) override {
        require(tagType != TAG_REJECT, "PlainParser", "a rejected element was closed");
        return true;
    }
    void onResultSubDataEvent(unsigned int, const std::string& text) override {
        record.userText += text;
    }

private:
    static const TagConfigTable table[2];
    ResponseData& record;
};

const ParentParser::TagConfigTable PlainParser::table[2] = {{TAG_BODY, "body"},
                                                            {TAG_REJECT, "reject"}};

bool filled(const ResponseData& record) {
    return record.userText == "text" && record.method == "call";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string good = goodDocument("<zuvo:body>text</zuvo:body>");
    parseThenReuse<PlainParser, ResponseData>(Input(data, size), good, filled);
    return 0;
}
