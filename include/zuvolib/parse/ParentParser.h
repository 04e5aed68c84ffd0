// Base of the response parsers: envelope, header and the result hand-over.
#ifndef ZUVOLIB_PARSE_PARENTPARSER_H
#define ZUVOLIB_PARSE_PARENTPARSER_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/export.h"
#include "zuvolib/parse/ExpatHandler.h"
#include "zuvolib/parse/ParseFailure.h"
#include "zuvolib/parse/ResponseData.h"

#include <krel/KrelContext.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace velmora {
namespace zuvolib {

struct TagTypeIndex;

/// Reads a response document: fills `ResponseData` from the "response"
/// envelope and its "responseheader" (decoding the header payload for the
/// server and client times), and hands the body of "result" to a subclass
/// through five hooks. One subclass per response type.
///
/// Elements are known by tag type ids: a fixed base table (ids 0 to 30, see
/// `BaseTagType`) merged with the subclass's own table (ids from 31 on);
/// names in no table get `TAG_INVALID`. The parser keeps a stack of the ids
/// of the open elements.
///
/// Result mode: the first child of "result" for which
/// `canParseResultSubTag` answers true, and everything inside it, goes to the
/// subclass hooks (starts with the id of the enclosing element, text pieces
/// and ends with the id of the element). Result mode ends with the element
/// that began it; later children of "result" are offered again.
///
/// Rejection: a hook returning false, a "result" without "method", an end
/// tag that does not close the innermost open element, or an encrypted
/// payload without a cipher context prints a report to standard output:
///
///     <getParserName()> error:
///     <TAB>current tag = <element name>
///     <TAB>stack = <innermost name> ... <start> (each name followed by a space)
///
/// and `parse` returns false. Fields filled before stay filled.
///
/// Diagnostics: `setReportSink` sends the reports (the rejection report and
/// `showError`'s) to a function instead of standard output, and
/// `lastFailure()` tells why the last parse returned false, as data. Both
/// belong to the parser object; parsers on different threads do not share
/// them.
///
/// The `Expat` holder and the record must outlive the parser; the cipher
/// context is shared and kept until the parser parses again or is destroyed.
class ZUVO_API ParentParser : public ExpatHandler {
public:
    /// One row of a tag table: an id and the element name without prefix.
    struct TagConfigTable {
        unsigned int tagType;
        const char* tagName;
    };

    typedef std::tr1::shared_ptr<krel::KrelContext> CipherContext;

    /// Receives one whole report (several lines, each ending in '\n') per
    /// call, with the exact text that would go to standard output.
    typedef std::function<void(const std::string& report)> ReportSink;

    /// Ids of the base table, fixed protocol constants.
    enum BaseTagType : unsigned int {
        TAG_START = 0, ///< "<start>": bottom of the stack
        TAG_RESPONSE = 1,
        TAG_RESPONSEHEADER = 2,
        TAG_RESULT = 3,
        TAG_PARAMETERS = 4,
        TAG_LOGUPLOADS = 5,
        TAG_STATUS = 6,
        TAG_ERROR = 7,
        TAG_PROTOCOLVERSION = 8,
        TAG_RETRYCONTROL = 9,
        TAG_MINTIMEOUT = 10,
        TAG_LOWFREQUENCYPOLLINTERVAL = 11,
        TAG_MEDIUMFREQUENCYPOLLINTERVAL = 12,
        TAG_HIGHFREQUENCYPOLLINTERVAL = 13,
        TAG_HIGHTOMEDIUMPOLLSWITCHINTERVAL = 14,
        TAG_MEDIUMTOLOWPOLLSWITCHINTERVAL = 15,
        TAG_LOGINTERVAL = 16,
        TAG_LOGLEVEL = 17,
        TAG_SUPPORTPHONE = 18,
        TAG_SUCCESS = 19,
        TAG_CODE = 20,
        TAG_ACTIONID = 21,
        TAG_USERTEXT = 22,
        TAG_METHOD = 23,
        TAG_PAYLOAD = 24,
        TAG_APPLICATION = 25,
        TAG_PERFORMANCE = 26,
        TAG_CRASH = 27,
        TAG_MOVIELOG = 28,
        TAG_TESTDRIVERIPADDR = 29,
        TAG_INVALID = 30,  ///< "<invalid>": every name no table lists
        TAG_FIRST_OWN = 31 ///< first id of a subclass table
    };

    /// Binds to `expat` and `responseData` (both kept by reference) and
    /// merges the base table with the `count` rows of `table` (which may be
    /// null when `count` is 0). A name already known keeps its first id, so
    /// a subclass cannot redefine a base name. The merged table is built
    /// once per process for each distinct table content and then shared.
    ParentParser(Expat& expat, ResponseData& responseData, const TagConfigTable* table,
                 unsigned int count);
    ~ParentParser() override;

    /// Parses the whole response `text`, filling the record. Each call starts
    /// from a clean state (empty stack with `TAG_START`, header mode) and
    /// resets the handle first. `cipherContext` may be empty; it is needed
    /// only for encrypted payloads (the header's, and those a subclass reads).
    ///
    /// Returns true for a well-formed document that was not rejected; false
    /// after a rejection (report printed, see above) or for malformed XML
    /// (call `showError(text)` for expat's report). An encrypted payload with
    /// an empty `cipherContext` is a rejection, not an exception. Either way
    /// `lastFailure()` then says why.
    ///
    /// Throws, with the parse stopped and the handle ready for reuse:
    /// - whatever the cipher context's `decrypt` throws for an encrypted
    ///   payload (the stand-in: `std::runtime_error` for a wrong key or a
    ///   tampered or truncated text);
    /// - `std::invalid_argument` for a payload marked unencrypted whose text
    ///   is not Base64;
    ///   for these two `lastFailure()` is filled (kind `ParseFailure::PAYLOAD`)
    ///   before the exception leaves, and nothing is printed; for those below
    ///   it stays `NONE`;
    /// - `std::runtime_error` with expat's error text for a decoded payload
    ///   that is not a well-formed fragment;
    /// - `std::invalid_argument` when the `Expat` holder has no handle;
    /// - `std::bad_alloc`, and whatever a subclass hook throws.
    bool parse(const std::string& text, const CipherContext& cipherContext);

    /// Prints expat's report for the last failed parse of `text` to standard
    /// output (or hands it to the report sink): "Parse error at offset <n>: <expat error text>",
    /// then the text up to 50 bytes either side of the offset with "[#!#]" at the offset. The
    /// offset is `lastFailure().byteOffset` whatever the kind of failure (expat's own position
    /// after a parse that failed nothing). An empty
    /// document, for which expat knows no offset, is reported at its end. Throws
    /// `std::out_of_range` when the offset lies beyond `text` (it was not the text parsed).
    void showError(const std::string& text) const;

    /// Sends every later report, whole, to `sink` instead of standard output;
    /// an empty function restores standard output. The sink is copied and
    /// called on the thread that parses; what it throws reaches the caller
    /// of `parse` (the failure is recorded all the same) or `showError`.
    void setReportSink(ReportSink sink);

    /// Why the last `parse` returned false: kind `NONE` after one that
    /// returned true, and before any. Cleared when `parse` starts; valid
    /// until the next `parse`. Prints nothing.
    const ParseFailure& lastFailure() const;

    /// The first name, in byte-wise name order, whose id is `tagType`, or
    /// "<unknown>".
    std::string getTagTypeName(unsigned int tagType) const;

    /// The id of element name `name` (without prefix), or `TAG_INVALID`.
    unsigned int tagStrToTagType(const std::string& name) const;

    /// The id of the innermost open element (`TAG_START` when none is open).
    unsigned int GetContext() const;

    /// Names the subclass in rejection reports, e.g. "PreregSubParser".
    virtual const char* getParserName() const = 0;

protected:
    /// True when element `tagType`, a child of "result", is the result body
    /// this parser reads; it then begins result mode.
    virtual bool canParseResultSubTag(unsigned int tagType) const = 0;

    /// Start of an element in result mode, inside `parentTagType`
    /// (`TAG_RESULT` for the element that begins result mode). False rejects
    /// the document.
    virtual bool onResultSubTagStartEvent(unsigned int parentTagType, unsigned int tagType,
                                          const std::string& name,
                                          const std::map<std::string, std::string>& attributes) = 0;

    /// End of element `tagType` in result mode. False rejects the document.
    /// A `ZuvoExceptionNoCipherContext` thrown here rejects it as well; any
    /// other exception reaches the caller of `parse`.
    virtual bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) = 0;

    /// A piece of text of element `tagType` in result mode, as it came (one
    /// element's text may arrive in several pieces).
    virtual void onResultSubDataEvent(unsigned int tagType, const std::string& text) = 0;

    void onTagStartEvent(const std::string& name,
                         const std::map<std::string, std::string>& attributes) override;
    void onTagEndEvent(const std::string& name) override;
    void onDataEvent(const std::string& text) override;

    /// Prints the rejection report for `currentTag` (emptying the stack as it
    /// lists it) and stops the parse; `lastFailure()` records it as a
    /// refusal (`ParseFailure::REJECTED`).
    void abort(const std::string& currentTag);

    void PushContext(unsigned int tagType);
    /// Removes the innermost id; nothing happens when the stack is empty.
    void PopContext();

    /// The cipher context of the current parse, for payloads in the result.
    const CipherContext& getCipherContext() const { return cipherContext; }

private:
    /// Expat's start tag callback while this parser parses: an element
    /// without attributes whose name a table lists goes to `onTagStartEvent`
    /// with the table's copy of its name; any other takes
    /// `ExpatHandler::startElement`.
    static void XMLCALL startTag(void* userData, const char* name, const char** attributes);
    /// Expat's end tag callback while this parser parses: an end tag that
    /// names the open element goes to `onTagEndEvent` as the table's copy of
    /// that name; any other takes `ExpatHandler::endElement`.
    static void XMLCALL endTag(void* userData, const char* name);

    void onHeaderTagStart(unsigned int parent, unsigned int tag, const std::string& name,
                          const std::map<std::string, std::string>& attributes);
    void onHeaderTagEnd(unsigned int tag);
    /// Records a failure of `kind` at the current event, reports it and
    /// stops the parse.
    void reject(ParseFailure::Kind kind, const std::string& currentTag);
    /// Records malformed XML once expat has given up on the document.
    void recordMalformed(const std::string& text);
    /// Records a payload that could not be opened at the end of `element`;
    /// the exception that says why goes on to the caller.
    void recordPayload(const std::string& element);
    /// Hands `report` to the sink, or prints it.
    void emit(const std::string& report) const;

    /// Where reports go and what the last failure was: one record, last in
    /// the parser and reached only from out-of-line members, so that later
    /// diagnostics are added in one place.
    struct Diagnostics {
        ReportSink sink;
        ParseFailure failure;
    };

    CipherContext cipherContext;
    std::shared_ptr<const TagTypeIndex> tagTypes; ///< merged table, shared
    std::deque<unsigned int> contextStack;        ///< open element ids, innermost at the back
    ResponseData* responseData;                   ///< the caller's record
    std::string dataText;                         ///< text of the open header element
    bool inResult;                                ///< the subclass owns the events
    bool payloadEncrypted;                        ///< the header payload is encrypted
    Diagnostics diagnostics;
};

} // namespace zuvolib
} // namespace velmora

#endif
