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
#include <memory>
#include <string>

namespace zuvocli {

struct XmlElement;
typedef std::shared_ptr<const XmlElement> XmlElementPtr;

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

/// A request document read and checked apart from any session: its
/// envelope, the times of its header and the message's own payload opened.
/// Reading needs no session state, so requests of different devices are
/// read (and decrypted) in parallel.
struct OpenedRequest {
    XmlElementPtr root;          ///< the whole document
    bool encrypted = true;       ///< the header payload's form, also that of the answer
    unsigned int serverTime = 0; ///< the server time the device echoes
    unsigned int clientTime = 0;
    std::string message;            ///< message element name without prefix, e.g. "register"
    XmlElementPtr inner;            ///< the message's opened "zuvo:payload", or null
    const XmlElement& body() const; ///< the message element
};

/// Plays the server for one device session. It remembers what it issued (the
/// registration code, the client and movie tickets, the device's rc) and
/// checks that later requests bring them back.
class ScriptedServer {
public:
    /// `context` holds the key shared with the device.
    explicit ScriptedServer(const CipherContext& context);

    /// Reads `request` with `context`: the envelope, the header payload
    /// (whose form must match whether `context` has a key) and the message's
    /// own payload. Throws std::runtime_error naming what is wrong.
    static OpenedRequest open(const std::string& request, const CipherContext& context);

    /// The response document for `request`. Understands all thirteen
    /// messages. Throws std::runtime_error naming what is wrong with a request
    /// it cannot accept (malformed, wrong namespace, undecryptable payload,
    /// unknown registration code or rc, ...). `variation` bends the answer
    /// once the request's header has been accepted.
    std::string answer(const std::string& request,
                       const ResponseVariation& variation = ResponseVariation());
    /// The same for a request already opened.
    std::string answer(const OpenedRequest& request,
                       const ResponseVariation& variation = ResponseVariation());

    /// The name without prefix of the message element of `request` ("ping"),
    /// or the empty string when the text is not a request document with a
    /// header and one message. Never throws for bad text.
    static std::string messageName(const std::string& request);

    /// What the server issued or learnt, by which a later request of the
    /// same device is recognised; empty while not issued.
    const std::string& registrationCode() const { return regCode; }
    const std::string& movieTicket() const { return mticket; }
    const std::string& deviceRc() const { return rc; }
    /// The server time of the last answer (0 before the first).
    unsigned int lastServerTime() const { return serverTime; }

private:
    /// `fragment` as payload text for a response: encrypted with the key.
    std::string sealPayload(const std::string& fragment) const;
    /// The opened payload of `request`; refuses the request when it has none.
    static const XmlElement& inner(const OpenedRequest& request);
    /// Refuses the request unless `text` is the rc this device registered.
    void checkRc(const std::string& text) const;
    /// The client ticket and rs payload issued for `rcText`.
    std::string issueClientTicket(const std::string& rcText);

    /// Writes the response: header with the times, then the result.
    struct Result;
    std::string respond(const Result& result) const;

    void answerRegister(const OpenedRequest& request, Result& result);
    void answerAuthrenew(const OpenedRequest& request, Result& result);
    void answerAuthorization(const XmlElement& message, std::size_t downloadables, Result& result);
    void answerPlaydata(const OpenedRequest& request, Result& result) const;
    void answerLogblob(const XmlElement& message, Result& result) const;
    void answerProvision(const OpenedRequest& request, Result& result) const;
    void answerWebApi(const OpenedRequest& request, Result& result) const;

    CipherContext context;
    CipherContext sealContext;   ///< seals the current answer's payloads
    bool encrypted = true;       ///< the current request's header payload form
    unsigned int serverTime = 0; ///< the time of the last answer, from the shared clock
    unsigned int clientTime = 0; ///< the device's time in the current request
    std::string regCode;         ///< issued at pre-registration, until used
    std::string rc;              ///< the device's rc, learnt at registration
    std::string mticket;         ///< issued at authorization
    int movieId = 0;             ///< the authorized title
};

/// A fresh registration code: six characters, none easily misread, never
/// the same twice in one process; the first is "K7Q2MX".
std::string nextRegistrationCode();

} // namespace zuvocli

#endif
