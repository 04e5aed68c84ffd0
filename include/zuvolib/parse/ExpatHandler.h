// Adapter from expat's C callbacks to virtual element events.
#ifndef ZUVOLIB_PARSE_EXPATHANDLER_H
#define ZUVOLIB_PARSE_EXPATHANDLER_H

#include "zuvolib/export.h"
#include "zuvolib/parse/Expat.h"

#include <exception>
#include <map>
#include <string>

namespace velmora {
namespace zuvolib {

/// Removes the protocol prefix "zuvo:" from the start of `name`; anything
/// else (another prefix, a "zuvo:" further in) is kept.
ZUVO_API std::string stripZuvo(const char* name);

/// True when `text` holds nothing but spaces, tabs and line feeds (the empty
/// text included).
ZUVO_API bool isBlank(const std::string& text);

/// Abstract base of the response parsers: binds the expat handle of an
/// `Expat` holder to this object and turns expat's callbacks into three
/// virtual events:
/// - element names and attribute names and values arrive without a leading
///   "zuvo:"; attributes are gathered into a byte-wise ordered map holding
///   only those written in the document (the first of a repeated name wins);
/// - character data is delivered piece by piece as expat reports it, with
///   trailing tabs and line feeds removed; pieces left blank are dropped.
///
/// For one document call `reset()`, `setContext()`, then `parse(text)`.
///
/// Exceptions never cross expat's C frames: an exception thrown by an event
/// stops the parser, no further events are delivered, and `parse` rethrows
/// it unchanged once expat has returned. The handle is then in a stopped
/// state and is ready for the next document after `reset()`.
///
/// The handler does not own the handle; the `Expat` holder must outlive it.
class ZUVO_API ExpatHandler {
public:
    /// Binds to `expat` (kept by reference; nothing is done to the handle).
    explicit ExpatHandler(Expat& expat);
    virtual ~ExpatHandler();
    ExpatHandler(const ExpatHandler&) = delete;
    ExpatHandler& operator=(const ExpatHandler&) = delete;

    /// `XML_ParserReset(parser, NULL)`: readies the handle for a new document.
    /// Expat forgets the handlers with it, so `setContext()` must follow.
    XML_Bool reset();

    /// Installs this object and the three callbacks on the handle.
    void setContext();

    /// Parses `text` as one whole document. True when it is well formed and
    /// nothing stopped the parse; false on malformed XML (the handle then
    /// knows the position and error) or after `abortParsing()`. Rethrows
    /// whatever an event threw. Throws `std::invalid_argument` when the
    /// holder has no handle.
    bool parse(const std::string& text);

    /// Stops the running parse for good (`XML_StopParser(parser, XML_FALSE)`);
    /// no further events are delivered and `parse` returns false.
    XML_Status abortParsing();

    /// Expat callbacks; `userData` is the `ExpatHandler*` set by `setContext()`.
    static void XMLCALL startElement(void* userData, const char* name, const char** attributes);
    static void XMLCALL endElement(void* userData, const char* name);
    static void XMLCALL charData(void* userData, const char* s, int len);

protected:
    virtual void onTagStartEvent(const std::string& name,
                                 const std::map<std::string, std::string>& attributes) = 0;
    virtual void onTagEndEvent(const std::string& name) = 0;
    virtual void onDataEvent(const std::string& text) = 0;

    Expat& expat; ///< the caller's holder, never owned

private:
    friend class ParentParser; // installs element callbacks of its own

    /// Stops the parse and keeps the exception now being handled for `parse`.
    void stopWithPendingException();

    bool stopped = false;                ///< no more events for this document
    std::string nameBuffer;              ///< stripped element name, reused per event
    std::string textBuffer;              ///< trimmed character data, reused per event
    std::exception_ptr pendingException; ///< thrown by an event, rethrown by `parse`
};

} // namespace zuvolib
} // namespace velmora

#endif
