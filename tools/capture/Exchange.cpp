// Decoding one captured HTTP exchange: the request, the response read with
// the parser its request calls for, and what became of it. A response whose
// payloads do not open still shows its envelope and header.
#include "capture/Exchange.h"
#include "capture/Decode.h"
#include "capture/RequestReader.h"

#include "common/Errors.h"
#include "common/FailureLine.h"
#include "common/ParseResponse.h"
#include "records/RequestMessages.h"
#include "records/ResponseTypes.h"

#include <cstring>

namespace zuvocli {
namespace {

/// How runParser starts the message of a payload that opened but is not a
/// document.
const char* const PAYLOAD_FAILURE = "a payload of the response could not be read";

Json errorJson(const std::exception& e) {
    // A parse failure says where, in the one-line form the tool uses.
    const ParseFailedError* failed = dynamic_cast<const ParseFailedError*>(&e);
    Json error = {
        {"error", failed ? failureLine("response", failed->failure, failed->cause) : e.what()}};
    const RejectedError* rejected = dynamic_cast<const RejectedError*>(&e);
    if (rejected && !rejected->details.empty())
        error["details"] = rejected->details;
    return error;
}

/// `text` without its payload elements; only those inside `within` (an
/// element name) when it is not empty.
std::string withoutPayloads(const std::string& text, const std::string& within) {
    std::size_t from = 0;
    std::size_t to = text.size();
    if (!within.empty()) {
        from = text.find("<" + within);
        to = text.find("</" + within, from == std::string::npos ? 0 : from);
        if (from == std::string::npos || to == std::string::npos)
            return text;
    }
    std::string out = text.substr(0, from);
    while (from < to) {
        const std::size_t start = text.find("<zuvo:payload", from);
        if (start == std::string::npos || start >= to)
            break;
        out.append(text, from, start - from);
        const std::size_t close = text.find('>', start);
        if (close == std::string::npos)
            return text;
        if (text[close - 1] == '/') {
            from = close + 1;
            continue;
        }
        const std::size_t end = text.find("</zuvo:payload>", close);
        if (end == std::string::npos)
            return text;
        from = end + std::string("</zuvo:payload>").size();
    }
    out.append(text, from, std::string::npos);
    return out;
}

/// The fields of a response whose payloads do not open: its header and
/// what of its result can be read without them, and the fields left
/// unread, with `reason`.
Json responseWithoutPayloads(const std::string& text, std::string type, const std::string& reason,
                             const CipherContext& context) {
    Json decoded;
    Json unread = Json::array({"serverTime", "clientTime"});
    try {
        if (type.empty())
            type = recognizeResponseType(text);
        const ResponseType& parser = findResponseType(type);
        decoded = {{"response", parser.name}, {"record", parser.record}};
        // The header's payload carries only the times; the result may
        // carry none.
        decoded["fields"] = parser.parse(withoutPayloads(text, "zuvo:responseheader"), context);
    } catch (const std::exception&) {
        const ResponseType& plain = findResponseType("plain");
        if (decoded.is_null())
            decoded = {{"response", plain.name}, {"record", plain.record}};
        decoded["fields"] = plain.parse(withoutPayloads(text, std::string()), context);
        unread.push_back("result");
    }
    for (const Json& name : unread)
        decoded["fields"].erase(name.get<std::string>());
    decoded["unreadable"] = {{"fields", unread}, {"reason", reason}};
    return decoded;
}

/// What a body that is not a protocol document holds: the start of its
/// text, or its size and type when it is binary.
Json bodyPreview(const HarEntry& entry) {
    const std::string& body = entry.responseBody;
    Json preview = {{"mimeType", entry.responseMimeType}, {"size", body.size()}};
    bool text = true;
    for (unsigned char c : body)
        text = text && (c >= 0x20 || c == '\t' || c == '\r' || c == '\n');
    if (!text) {
        preview["binary"] = true;
        return preview;
    }
    std::size_t cut = std::min<std::size_t>(body.size(), 200);
    while (cut < body.size() && cut > 0 && (static_cast<unsigned char>(body[cut]) & 0xC0) == 0x80)
        --cut; // not inside a UTF-8 sequence
    preview["text"] = body.substr(0, cut) + (cut < body.size() ? "..." : "");
    return preview;
}

bool payloadFailed(const Json& part) {
    if (!part.is_object() || !part.contains("payloads"))
        return false;
    for (const Json& payload : part["payloads"]) {
        if (payload.contains("error"))
            return true;
    }
    return false;
}

/// The first text of `member` found in the request or response.
std::string firstText(const Json& exchange, const char* member) {
    for (const char* part : {"request", "response"}) {
        const Json& p = exchange[part];
        if (p.contains(member) && p[member].is_string())
            return p[member].get<std::string>();
        if (p.contains("payloads")) {
            for (const Json& payload : p["payloads"]) {
                if (payload.contains(member))
                    return payload[member].get<std::string>();
            }
        }
    }
    return std::string();
}

} // namespace

bool decodeFailed(const Json& decoded) {
    if (payloadFailed(decoded))
        return true;
    for (const char* part : {"request", "response"}) {
        if (decoded.contains(part) && decoded[part].is_object() &&
            (payloadFailed(decoded[part]) || decoded[part].contains("unreadable")))
            return true;
    }
    return false;
}

bool isProtocolExchange(const HarEntry& entry) {
    return entry.hasRequestBody && documentKind(entry.requestBody) == DocumentKind::Request;
}

Json decodeExchange(const HarEntry& entry, const CipherContext& context,
                    const XmlElement* requestRoot) {
    Json exchange = {{"method", entry.method},
                     {"url", entry.url},
                     {"startedDateTime", entry.startedDateTime},
                     {"status", entry.status}};
    std::string type;
    try {
        exchange["request"] = requestRoot ? readRequest(*requestRoot, context)
                                          : decodeRequest(entry.requestBody, context);
        type = findRequestMessage(exchange["request"]["request"].get<std::string>()).answer;
    } catch (const std::exception& e) {
        exchange["request"] = errorJson(e);
    }
    if (!entry.hasResponseBody) {
        exchange["response"] = {{"missing", "the capture holds no response body"}};
        return exchange;
    }
    if (documentKind(entry.responseBody) != DocumentKind::Response) {
        exchange["response"] = {{"notProtocol", "the response body is not a protocol response"},
                                {"body", bodyPreview(entry)}};
        return exchange;
    }
    try {
        exchange["response"] = decodeResponse(entry.responseBody, type, context);
    } catch (const ParseFailedError& e) {
        // A payload the key cannot open leaves the rest of the response
        // readable; any other failure is the parser's verdict.
        exchange["response"] =
            e.failure.kind == velmora::zuvolib::ParseFailure::PAYLOAD
                ? responseWithoutPayloads(entry.responseBody, type,
                                          failureLine("response", e.failure, e.cause), context)
                : errorJson(e);
    } catch (const RejectedError& e) {
        const std::string what = e.what();
        exchange["response"] =
            what.compare(0, std::strlen(PAYLOAD_FAILURE), PAYLOAD_FAILURE) == 0
                ? responseWithoutPayloads(entry.responseBody, type, what, context)
                : errorJson(e);
    } catch (const std::exception& e) {
        exchange["response"] = errorJson(e);
    }
    return exchange;
}

std::string exchangeOutcome(const Json& exchange, std::string& reason) {
    const Json& request = exchange["request"];
    const Json& response = exchange["response"];
    if (decodeFailed(exchange)) {
        reason = response.contains("unreadable")
                     ? response["unreadable"]["reason"].get<std::string>()
                     : firstText(exchange, "error");
        return OUTCOME_UNREADABLE;
    }
    if (response.contains("missing")) {
        reason = exchange.contains("failure") ? exchange["failure"].get<std::string>()
                                              : response["missing"].get<std::string>();
        return OUTCOME_NO_RESPONSE;
    }
    if (response.contains("notProtocol")) {
        const Json& body = response["body"];
        reason = body.contains("text") ? body["text"].get<std::string>()
                                       : std::to_string(body["size"].get<std::size_t>()) +
                                             " bytes of " + body["mimeType"].get<std::string>();
        return OUTCOME_NOT_PROTOCOL;
    }
    if (request.contains("error") || response.contains("error")) {
        reason = firstText(exchange, "error");
        return OUTCOME_REJECTED;
    }
    const Json& fields = response["fields"];
    if (fields.contains("success") && fields["success"] == false) {
        reason = fields.contains("userText") ? fields["userText"].get<std::string>() : "";
        return OUTCOME_REFUSED;
    }
    reason = fields.contains("userText") ? fields["userText"].get<std::string>() : "";
    return OUTCOME_OK;
}

} // namespace zuvocli
