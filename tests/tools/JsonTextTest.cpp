#include "records/JsonText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using zuvocli::Json;

std::string reference(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Every kind of value, and the strings that need escaping or replacing: the
// writer's text is nlohmann's to the byte.
TEST(JsonText, WritesWhatNlohmannWrites) {
    const Json cases[] = {
        nullptr,
        true,
        false,
        0,
        -1,
        std::numeric_limits<std::int64_t>::min(),
        std::numeric_limits<std::uint64_t>::max(),
        1.5,
        0.1,
        -0.0,
        1e300,
        "",
        "plain ASCII ~ text",
        "quote \" and backslash \\",
        "controls \t\n\r\x01\x1f",
        "delete \x7f",
        "UTF-8 \xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80",
        "invalid \xff\xc3 UTF-8 \xe2\x82",
        Json::array(),
        Json::object(),
        Json::array({1, "two", Json::array({Json::object()}), nullptr}),
        Json{{"exchange", 1},
             {"ms", 1.528},
             {"request", {{"fields", {{"movieId", 7}, {"videoProfiles", {"a", "b"}}}}}},
             {"key \"quoted\"", "value\n"},
             {"", Json::array()}},
    };
    for (const Json& value : cases) {
        const std::string expected = reference(value);
        EXPECT_EQ(zuvocli::compactJson(value), expected) << expected;
        std::string appended = "prefix";
        zuvocli::appendCompactJson(value, appended);
        EXPECT_EQ(appended, "prefix" + expected);
    }
}

} // namespace
