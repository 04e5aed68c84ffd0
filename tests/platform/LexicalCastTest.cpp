#include <QRXClient/lexical_cast.h>

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <string>

using Velmora::QRXClient::lexical_cast;

namespace {

TEST(LexicalCast, TextToNumberNeverFails) {
    const struct {
        const char* text;
        int value;
    } cases[] = {{"42", 42}, {" 42", 42},   {"42 ", 42},    {"4x2", 4},   {"x", 0},
                 {"", 0},    {"-17", -17}, {"+8", 8},      {"12 13", 12}, {"1,000", 1}};
    for (const auto& c : cases)
        EXPECT_EQ(lexical_cast<int>(std::string(c.text)), c.value) << '"' << c.text << '"';
    EXPECT_EQ(lexical_cast<unsigned int>(std::string("4294967295")), 4294967295u);
    EXPECT_EQ(lexical_cast<unsigned short>(std::string("65535")), 65535);
    EXPECT_EQ(lexical_cast<unsigned long long>(std::string("18446744073709551615")),
              std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(lexical_cast<std::string>(std::string(" a b ")), " a b ");
}

TEST(LexicalCast, NumberToText) {
    EXPECT_EQ(lexical_cast<std::string>(0), "0");
    EXPECT_EQ(lexical_cast<std::string>(-1), "-1");
    EXPECT_EQ(lexical_cast<std::string>(4294967295u), "4294967295");
    EXPECT_EQ(lexical_cast<std::string>(std::numeric_limits<unsigned long long>::max()),
              "18446744073709551615");
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
