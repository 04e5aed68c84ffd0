// The capture room: HTTP Archive files read and written, the request
// reader with its small XML tree, and this decoder. It uses the records and
// common rooms; the server and the command line use it.
//
// Decoding protocol documents into JSON: requests back into the records
// `zuvo build --in` reads, responses into the records `zuvo parse` prints,
// and whole HTTP exchanges of a captured session.
//
// Payloads that do not open (wrong or missing key, damaged text) do not stop
// a decode: they are marked with an "error" member in the output, the fields
// they carry are left out, and `decodeFailed` tells the caller.
// Documents that are not what they claim to be throw RejectedError.
#ifndef ZUVO_TOOL_DECODE_H
#define ZUVO_TOOL_DECODE_H

#include "capture/Har.h"
#include "capture/XmlTree.h"
#include "common/Keys.h"
#include "records/JsonFields.h"

#include <string>

namespace zuvocli {

/// What a document is, by its document element.
enum class DocumentKind { Request, Response, Other };

/// The kind of `text` from the name of its document element ("zuvo:request",
/// "zuvo:response"); Other for anything else, including text that is not
/// XML. Reads no further than the document element's start tag.
DocumentKind documentKind(const std::string& text);

/// A request document as JSON:
///
///   {"request": "authorization",        message name as `zuvo build` takes it
///    "record": "AuthRequestData",
///    "fields": {...},                   every record field, in `--in` form
///    "namespace": "...",                only when it is not the one this
///                                       build writes
///    "rc": "...",                       only for messages that take --rc
///    "payloads": [{"element": "header/payload", "encrypted": true,
///                  "document": "<zuvo:clientservertimes>...",
///                  "fields": {"serverTime": 12, "clientTime": 34}}, ...]}
///
/// A payload that does not open has "error" in place of "document" and
/// "fields". Throws RejectedError for text that is not a well-formed request
/// of a known message, or whose elements do not fit the message's record.
Json decodeRequest(const std::string& text, const CipherContext& context);

/// The response type that the result body of `text` calls for: the element
/// under "zuvo:result" (and its "method" where several types share that
/// element); "plain" for an empty result. Empty when the body does not tell.
/// Throws RejectedError for text that is not a well-formed response.
std::string recognizeResponseType(const std::string& text);

/// A response document as JSON: {"response": TYPE, "record": "...",
/// "fields": {...}} with the fields as `zuvo parse TYPE` prints them. An
/// empty `type` is recognised from the body. Throws ParseFailedError (a
/// RejectedError carrying where the parse failed) for a malformed or
/// rejected response; RejectedError for one whose payload does not open or
/// whose type cannot be recognised; UsageError for an unknown `type`.
Json decodeResponse(const std::string& text, const std::string& type, const CipherContext& context);

/// True when `decoded` (from decodeRequest or decodeExchange) holds a
/// payload that did not open (marked "error" or "unreadable").
bool decodeFailed(const Json& decoded);

/// True when `entry`'s request body is a protocol request document.
bool isProtocolExchange(const HarEntry& entry);

/// One exchange as JSON: {"method", "url", "startedDateTime", "status",
/// "request": decoded request, "response": decoded response}. The response
/// is parsed with the type the request's message calls for (recognised from
/// its body when the request cannot be read). Nothing throws: a part that
/// cannot be read becomes {"error": "..."} ("request" or "response"; a
/// response parse failure as "response:LINE:COLUMN: ..."); a missing
/// response body {"missing": "..."}; a body that is no protocol document
/// {"notProtocol": "...", "body": {"mimeType", "size", "text" (its first
/// 200 characters) or "binary": true}}. A response whose payloads do not
/// open keeps its header fields, with "unreadable": {"fields": [names left
/// unread, "result" for the result's own], "reason": "..."}.
/// decodeFailed(result) is true only for payloads that did not open.
///
/// `requestRoot`, when given, is the request body's document element already
/// read, which spares reading the body again.
Json decodeExchange(const HarEntry& entry, const CipherContext& context,
                    const XmlElement* requestRoot = nullptr);

} // namespace zuvocli

#endif
