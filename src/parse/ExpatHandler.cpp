// Expat callbacks turned into prefix-free element events.

#include "zuvolib/parse/ExpatHandler.h"

#include <cstring>

#include "parse/ElementParts.h"
#include "parse/ExpatFeed.h"

#include <stdexcept>
#include <utility>

namespace velmora {
namespace zuvolib {

namespace {

// Replaces `buffer`'s text with `text`, reusing its storage.
void setText(std::string& buffer, const char* text) {
    buffer.clear();
    buffer.append(text, std::strlen(text));
}

bool isTabOrLineFeed(char c) {
    return c == '\t' || c == '\n';
}
bool isBlankChar(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

} // namespace

std::string stripZuvo(const char* name) {
    return std::string(afterPrefix(name));
}

bool isBlank(const std::string& text) {
    return text.find_last_not_of(" \t\n") == std::string::npos;
}

ExpatHandler::ExpatHandler(Expat& expat) : expat(expat) {}

ExpatHandler::~ExpatHandler() = default;

XML_Bool ExpatHandler::reset() {
    return expat.parser ? XML_ParserReset(expat.parser, NULL) : XML_FALSE;
}

void ExpatHandler::setContext() {
    if (!expat.parser)
        return;
    XML_SetUserData(expat.parser, this);
    XML_SetElementHandler(expat.parser, startElement, endElement);
    XML_SetCharacterDataHandler(expat.parser, charData);
}

bool ExpatHandler::parse(const std::string& text) {
    if (!expat.parser)
        throw std::invalid_argument("Expat holder has no parser handle");
    stopped = false;
    pendingException = nullptr;
    const XML_Status status = feedWholeDocument(expat.parser, text.data(), text.size());
    if (pendingException) {
        std::exception_ptr thrown;
        std::swap(thrown, pendingException);
        std::rethrow_exception(thrown);
    }
    return status == XML_STATUS_OK;
}

XML_Status ExpatHandler::abortParsing() {
    stopped = true;
    if (!expat.parser)
        return XML_STATUS_ERROR;
    return XML_StopParser(expat.parser, XML_FALSE);
}

void ExpatHandler::stopWithPendingException() {
    pendingException = std::current_exception();
    abortParsing();
}

// Expat may still report an event after a stop (the end of an empty element
// whose start stopped it); `stopped` keeps such events from the subclass.

void XMLCALL ExpatHandler::startElement(void* userData, const char* name, const char** attributes) {
    ExpatHandler* const self = static_cast<ExpatHandler*>(userData);
    if (self->stopped)
        return;
    try {
        // The name buffer is reused: no allocation per element once it has grown.
        setText(self->nameBuffer, afterPrefix(name));
        // Most elements have no attributes: they share one empty map.
        if (!attributes[0]) {
            self->onTagStartEvent(self->nameBuffer, noAttributes());
            return;
        }
        // Only the slots of attributes written in the document; defaulted
        // ones follow them and are ignored.
        std::map<std::string, std::string> map;
        const int count = XML_GetSpecifiedAttributeCount(self->expat.parser);
        for (int i = 0; i + 1 < count; i += 2)
            map.insert(std::make_pair(stripZuvo(attributes[i]), stripZuvo(attributes[i + 1])));
        self->onTagStartEvent(self->nameBuffer, map);
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL ExpatHandler::endElement(void* userData, const char* name) {
    ExpatHandler* const self = static_cast<ExpatHandler*>(userData);
    if (self->stopped)
        return;
    try {
        setText(self->nameBuffer, afterPrefix(name));
        self->onTagEndEvent(self->nameBuffer);
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL ExpatHandler::charData(void* userData, const char* s, int len) {
    // Only trailing tabs and line feeds go: indentation before a closing
    // tag. Spaces and carriage returns are kept. Blank pieces (most of them
    // are indentation, a line feed or a run of spaces each) are dropped
    // first, before anything else is touched.
    const char* end = s + len;
    while (end != s && isTabOrLineFeed(end[-1]))
        --end;
    const char* visible = s;
    while (visible != end && isBlankChar(*visible))
        ++visible;
    if (visible == end)
        return;
    ExpatHandler* const self = static_cast<ExpatHandler*>(userData);
    if (self->stopped)
        return;
    try {
        self->textBuffer.clear();
        self->textBuffer.append(s, static_cast<std::size_t>(end - s));
        self->onDataEvent(self->textBuffer);
    } catch (...) {
        self->stopWithPendingException();
    }
}

} // namespace zuvolib
} // namespace velmora
