#include <QRXClient/Base64.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using Velmora::QRXClient::Base64;

namespace {

TEST(Base64, RfcVectorsRoundTrip) {
    // RFC 4648, section 10: plain text and its encoding.
    const char* const vectors[][2] = {{"", ""},
                                      {"f", "Zg=="},
                                      {"fo", "Zm8="},
                                      {"foo", "Zm9v"},
                                      {"foob", "Zm9vYg=="},
                                      {"fooba", "Zm9vYmE="},
                                      {"foobar", "Zm9vYmFy"}};
    for (const auto& v : vectors) {
        const std::string encoded = v[1];
        EXPECT_EQ(Base64::encode(v[0]), encoded);
        EXPECT_EQ(Base64::decode(encoded), v[0]);
        const std::vector<unsigned char> bytes =
            Base64::decode(std::vector<unsigned char>(encoded.begin(), encoded.end()));
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), v[0]);
    }
}

TEST(Base64, EveryByteValueRoundTripsAndLenientFormsDecode) {
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    for (std::size_t len = 0; len <= all.size(); len += 37)
        EXPECT_EQ(Base64::decode(Base64::encode(all.substr(0, len))), all.substr(0, len));

    EXPECT_EQ(Base64::decode(std::string("Zm9vYg")), "foob");           // padding left out
    EXPECT_EQ(Base64::decode(std::string("Zm9v\r\nYm E=\t")), "fooba"); // white space anywhere
    EXPECT_EQ(Base64::decode(std::string(" \n ")), "");
    EXPECT_EQ(Base64::decode(std::string("Zm9v Zm9vYmFy\nZm9v")), "foofoobarfoo");
}

TEST(Base64, RejectsMalformedTextNamingTheOffset) {
    // The text and the offset its error names: a character outside the
    // alphabet, the URL-safe alphabet (not accepted), data after padding, a
    // dangling final character, padding first, incomplete padding, a
    // character after padding.
    // clang-format off
    const char* const cases[][2] = {
        {"Zm9v!", "offset 4"}, {"Zm-v", "offset 2"}, {"Zg==Zg==", "offset 4"},
        {"Zm9vY", "offset 4"}, {"=Zm9", "offset 0"}, {"Zg=", "offset 3"}, {"Zm9=v", "offset 4"},
        {"Zm9v Zm9v Z", "offset 10"}, {"Zm9vZm9*Zm9v", "offset 7"}};
    // clang-format on
    for (const auto& c : cases) {
        try {
            Base64::decode(std::string(c[0]));
            ADD_FAILURE() << "accepted " << c[0];
        } catch (const std::invalid_argument& e) {
            EXPECT_NE(std::string(e.what()).find(c[1]), std::string::npos)
                << c[0] << ": " << e.what();
        }
    }
}

} // namespace
