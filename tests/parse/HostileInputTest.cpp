// Responses as an attacker or a broken link may deliver them: entity bombs,
// absurd nesting and sizes, bytes that are not UTF-8, truncation, tampered
// payloads. Each case checks the documented outcome and that the same parser
// object then reads a good document.
#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

// Sizes in megabytes; under valgrind the large cases shrink
// (scripts/run-memcheck sets the variable).
std::size_t megabytes(std::size_t normal) {
    return (std::getenv("ZUVO_UNDER_VALGRIND") ? normal / 10 : normal) << 20;
}

// The largest resident size of the process so far, in kilobytes.
long peakRssKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

const std::string GOOD = responseDoc(basicHeader(), el(2, "regcode", "AB12"));

typedef Harness<PreregSubParser, PreregResponseData> Prereg;
typedef Harness<RegSubParser, RegResponseData> Reg;

// The parser object still reads a good document in full.
void expectReadsGoodDocument(Prereg& p) {
    p.data = PreregResponseData();
    ASSERT_TRUE(p.parse(GOOD));
    EXPECT_EQ(p.data.regCode, "AB12");
    EXPECT_EQ(p.data.serverTime, 1000u);
}

std::string repeat(const std::string& piece, std::size_t times) {
    std::string text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

TEST(HostileInput, EntityExpansionStopsAtTheAmplificationLimit) {
    // Nested expansion, ten levels of ten: gigabytes if expanded. The limit
    // is expat's, on the expansion ratio, so one large entity used many
    // times meets the same check.
    std::string doctype = "<!DOCTYPE zuvo:response [<!ENTITY l0 \"lol\">";
    for (int level = 1; level < 10; ++level) {
        doctype += "<!ENTITY l" + std::to_string(level) + " \"" +
                   repeat("&l" + std::to_string(level - 1) + ";", 10) + "\">";
    }
    std::string doc = responseDoc(basicHeader(), el(2, "regcode", "&l9;"));
    doc.insert(doc.find('\n') + 1, doctype + "]>\n");
    const long before = peakRssKb();
    Prereg p;
    EXPECT_FALSE(p.parse(doc));
    EXPECT_NE(p.report(doc).find("amplification"), std::string::npos) << p.report(doc);
    EXPECT_LT(peakRssKb() - before, 256 * 1024) << "kB grown while rejecting";
    expectReadsGoodDocument(p);
}

TEST(HostileInput, DeepNestingNeedsNoStack) {
    const std::size_t depth = 100000;
    const std::string open = repeat("<zuvo:n>", depth), close = repeat("</zuvo:n>", depth);
    Prereg p;
    // In the result body and in the header.
    ASSERT_TRUE(p.parse(responseDoc("", el(2, "regcode", open + "AB" + close))));
    EXPECT_EQ(p.data.regCode, "") << "the innermost element took the text";
    ASSERT_TRUE(p.parse(responseDoc(open + close, el(2, "regcode", "CD"))));
    EXPECT_EQ(p.data.regCode, "CD");
    // Unclosed: malformed, and the rejection report of a mismatch lists
    // every open element without recursion.
    EXPECT_FALSE(p.parse(open));
    EXPECT_FALSE(p.parse(responseDoc("", el(2, "regcode", open + "</zuvo:x>" + close))));
    expectReadsGoodDocument(p);

    // The authorization body reads elements wherever they stand.
    Harness<AuthSubParser, AuthResponseData> auth;
    ASSERT_TRUE(auth.parse(responseDoc(
        "", block(2, "authorization", open + el(3, "cdns", "") + close, " movie_id=\"7\""))));
    EXPECT_EQ(auth.data.movieId, 7);

    // The same depth inside a header payload.
    const std::string payload = base64(timesFragment("5", "6") + open + close);
    ASSERT_TRUE(p.parse(responseDoc(el(2, "payload", payload, " encrypted=\"false\""), "")));
    EXPECT_EQ(p.data.serverTime, 5u);
}

TEST(HostileInput, HugeTextAndAttributeAreReadWhole) {
    const std::string text(megabytes(50), 'a');
    Prereg p;
    ASSERT_TRUE(p.parse(responseDoc(basicHeader(), el(2, "regcode", text))));
    EXPECT_EQ(p.data.regCode.size(), text.size());
    EXPECT_EQ(p.data.regCode.find_first_not_of('a'), std::string::npos);

    const std::string value(megabytes(10), 'v');
    ASSERT_TRUE(p.parse(responseDoc("", el(2, "regcode", "X"), " method=\"" + value + "\"")));
    EXPECT_EQ(p.data.method, value);
    expectReadsGoodDocument(p);

    const PayloadDecryptor payload(Context(), base64("<a v=\"" + value + "\"/>"), false);
    EXPECT_EQ(payload.getAttr("a", "v").size(), value.size());
}

TEST(HostileInput, BytesThatAreNotUtf8AreMalformed) {
    // Never in UTF-8, an overlong "/", a surrogate, a sequence cut short, a
    // reference to NUL, a control character, NUL itself.
    const std::string bad[] = {"\xff", "\xc0\xaf", "\xed\xa0\x80",      "\xe2\x82",
                               "&#0;", "\x01",     std::string(1, '\0')};
    Prereg p;
    for (const std::string& bytes : bad) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        const std::string doc = responseDoc(basicHeader(), el(2, "regcode", "A" + bytes));
        EXPECT_FALSE(p.parse(doc));
        EXPECT_NE(p.report(doc).find("Parse error at offset "), std::string::npos);
        EXPECT_THROW(PayloadDecryptor(Context(), base64("<a>" + bytes + "</a>"), false),
                     std::runtime_error);
    }
    expectReadsGoodDocument(p);
}

// A registration response with an encrypted header payload and an
// encrypted ticket.
std::string sealedRegistration(const Context& context) {
    const std::string header =
        block(2, "status", el(3, "success", "true")) +
        el(2, "payload", seal(context, timesFragment("11", "22")), " encrypted=\"true\"");
    const std::string ticket =
        "<zuvo:cticket expiration=\"5\">VA==</zuvo:cticket><zuvo:rs>x</zuvo:rs>";
    return responseDoc(header,
                       block(2, "registrationdata",
                             el(3, "userid", "u") + el(3, "payload", seal(context, ticket))));
}

TEST(HostileInput, TruncationAtEveryOffsetIsMalformed) {
    const Context context = keyedContext();
    const std::string doc = sealedRegistration(context);
    const std::size_t complete = doc.rfind('>') + 1;
    Reg r;
    for (std::size_t size = 0; size <= doc.size(); ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        const std::string cut = doc.substr(0, size);
        ASSERT_EQ(r.parse(cut, context), size >= complete); // an exception fails the test
        if (size < complete)
            r.report(cut);
    }
    EXPECT_EQ(r.data.userId, "u");
    EXPECT_EQ(r.data.clientTicketExpiration, 5u);
    EXPECT_EQ(r.data.serverTime, 11u);
}

TEST(HostileInput, TamperedPayloadThrowsAndTheParserRecovers) {
    const Context context = keyedContext();
    std::string flipped = seal(context, timesFragment("11", "22"));
    flipped[20] = flipped[20] == 'A' ? 'B' : 'A';
    // How the cipher tells damage apart is its own test's concern: one kind
    // of damage shows that its error leaves the parser. A plain payload that
    // is not Base64 is checked with the other errors thrown out of a parse.
    const std::pair<std::string, bool> cases[] = {{flipped, true},
                                                  {base64("<zuvo:servertime>1"), false}};
    Reg r;
    for (const auto& [payload, encrypted] : cases) {
        SCOPED_TRACE(payload);
        const std::string header =
            el(2, "payload", payload, encrypted ? " encrypted=\"true\"" : " encrypted=\"false\"");
        EXPECT_THROW(r.parse(responseDoc(header, ""), context), std::runtime_error);
        // The same damage in the ticket payload of the result.
        const std::string body = block(2, "registrationdata", el(3, "payload", payload));
        if (encrypted) {
            EXPECT_THROW(r.parse(responseDoc("", body), context), std::runtime_error);
        }
        ASSERT_TRUE(r.parse(sealedRegistration(context), context));
        EXPECT_EQ(r.data.serverTime, 11u);
    }
}

} // namespace
