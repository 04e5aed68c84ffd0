#include <QRXClient/lexical_cast.h>

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>
#include <string>

using Velmora::QRXClient::lexical_cast;

namespace {

// What a classic-locale stream reads from `text`: the rule the direct
// integer path must reproduce.
template <typename T> T streamRead(const std::string& text) {
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    T value = 0;
    in >> value;
    return value;
}

// Text to number never fails: it reads what a stream reads.
TEST(LexicalCast, IntegersMatchTheStreamRule) {
    // clang-format off
    const char* const texts[] = {
        "", " ", "+", "-", "0", "-0", "+0", "007", "\v\f\r\n\t 9",    // signs, zeros, space
        "x", "12abc", "1 2", "- 1", "+-1", "1,000", "0x1F", "\xef\xbc\x91", // stops early
        // each integer type's limits, one past them, and their negations
        "127", "128", "-129", "255", "256", "65535", "65536", "-1", "-65535", "-65536",
        "2147483647", "2147483648", "-2147483648", "-2147483649",
        "4294967295", "4294967296", "-4294967295", "-4294967296",
        "9223372036854775807", "9223372036854775808", "-9223372036854775808",
        "-9223372036854775809", "18446744073709551615", "18446744073709551616",
        "-18446744073709551615", "-18446744073709551616",
        "99999999999999999999999", "-99999999999999999999999"};
    // clang-format on
    for (const char* t : texts) {
        const std::string text = t;
        SCOPED_TRACE('"' + text + '"');
        EXPECT_EQ(lexical_cast<int>(text), streamRead<int>(text));
        EXPECT_EQ(lexical_cast<unsigned int>(text), streamRead<unsigned int>(text));
        EXPECT_EQ(lexical_cast<unsigned short>(text), streamRead<unsigned short>(text));
        EXPECT_EQ(lexical_cast<unsigned long long>(text), streamRead<unsigned long long>(text));
        EXPECT_EQ(lexical_cast<long long>(text), streamRead<long long>(text));
    }
    for (long long v :
         {0LL, 7LL, -7LL, 2147483647LL, -2147483648LL, std::numeric_limits<long long>::min()})
        EXPECT_EQ(lexical_cast<std::string>(v), std::to_string(v));
    EXPECT_EQ(lexical_cast<std::string>(4294967295u), "4294967295");
    EXPECT_EQ(lexical_cast<std::string>(std::numeric_limits<unsigned long long>::max()),
              "18446744073709551615");
    EXPECT_EQ(lexical_cast<std::string>(std::string(" a b ")), " a b ");
}

// A global locale that groups digits in threes with a comma.
struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(LexicalCast, IgnoresTheGlobalLocale) {
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    const std::string written = lexical_cast<std::string>(1000000);
    const int read = lexical_cast<int>(std::string("1,000"));
    std::locale::global(previous);
    EXPECT_EQ(written, "1000000");
    EXPECT_EQ(read, 1);
}

} // namespace
