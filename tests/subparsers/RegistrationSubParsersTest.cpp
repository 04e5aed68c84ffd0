#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

std::vector<unsigned char> bytes(const std::string& text) {
    return std::vector<unsigned char>(text.begin(), text.end());
}

const std::string TICKET =
    "<zuvo:cticket expiration=\"1893456000000\">Q1RJQ0tFVA==</zuvo:cticket>\n"
    "<zuvo:rs>cnMtZGF0YQ==</zuvo:rs>\n";

// The ticket values `TICKET` carries.
template <typename D> void expectTicket(const D& data) {
    EXPECT_EQ(data.clientTicket, bytes("Q1RJQ0tFVA=="));
    EXPECT_EQ(data.clientTicketExpiration, 1893456000000ull);
    EXPECT_EQ(data.rsData, bytes("cnMtZGF0YQ=="));
}

TEST(PreregSubParser, ReadsTheRegistrationCode) {
    Harness<PreregSubParser, PreregResponseData> h;
    ASSERT_TRUE(
        h.parse(responseDoc(basicHeader(), el(2, "regcode", "AB12") + el(2, "retryinterval", "30") +
                                               el(2, "totaltime", "-900"))));
    EXPECT_EQ(h.data.regCode, "AB12");
    EXPECT_EQ(h.data.retryInterval, 30);
    EXPECT_EQ(h.data.totalTime, -900);
    EXPECT_EQ(h.data.serverTime, 1000u);

    h.data.retryInterval = 7;
    ASSERT_TRUE(h.parse(responseDoc("", el(2, "regcode", "X"))));
    EXPECT_EQ(h.data.regCode, "X");
    EXPECT_EQ(h.data.retryInterval, 7) << "an absent element leaves the field alone";
}

std::string registration(const std::string& payload, const std::string& header = "") {
    return responseDoc(header, block(2, "registrationdata",
                                     el(3, "userid", "  u-1001  ") +
                                         el(3, "userdescription", "Living room") +
                                         el(3, "payload", payload)));
}

TEST(RegSubParser, ReadsUserAndDecryptedTicketAndNeedsTheContext) {
    const Context context = keyedContext();
    Harness<RegSubParser, RegResponseData> h;
    h.data.rsData = bytes("old");
    ASSERT_TRUE(h.parse(registration(seal(context, TICKET), basicHeader()), context)) << h.out;
    EXPECT_EQ(h.data.userId, "  u-1001  ");
    EXPECT_EQ(h.data.userDescription, "Living room");
    expectTicket(h.data);

    // The three payload values are replaced together, absent ones by empty.
    ASSERT_TRUE(h.parse(registration(seal(context, "<zuvo:cticket>t</zuvo:cticket>")), context));
    EXPECT_EQ(h.data.clientTicket, bytes("t"));
    EXPECT_EQ(h.data.clientTicketExpiration, 0u);
    EXPECT_TRUE(h.data.rsData.empty());

    // A sealed payload without a context to open it is refused.
    EXPECT_FALSE(h.parse(registration("c2VhbGVk")));
    EXPECT_EQ(h.out, rejection("RegSubParser", "payload",
                               "payload registrationdata result response <start> "));
}

TEST(AuthrenewSubParser, ReadsTheTicketAndRejectsElementsInThePayload) {
    const Context context = keyedContext(3);
    const auto renewal = [](const std::string& payload) {
        return responseDoc("", block(2, "authenticationrenewal", el(3, "payload", payload)));
    };
    Harness<AuthrenewSubParser, AuthrenewResponseData> h;
    ASSERT_TRUE(h.parse(renewal(seal(context, TICKET)), context));
    expectTicket(h.data);

    const std::string stack = "payload authenticationrenewal result response <start> ";
    EXPECT_FALSE(h.parse(renewal("\n" + TICKET), context));
    EXPECT_EQ(h.out, rejection("AuthrenewSubParser", "cticket", stack));
    EXPECT_FALSE(h.parse(renewal("c2VhbGVk")));
    EXPECT_EQ(h.out, rejection("AuthrenewSubParser", "payload", stack));
}

} // namespace
