// The request handling behind `zuvo serve`: a session answered in order,
// hostile bodies refused with 400 and a one-line reason (never a crash; this
// runs under the sanitizers in CI), and scenario rules applied by call.
#include "server/ServeSession.h"
#include "request/RequestTestSupport.h"
#include "server/Scenario.h"

#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
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

TEST(ServeSession, AnswersASessionAndChecksWhatItIssued) {
    const Requests requests;
    ServeSession session(requests.context, Scenario());
    EXPECT_EQ(session.handle(requests.ping).status, 200);
    // Registration before the code was issued, then with a code never issued.
    expectOneLineRefusal(session.handle(requests.reg("K7Q2MX")), "register before prereg");
    const ServeReply prereg = session.handle(requests.prereg);
    ASSERT_EQ(prereg.status, 200);
    EXPECT_NE(prereg.body.find("<zuvo:regcode>K7Q2MX</zuvo:regcode>"), std::string::npos);
    expectOneLineRefusal(session.handle(requests.reg("WRONG1")), "unknown code");
    EXPECT_EQ(session.handle(requests.reg("K7Q2MX")).status, 200);
    const ServeReply auth = session.handle(requests.auth);
    EXPECT_EQ(auth.status, 200);
    EXPECT_EQ(auth.message, "authorization");
    EXPECT_EQ(auth.call, 1u);

    // A request under another key is refused, not answered.
    expectOneLineRefusal(session.handle(Requests(0x11).auth), "other key");
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
    // Nothing was issued: registration with the usual code is refused.
    EXPECT_EQ(session.handle(requests.reg("K7Q2MX")).status, 400);
}

} // namespace
