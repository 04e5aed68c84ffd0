// Flat fragment reader.

#include "zuvolib/parse/SimpleParser.h"

#include "parse/ExpatFeed.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace velmora {
namespace zuvolib {

SimpleParser::SimpleParser() : parser(XML_ParserCreate(NULL)) {
    if (!parser)
        throw std::bad_alloc();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, startElement, endElement);
    XML_SetCharacterDataHandler(parser, charData);
}

SimpleParser::~SimpleParser() {
    XML_ParserFree(parser);
}

void SimpleParser::parse(const std::string& text) {
    const std::string document = "<xml>" + text + "</xml>";
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
        static const char TRIMMED[] = " \t\n";
        const std::string piece(s, static_cast<std::string::size_type>(len));
        const std::string::size_type first = piece.find_first_not_of(TRIMMED);
        if (first == std::string::npos)
            return;
        self->onDataEvent(piece.substr(first, piece.find_last_not_of(TRIMMED) - first + 1));
    } catch (...) {
        self->stopWithPendingException();
    }
}

} // namespace zuvolib
} // namespace velmora
