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
    PreregResponseData data;
    std::string out;
    ASSERT_TRUE(parseWith<PreregSubParser>(
        data,
        responseDoc(basicHeader(), el(2, "regcode", "AB12") + el(2, "retryinterval", "30") +
                                       el(2, "totaltime", "-900")),
        Context(), out));
    EXPECT_EQ(data.regCode, "AB12");
    EXPECT_EQ(data.retryInterval, 30);
    EXPECT_EQ(data.totalTime, -900);
    EXPECT_EQ(data.serverTime, 1000u);

    data.retryInterval = 7;
    ASSERT_TRUE(
        parseWith<PreregSubParser>(data, responseDoc("", el(2, "regcode", "X")), Context(), out));
    EXPECT_EQ(data.regCode, "X");
    EXPECT_EQ(data.retryInterval, 7) << "an absent element leaves the field alone";
}

std::string registration(const std::string& payload) {
    return block(2, "registrationdata",
                 el(3, "userid", "  u-1001  ") + el(3, "userdescription", "Living room") +
                     el(3, "payload", payload));
}

TEST(RegSubParser, ReadsUserAndDecryptedTicketAndNeedsTheContext) {
    const Context context = keyedContext();
    RegResponseData data;
    data.rsData = bytes("old");
    std::string out;
    ASSERT_TRUE(parseWith<RegSubParser>(
        data, responseDoc(basicHeader(), registration(seal(context, TICKET))), context, out));
    EXPECT_EQ(data.userId, "  u-1001  ");
    EXPECT_EQ(data.userDescription, "Living room");
    expectTicket(data);

    // The three payload values are replaced together, absent ones by empty.
    ASSERT_TRUE(parseWith<RegSubParser>(
        data, responseDoc("", registration(seal(context, "<zuvo:cticket>t</zuvo:cticket>"))),
        context, out));
    EXPECT_EQ(data.clientTicket, bytes("t"));
    EXPECT_EQ(data.clientTicketExpiration, 0u);
    EXPECT_TRUE(data.rsData.empty());

    // A sealed payload without a context to open it is refused.
    EXPECT_FALSE(
        parseWith<RegSubParser>(data, responseDoc("", registration("c2VhbGVk")), Context(), out));
    EXPECT_EQ(out, rejection("RegSubParser", "payload",
                             "payload registrationdata result response <start> "));
}

TEST(AuthrenewSubParser, ReadsTheTicketAndRejectsElementsInThePayload) {
    const Context context = keyedContext(3);
    const auto renewal = [](const std::string& payload) {
        return responseDoc("", block(2, "authenticationrenewal", el(3, "payload", payload)));
    };
    AuthrenewResponseData data;
    std::string out;
    ASSERT_TRUE(parseWith<AuthrenewSubParser>(data, renewal(seal(context, TICKET)), context, out));
    expectTicket(data);

    const std::string stack = "payload authenticationrenewal result response <start> ";
    EXPECT_FALSE(parseWith<AuthrenewSubParser>(data, renewal("\n" + TICKET), context, out));
    EXPECT_EQ(out, rejection("AuthrenewSubParser", "cticket", stack));
    EXPECT_FALSE(parseWith<AuthrenewSubParser>(data, renewal("c2VhbGVk"), Context(), out));
    EXPECT_EQ(out, rejection("AuthrenewSubParser", "payload", stack));
}

} // namespace
