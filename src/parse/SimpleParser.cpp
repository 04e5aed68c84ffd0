// Flat fragment reader.

#include "zuvolib/parse/SimpleParser.h"

#include "parse/ExpatFeed.h"

#include <new>
#include <random>
#include <stdexcept>
#include <utility>

namespace velmora {
namespace zuvolib {

namespace {

// Payload fragments are parsed one after another, several per response:
// making and freeing an expat parser for each costs more than reading a
// short fragment. Each thread keeps one finished parser, reset, for the
// next fragment. Only parsers that read short fragments are kept, so that
// what a thread holds stays small (expat keeps its input buffer on reset).
const std::size_t KEPT_FRAGMENT_BYTES = 16 * 1024;

bool isTrimmed(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

struct SpareParser {
    XML_Parser parser = nullptr;
    ~SpareParser() {
        if (parser)
            XML_ParserFree(parser);
    }
};

thread_local SpareParser spare;

// One hash salt for the process: expat otherwise asks the system for
// random bytes at the start of every document.
unsigned long hashSalt() {
    static const unsigned long salt = [] {
        std::random_device device;
        const unsigned long drawn = (static_cast<unsigned long>(device()) << 16) ^ device();
        return drawn != 0 ? drawn : 1; // 0 would mean "draw one per document"
    }();
    return salt;
}

XML_Parser takeParser() {
    XML_Parser parser = spare.parser;
    spare.parser = nullptr;
    if (!parser)
        parser = XML_ParserCreate(NULL);
    if (parser)
        XML_SetHashSalt(parser, hashSalt());
    return parser;
}

void giveBack(XML_Parser parser) {
    // Outside a callback, the current position is where the input ended.
    const XML_Index read = XML_GetCurrentByteIndex(parser);
    if (!spare.parser && read >= 0 && static_cast<std::size_t>(read) <= KEPT_FRAGMENT_BYTES &&
        XML_ParserReset(parser, NULL)) {
        spare.parser = parser;
        return;
    }
    XML_ParserFree(parser);
}

} // namespace

SimpleParser::SimpleParser() : parser(takeParser()) {
    if (!parser)
        throw std::bad_alloc();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, startElement, endElement);
    XML_SetCharacterDataHandler(parser, charData);
}

SimpleParser::~SimpleParser() {
    giveBack(parser);
}

void SimpleParser::parse(const std::string& text) {
    static const char OPEN[] = "<xml>";
    static const char CLOSE[] = "</xml>";
    std::string document;
    document.reserve(sizeof(OPEN) - 1 + text.size() + sizeof(CLOSE) - 1);
    document.append(OPEN).append(text).append(CLOSE);
    const XML_Status status = feedWholeDocument(parser, document.data(), document.size());
    if (pendingException) {
        std::exception_ptr thrown;
        std::swap(thrown, pendingException);
        std::rethrow_exception(thrown);
    }
    if (status != XML_STATUS_OK)
        throw std::runtime_error(XML_ErrorString(XML_GetErrorCode(parser)));
}

std::string SimpleParser::getValue(const std::string& name) const {
    const auto found = values.find(name);
    return found == values.end() ? std::string() : found->second;
}

std::string SimpleParser::getAttr(const std::string& name, std::string attr) const {
    const auto element = attributes.find(name);
    if (element == attributes.end())
        return std::string();
    const auto found = element->second.find(attr);
    return found == element->second.end() ? std::string() : found->second;
}

void SimpleParser::onTagStartEvent(const std::string& name,
                                   const std::map<std::string, std::string>& attributes) {
    this->attributes[name] = attributes;
}

void SimpleParser::onTagEndEvent(const std::string& name) {
    values[name].swap(dataText);
    dataText.clear();
}

void SimpleParser::onDataEvent(const std::string& text) {
    dataText += text;
}

void SimpleParser::stopWithPendingException() {
    pendingException = std::current_exception();
    XML_StopParser(parser, XML_FALSE);
}

// The callbacks run inside expat's C frames: nothing may leave them by
// exception, so a failure (allocation) is kept and rethrown by `parse`.

void XMLCALL SimpleParser::startElement(void* userData, const char* name, const char** attributes) {
    SimpleParser* const self = static_cast<SimpleParser*>(userData);
    if (self->pendingException)
        return;
    try {
        const int count = XML_GetSpecifiedAttributeCount(self->parser);
        if (count == 0) {
            // What onTagStartEvent would store, without a map made per
            // element: an element without attributes has none to look up.
            if (!self->attributes.empty())
                self->attributes.erase(name);
            return;
        }
        std::map<std::string, std::string> map;
        for (int i = 0; i + 1 < count; i += 2)
            map.insert(std::make_pair(std::string(attributes[i]), std::string(attributes[i + 1])));
        self->onTagStartEvent(name, map);
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL SimpleParser::endElement(void* userData, const char* name) {
    SimpleParser* const self = static_cast<SimpleParser*>(userData);
    if (self->pendingException)
        return;
    try {
        self->onTagEndEvent(name);
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL SimpleParser::charData(void* userData, const char* s, int len) {
    SimpleParser* const self = static_cast<SimpleParser*>(userData);
    if (self->pendingException)
        return;
    try {
        // Spaces, tabs and line feeds are trimmed from both ends of a piece;
        // a piece left empty is dropped.
        const char* first = s;
        const char* last = s + len;
        while (first != last && isTrimmed(*first))
            ++first;
        while (last != first && isTrimmed(last[-1]))
            --last;
        if (first == last)
            return;
        self->onDataEvent(std::string(first, last));
    } catch (...) {
        self->stopWithPendingException();
    }
}

} // namespace zuvolib
} // namespace velmora
