// The request handling behind `zuvo serve`: a session answered in order,
// hostile bodies refused with 400 and a one-line reason (never a crash; this
// runs under the sanitizers in CI), and scenario rules applied by call.
#include "server/ServeSession.h"
#include "records/RequestMessages.h"
#include "records/ResponseTypes.h"
#include "request/RequestTestSupport.h"
#include "server/Scenario.h"

#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace zuvocli;
using zuvotest::header;
namespace zl = velmora::zuvolib;

namespace {

/// Real requests of each message the server answers, under the key of
/// bytes `key`.
struct Requests {
    explicit Requests(unsigned char key = 0x5a)
        : context(makeCipherContext(std::vector<unsigned char>(KEY_BYTES, key))) {}
    CipherContext context;
    std::string ping = zl::RequestBuilder::buildRequest(zl::PingRequestData{header()}, context);
    std::string prereg = zl::RequestBuilder::buildRequest(zl::PreregRequestData{header()}, context);
    const zl::AuthRequestData authData{
        header(), 42, 0, {zl::PROFILE_PLAYREADY_H264MPL30_PIFF}, {zl::PROFILE_HEAAC_2_PIFF}, {}};
    std::string auth = zl::RequestBuilder::buildRequest(authData, context);
    std::string reg(const std::string& code) const {
        return zl::RequestBuilder::buildRequest(zl::RegRequestData{header(), 0, code}, context,
                                                "rc-1");
    }
};

/// A refusal is a single short line of plain text.
void expectOneLineRefusal(const ServeReply& reply, const std::string& what) {
    ASSERT_EQ(reply.status, 400) << what;
    EXPECT_EQ(reply.contentType.compare(0, 10, "text/plain"), 0) << what;
    ASSERT_FALSE(reply.body.empty()) << what;
    EXPECT_EQ(reply.body.find('\n'), reply.body.size() - 1) << what << ": " << reply.body;
    EXPECT_LE(reply.body.size(), 250u) << what;
}

/// A device built from the tool's message tables: each request made as
/// `zuvo build` makes it, answered, and read with the parser `zuvo parse`
/// uses for its answer; it echoes the server time as a device does.
struct TableDevice {
    TableDevice(ServeSession& server, const CipherContext& context, std::string rc)
        : server(server), context(context), rc(std::move(rc)) {}

    /// Sends `message` with `fields`; the parsed answer, or a failure.
    Json send(const std::string& message, Json fields = Json::object()) {
        const RequestMessage& m = findRequestMessage(message);
        fields["serverTime"] = serverTime;
        const ServeReply reply = server.handle(m.build(fields, {}, rc, context));
        EXPECT_EQ(reply.status, 200) << message << ": " << reply.body;
        if (reply.status != 200)
            return Json();
        const Json parsed = findResponseType(m.answer).parse(reply.body, context);
        EXPECT_TRUE(parsed["success"].get<bool>()) << message;
        serverTime = parsed["serverTime"].get<unsigned int>();
        return parsed;
    }

    /// A whole session: every message, in the order a device sends them.
    void runSession() {
        send("ping");
        const Json code = send("prereg");
        send("register", {{"regType", 0}, {"regCode", code["regCode"]}});
        const Json auth = send("authorization", {{"movieId", 70143836},
                                                 {"videoProfiles", {"playready-h264mpl30-piff"}},
                                                 {"audioProfiles", {"heaac-2-piff"}}});
        send("playdata", {{"lticket", auth["movieTicket"]}, {"movieId", 70143836}});
        send("logblob", {{"sequenceNumber", 1}, {"logData", "Ym9vdA=="}});
        for (int type : {0, 1, 3})
            send("authrenew", {{"renewalType", type}, {"shopperId", "s-1"}, {"nasToken", "n-1"}});
        send("x509provision");
        send("npticketprovision");
        EXPECT_FALSE(send("ecclinkprovision", {{"nasToken", "nas-42"}})["provisionData"].empty());
        send("webapienroll", {{"oauthRequestToken", "t"}, {"oauthConsumerKey", "k"}});
        send("webapiproxy", {{"url", "/v1/titles?page=2"}});
        send("register", {{"regType", 1}});
        send("tokenregister", {{"idCookies", {{{"name", "SecureId"}, {"value", "abc"}}}}});
    }

    ServeSession& server;
    CipherContext context;
    std::string rc;
    unsigned int serverTime = 0;
};

TEST(ServeSession, AnswersEveryMessageWithWhatItsParserReads) {
    const Requests requests;
    ServeSession session(requests.context, Scenario());
    TableDevice device(session, requests.context, "rc-1");
    device.runSession();
    // What comes back must be what was issued: the code, the rc, the ticket.
    expectOneLineRefusal(session.handle(requests.reg("K7Q2MX")), "code already used");
    expectOneLineRefusal(
        session.handle(findRequestMessage("x509provision")
                           .build(Json::object(), {}, "rc-unknown", requests.context)),
        "rc never registered");
    expectOneLineRefusal(
        session.handle(findRequestMessage("playdata")
                           .build({{"lticket", "TVQtMDAx"}}, {}, "", requests.context)),
        "ticket never issued");
    // A request under another key is refused, not answered.
    expectOneLineRefusal(session.handle(Requests(0x11).auth), "other key");
}

TEST(ServeSession, DevicesInParallelSeeOnlyTheirOwnSessions) {
    const Requests requests;
    ServeSession session(requests.context, Scenario());
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            TableDevice device(session, requests.context, "rc-" + std::to_string(i));
            for (int round = 0; round < 3; ++round)
                device.runSession();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    // Each device's registration, ticket and rc kept one session apiece.
    EXPECT_EQ(session.devices(), 8u * 3);
}

TEST(ServeSession, IdleSessionsAreDropped) {
    const Requests requests;
    ServeSession session(requests.context, Scenario(), std::chrono::milliseconds(0));
    ASSERT_EQ(session.handle(requests.prereg).status, 200);
    EXPECT_EQ(session.devices(), 1u);
    // With no idle time allowed, the next look-up drops it.
    session.handle(requests.ping);
    EXPECT_EQ(session.devices(), 0u);
}

TEST(ServeSession, HostileBodiesGetOneLineRefusals) {
    const Requests requests;
    std::vector<std::string> bodies = {
        "",
        "hello",
        std::string(1 << 20, 'A'),
        std::string("\0\0\0<zuvo:request>", 17),
        "\xff\xfe<\0z\0",
        "<zuvo:request xmlns:zuvo=\"http://other.example/\"><zuvo:header/><zuvo:ping/>"
        "</zuvo:request>",
        "<zuvo:response/>",
        "<!DOCTYPE r [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
        "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;\">]>"
        "<zuvo:request>&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;</zuvo:request>",
        "<!DOCTYPE r [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><zuvo:request>&x;</zuvo:request>",
    };
    // Deep nesting, closed and unclosed, bare and inside a real header.
    std::string open, close;
    for (int i = 0; i < 200000; ++i) {
        open += "<a>";
        close += "</a>";
    }
    bodies.push_back(open);
    bodies.push_back(open + close);
    std::string nested = requests.ping;
    nested.insert(nested.find("<zuvo:header>") + 13, open + close);
    bodies.push_back(nested);
    // Numbers beyond every integer type where the server reads one.
    std::string bigTime = requests.auth;
    bigTime.replace(bigTime.find("<zuvo:movieid>") + 14, 2, "99999999999999999999999");
    bodies.push_back(bigTime);

    // Every prefix of real requests at a step, and random byte mutations.
    std::mt19937 rng(20261123);
    for (const std::string& real : {requests.ping, requests.prereg, requests.auth}) {
        for (std::size_t n = 0; n < real.size(); n += 7)
            bodies.push_back(real.substr(0, n));
        for (int i = 0; i < 300; ++i) {
            std::string mutated = real;
            for (unsigned int k = 1 + rng() % 4; k > 0; --k)
                mutated[rng() % mutated.size()] = static_cast<char>(rng() % 256);
            bodies.push_back(mutated);
        }
    }

    ServeSession session(requests.context, Scenario());
    std::size_t answered = 0;
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        const ServeReply reply = session.handle(bodies[i]);
        const std::string what = "body " + std::to_string(i);
        if (reply.status == 200) {
            // A mutation may hit text the server does not check.
            EXPECT_EQ(reply.body.compare(0, 5, "<?xml"), 0) << what;
            ++answered;
        } else {
            expectOneLineRefusal(reply, what);
        }
    }
    EXPECT_LT(answered, bodies.size() / 2);
    // The session is still usable afterwards.
    EXPECT_EQ(session.handle(requests.ping).status, 200);
}

// The catalogue rules (downloadables, reject) are shown through the device
// example against the installed server.
TEST(ServeSession, ScenarioRulesApplyByMessageAndCall) {
    const Requests requests;
    const Scenario scenario = Scenario::parse(R"({"rules": [
        {"message": "ping", "call": 2, "status": 503},
        {"message": "ping", "call": 3, "truncate": 40},
        {"message": "preregister", "refuse": {"code": 1011, "userText": "Try <later> & again"}}
    ]})",
                                              "test.json");
    ServeSession session(requests.context, scenario);

    const ServeReply first = session.handle(requests.ping);
    EXPECT_EQ(first.status, 200);
    EXPECT_EQ(session.handle(requests.ping).status, 503);
    const ServeReply third = session.handle(requests.ping);
    EXPECT_EQ(third.status, 200);
    EXPECT_EQ(third.body.size(), 40u);
    EXPECT_EQ(session.handle(requests.ping).body.size(), first.body.size());

    const ServeReply refused = session.handle(requests.prereg);
    EXPECT_NE(refused.body.find("<zuvo:success>false</zuvo:success>"), std::string::npos);
    EXPECT_NE(refused.body.find("<zuvo:code>1011</zuvo:code>"), std::string::npos);
    EXPECT_NE(refused.body.find("<zuvo:usertext>Try &lt;later&gt; &amp; again</zuvo:usertext>"),
              std::string::npos);
    // Nothing was issued: registration with the first code is refused.
    EXPECT_EQ(session.handle(requests.reg("K7Q2MX")).status, 400);
}

} // namespace
