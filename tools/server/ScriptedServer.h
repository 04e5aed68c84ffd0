// The scripted server room: the answers per message family, scenarios that
// bend them, the serve session and its exchange log. It knows no HTTP; it
// uses the capture, records and common rooms, and the HTTP front and the
// demo command drive it.
//
// The scripted server of `zuvo demo`: it reads each request document the
// device sends, checks it, and writes the response a real server would,
// with encrypted payloads.
#ifndef ZUVO_TOOL_SCRIPTEDSERVER_H
#define ZUVO_TOOL_SCRIPTEDSERVER_H

#include "common/Keys.h"

#include <cstddef>
#include <string>

namespace zuvocli {

struct XmlElement;

/// Ways to bend one answer away from the normal reply, so that a device can
/// be shown refusals, undecryptable payloads, documents its parser rejects
/// and large catalogues. The default changes nothing.
struct ResponseVariation {
    /// Answer with success false and this code and user text instead; the
    /// session state stays as it was (nothing is issued or consumed).
    bool refuse = false;
    int code = 0;
    std::string userText;
    /// Seal every payload of the answer under a fresh random key.
    bool otherKey = false;
    /// Leave out the result's "method" attribute, which every response
    /// parser rejects.
    bool dropMethod = false;
    /// For authorization: this many video downloadables instead of one per
    /// requested video profile (0 keeps the normal count).
    std::size_t downloadables = 0;
};

/// Plays the server for one device session. It remembers what it issued (the
/// registration code, the client and movie tickets) and checks that later
/// requests bring them back.
class ScriptedServer {
public:
    /// `context` holds the key shared with the device.
    explicit ScriptedServer(const CipherContext& context);

    /// The response document for `request`. Understands ping,
    /// pre-registration, registration by code, authorization, play data and
    /// log blob. Throws std::runtime_error naming what is wrong with a request
    /// it cannot accept (malformed, wrong namespace, undecryptable payload,
    /// unknown registration code, ...). `variation` bends the answer once
    /// the request's header has been accepted.
    std::string answer(const std::string& request,
                       const ResponseVariation& variation = ResponseVariation());

    /// The name without prefix of the message element of `request` ("ping"),
    /// or the empty string when the text is not a request document with a
    /// header and one message. Never throws for bad text.
    static std::string messageName(const std::string& request);

    /// What the server issued, for the session to check against.
    const std::string& registrationCode() const { return regCode; }
    const std::string& movieTicket() const { return mticket; }

private:
    /// The fragment inside payload text, decrypted or Base64-decoded as the
    /// request's header said.
    std::string openPayload(const std::string& text) const;
    /// `fragment` as payload text for a response: encrypted with the key.
    std::string sealPayload(const std::string& fragment) const;

    /// Writes the response: header with the times, then the result.
    struct Result;
    std::string respond(const Result& result) const;

    void answerRegister(const XmlElement& message, Result& result);
    void answerAuthorization(const XmlElement& message, std::size_t downloadables, Result& result);
    void answerPlaydata(const XmlElement& message, Result& result) const;
    void answerLogblob(const XmlElement& message, Result& result) const;

    CipherContext context;
    CipherContext sealContext;   ///< seals the current answer's payloads
    bool encrypted = true;       ///< the current request's header payload form
    unsigned int serverTime;     ///< the server's clock, one tick per request
    unsigned int clientTime = 0; ///< the device's time in the current request
    std::string regCode;         ///< issued at pre-registration
    std::string mticket;         ///< issued at authorization
    int movieId = 0;             ///< the authorized title
};

} // namespace zuvocli

#endif
