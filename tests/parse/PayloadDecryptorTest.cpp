#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const std::string FRAGMENT = "<zuvo:cticket expiration=\"99\">T1ck3t</zuvo:cticket>\n"
                             "<zuvo:servertime>12</zuvo:servertime>\n";

TEST(PayloadDecryptor, Base64Payload) {
    const PayloadDecryptor p(Context(), base64(FRAGMENT), false);
    EXPECT_EQ(p.getValueString("zuvo:servertime"), "12");
    EXPECT_EQ(p.getAttr("zuvo:cticket", "expiration"), "99");
    EXPECT_EQ(p.getValueUcVector("zuvo:cticket"),
              std::vector<unsigned char>({'T', '1', 'c', 'k', '3', 't'}));
    EXPECT_TRUE(p.getValueUcVector("zuvo:rs").empty());
}

TEST(PayloadDecryptor, EncryptedPayloadRoundTrip) {
    const Context context = keyedContext();
    const PayloadDecryptor p(context, seal(context, FRAGMENT), true);
    EXPECT_EQ(p.getValueString("zuvo:servertime"), "12");
    EXPECT_EQ(p.getAttr("zuvo:cticket", "expiration"), "99");
}

TEST(PayloadDecryptor, EmptyPayloadIsAnEmptyFragment) {
    const PayloadDecryptor p(Context(), "", false);
    EXPECT_EQ(p.getValueString("zuvo:servertime"), "");
}

TEST(PayloadDecryptor, Failures) {
    const Context context = keyedContext();
    std::string tampered = seal(context, FRAGMENT);
    tampered[tampered.size() / 2] = tampered[tampered.size() / 2] == 'A' ? 'B' : 'A';

    try {
        PayloadDecryptor(Context(), "not even Base64!", true);
        FAIL() << "no exception";
    } catch (const ZuvoExceptionNoCipherContext& e) {
        EXPECT_STREQ(e.what(), "No ZUVO cipher context");
    }
    EXPECT_THROW(PayloadDecryptor(context, tampered, true), std::runtime_error);
    EXPECT_THROW(PayloadDecryptor(keyedContext(8), seal(context, FRAGMENT), true),
                 std::runtime_error);
    EXPECT_THROW(PayloadDecryptor(Context(), "@@@@", false), std::invalid_argument);
    EXPECT_THROW(PayloadDecryptor(Context(), base64("<a>"), false), std::runtime_error);
}

} // namespace
