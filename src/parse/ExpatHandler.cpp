// Expat callbacks turned into prefix-free element events.

#include "zuvolib/parse/ExpatHandler.h"

#include "parse/ExpatFeed.h"

#include <stdexcept>

namespace velmora {
namespace zuvolib {

std::string stripZuvo(const char* name) {
    static const char PREFIX[] = "zuvo:";
    static const std::string::size_type PREFIX_LENGTH = sizeof(PREFIX) - 1;
    std::string text(name);
    if (text.compare(0, PREFIX_LENGTH, PREFIX) == 0)
        text.erase(0, PREFIX_LENGTH);
    return text;
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
        thrown.swap(pendingException);
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
        // Only the slots of attributes written in the document; defaulted
        // ones follow them and are ignored.
        const int count = XML_GetSpecifiedAttributeCount(self->expat.parser);
        std::map<std::string, std::string> map;
        for (int i = 0; i + 1 < count; i += 2)
            map.insert(std::make_pair(stripZuvo(attributes[i]), stripZuvo(attributes[i + 1])));
        self->onTagStartEvent(stripZuvo(name), map);
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL ExpatHandler::endElement(void* userData, const char* name) {
    ExpatHandler* const self = static_cast<ExpatHandler*>(userData);
    if (self->stopped)
        return;
    try {
        self->onTagEndEvent(stripZuvo(name));
    } catch (...) {
        self->stopWithPendingException();
    }
}

void XMLCALL ExpatHandler::charData(void* userData, const char* s, int len) {
    ExpatHandler* const self = static_cast<ExpatHandler*>(userData);
    if (self->stopped)
        return;
    try {
        // Only trailing tabs and line feeds go: indentation before a closing
        // tag. Spaces and carriage returns are kept.
        std::string text(s, static_cast<std::string::size_type>(len));
        text.erase(text.find_last_not_of("\t\n") + 1);
        if (!isBlank(text))
            self->onDataEvent(text);
    } catch (...) {
        self->stopWithPendingException();
    }
}

} // namespace zuvolib
} // namespace velmora
