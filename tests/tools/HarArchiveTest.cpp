// The capture reader's own parts: start times across zones and fractions,
// lone surrogate escapes mended without touching pairs or escaped
// backslashes, and the outline scan of files cut or joined at awkward
// places.
#include "capture/HarArchive.h"
#include "common/Errors.h"

#include <gtest/gtest.h>

#include <string>

using namespace zuvocli;

namespace {

TEST(HarArchive, StartTimesCompareAcrossZones) {
    std::int64_t utc = 0;
    ASSERT_TRUE(parseIsoTime("2026-11-23T14:51:46.279554Z", utc));
    const struct {
        const char* when;
        std::int64_t offset; ///< microseconds after `utc`; INT64_MIN: not a time
    } cases[] = {
        {"2026-11-23T14:51:46.279554+00:00", 0},   {"2026-11-23T15:51:46.279554+01:00", 0},
        {"2026-11-23T09:21:46.279554-0530", 0},    {"2026-11-23T14:51:46.28Z", 446},
        {"2026-11-23T14:51:46Z", -279554},         {"2026-11-24T00:00:00.000+09:00", 493720446},
        {"2026-11-23T14:51:46.279554", INT64_MIN}, {"2026-11-23 14:51:46Z", INT64_MIN},
        {"2026-13-23T14:51:46Z", INT64_MIN},       {"", INT64_MIN},
    };
    for (const auto& c : cases) {
        std::int64_t when = 0;
        const bool read = parseIsoTime(c.when, when);
        EXPECT_EQ(read, c.offset != INT64_MIN) << c.when;
        if (read) {
            EXPECT_EQ(when - utc, c.offset) << c.when;
        }
    }
}

TEST(HarArchive, LoneSurrogatesAreMended) {
    const struct {
        const char* json;
        const char* mended;
    } cases[] = {
        {R"("a\udce9b")", R"("a\ufffdb")"}, {R"("\uD83D\uDE00")", R"("\uD83D\uDE00")"},
        {R"("\ud83d")", R"("\ufffd")"},     {R"("\ud83d\u0041")", R"("\ufffd\u0041")"},
        {R"("\\udce9")", R"("\\udce9")"},   {R"("\u00e9\n")", R"("\u00e9\n")"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(mendSurrogates(c.json), c.mended) << c.json;
}

TEST(HarArchive, OutlineFindsEntriesOrNamesTheFault) {
    const std::string a = R"({"startedDateTime": "2026-01-01T00:00:02Z", "x": "]}"})";
    const std::string b = R"({"x": [1, {"y": "\""}], "startedDateTime": "2026-01-01T00:00:01Z"})";
    const struct {
        std::string text;
        std::size_t entries;
        const char* note; ///< a warning, or with entries == 99 the error
    } cases[] = {
        {R"({"log": {"pages": [], "entries": [)" + a + "," + b + "]}}", 2, ""},
        {R"({"log": {"entries": [)" + a + "," + b + "]", 2, "without its closing brackets"},
        {R"({"log": {"entries": [)" + a + "," + b.substr(0, 20), 1, "stops inside entry 2"},
        {"\xEF\xBB\xBF"
         R"({"log": {"entries": []}})",
         0, ""},
        {R"({"log": {"entries": []}} {})", 99, "a second JSON document follows"},
        {R"({"log": {"entries": []}}])", 99, "data follows the archive's closing '}'"},
        {R"({"log": {"entries": {}}})", 99, "no \"log.entries\" array"},
        {R"({"log": {"entr)", 99, "stops before its \"log.entries\" array"},
        {"[]", 99, "an archive is a JSON object"},
        {" \n", 99, "the file is empty"},
        {std::string("{\0\"\0", 4), 99, "UTF-16 or UTF-32"},
    };
    for (const auto& c : cases) {
        try {
            const HarArchive archive(c.text, "f.har");
            EXPECT_EQ(archive.entries().size(), c.entries) << c.text;
            EXPECT_NE(archive.warning().find(c.note), std::string::npos) << archive.warning();
            if (c.entries == 2) {
                EXPECT_EQ(archive.text(archive.entries()[1]), b);
                EXPECT_EQ(archive.sessionOrder(), (std::vector<std::size_t>{1, 0}));
            }
        } catch (const RejectedError& e) {
            EXPECT_EQ(c.entries, 99u) << e.what();
            EXPECT_NE(std::string(e.what()).find(c.note), std::string::npos) << e.what();
        }
    }
}

} // namespace
