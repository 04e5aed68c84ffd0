// Scanning a HAR file's outline: the top-level object, "log", and the
// places of the "entries" items. Values other than those are skipped by
// their brackets and strings only; their own syntax is checked when an entry
// is read.
#include "capture/HarArchive.h"

#include "common/Errors.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace zuvocli {
namespace {

/// The text ran out before the value being scanned ended.
struct EndOfText {};

/// A cursor over JSON text that skips values without building them.
class Skimmer {
public:
    Skimmer(const std::string& text, std::size_t at, const std::string& name)
        : at(at), text(text), name(name) {}

    std::size_t at; ///< the next byte to read

    /// Skips white space; true when text remains.
    bool more() {
        while (at < text.size() && std::strchr(" \t\r\n", text[at]) && text[at] != '\0')
            ++at;
        return at < text.size();
    }
    char peek() {
        if (!more())
            throw EndOfText();
        return text[at];
    }
    void expect(char c, const char* what) {
        if (peek() != c)
            fail(std::string("expected ") + what);
        ++at;
    }
    /// Reads a string's raw contents (escapes left as written).
    std::string_view string() {
        expect('"', "a string");
        const std::size_t begin = at;
        for (; at < text.size(); ++at) {
            if (text[at] == '\\')
                ++at;
            else if (text[at] == '"')
                return std::string_view(text).substr(begin, at++ - begin);
        }
        throw EndOfText();
    }
    /// Skips one value of any kind.
    void value() {
        const char c = peek();
        if (c == '"') {
            string();
            return;
        }
        if (c != '{' && c != '[') {
            while (at < text.size() && !std::strchr(",]} \t\r\n", text[at]))
                ++at;
            if (at == text.size())
                throw EndOfText();
            return;
        }
        int depth = 0;
        for (; at < text.size(); ++at) {
            const char b = text[at];
            if (b == '"') {
                string();
                --at;
            } else if (b == '{' || b == '[') {
                ++depth;
            } else if ((b == '}' || b == ']') && --depth == 0) {
                ++at;
                return;
            }
        }
        throw EndOfText();
    }

    /// Walks the members of an object starting here, calling
    /// `member(key)` with the cursor on each value; `member` must consume it.
    template <class Member> void members(Member member) {
        expect('{', "an object");
        if (peek() == '}') {
            ++at;
            return;
        }
        for (;;) {
            const std::string_view key = string();
            expect(':', "':' after a member name");
            member(key);
            const char next = peek();
            ++at;
            if (next == '}')
                return;
            if (next != ',') {
                --at;
                fail("expected ',' or '}' after a member");
            }
        }
    }

    [[noreturn]] void fail(const std::string& what) const {
        const std::size_t line = std::count(text.begin(), text.begin() + at, '\n') + 1;
        const std::size_t lineStart = text.rfind('\n', at == 0 ? 0 : at - 1);
        const std::size_t column = lineStart == std::string::npos ? at + 1 : at - lineStart;
        throw RejectedError("'" + name + "' is not a HAR file: not valid JSON at line " +
                            std::to_string(line) + ", column " + std::to_string(column) + ": " +
                            what);
    }

private:
    const std::string& text;
    const std::string& name;
};

/// Names an encoding other than UTF-8 from the file's first bytes.
std::string otherEncoding(const std::string& text) {
    auto starts = [&](const char* bytes, std::size_t n) {
        return text.size() >= n && text.compare(0, n, bytes, n) == 0;
    };
    if (starts("\xFF\xFE\0\0", 4) || starts("\0\0\xFE\xFF", 4))
        return "UTF-32 (it starts with a byte order mark)";
    if (starts("\xFF\xFE", 2) || starts("\xFE\xFF", 2))
        return "UTF-16 (it starts with a byte order mark)";
    if (text.size() >= 2 && (text[0] == '\0' || text[1] == '\0'))
        return "UTF-16 or UTF-32 (it holds NUL bytes)";
    return std::string();
}

} // namespace

std::string HarArchive::startTime(std::size_t begin) const {
    // A fault inside the entry is reported when the entry is read.
    Skimmer scan(content, begin, fileName);
    std::string when;
    try {
        if (scan.peek() != '{')
            return when;
        scan.members([&](std::string_view key) {
            if (key == "startedDateTime" && scan.peek() == '"')
                when = std::string(scan.string());
            else
                scan.value();
        });
    } catch (const EndOfText&) {
    } catch (const RejectedError&) {
    }
    return when;
}

HarArchive::HarArchive(std::string text, std::string name)
    : content(std::move(text)), fileName(std::move(name)) {
    const std::string prefix = "'" + fileName + "' is not a HAR file: ";
    const std::string encoding = otherEncoding(content);
    if (!encoding.empty())
        throw RejectedError(prefix + "its text is " + encoding +
                            "; HAR files are UTF-8 (convert it, e.g. iconv -f UTF-16 -t UTF-8)");
    Skimmer scan(content, content.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0, fileName);
    if (!scan.more())
        throw RejectedError(prefix + "the file is empty");
    if (scan.peek() != '{')
        scan.fail("an archive is a JSON object, it starts with '{'");

    bool sawLog = false;
    bool sawEntries = false;
    std::size_t inside = 0; // the number of the entry being scanned, 0 outside
    try {
        scan.members([&](std::string_view key) {
            if (key != "log" || sawLog || scan.peek() != '{') {
                scan.value();
                return;
            }
            sawLog = true;
            scan.members([&](std::string_view logKey) {
                if (logKey != "entries" || sawEntries || scan.peek() != '[') {
                    scan.value();
                    return;
                }
                sawEntries = true;
                ++scan.at;
                if (scan.peek() == ']') {
                    ++scan.at;
                    return;
                }
                for (;;) {
                    EntrySpan span;
                    span.number = inside = spans.size() + 1;
                    scan.more();
                    span.begin = scan.at;
                    scan.value();
                    span.end = scan.at;
                    span.startedDateTime = startTime(span.begin);
                    spans.push_back(std::move(span));
                    inside = 0;
                    const char next = scan.peek();
                    ++scan.at;
                    if (next == ']')
                        return;
                    if (next != ',') {
                        --scan.at;
                        scan.fail("expected ',' or ']' after entry " +
                                  std::to_string(spans.size()));
                    }
                }
            });
        });
    } catch (const EndOfText&) {
        if (!sawEntries)
            throw RejectedError(prefix + "it stops before its \"log.entries\" array (truncated?)");
        if (inside != 0)
            endNote = "the file stops inside entry " + std::to_string(inside) +
                      " (its writer was stopped mid-write?): read the " +
                      std::to_string(spans.size()) + " entries before it";
        else
            endNote = "the file ends without its closing brackets (still being written?)";
        return;
    }
    if (!sawLog)
        throw RejectedError(prefix + "no \"log\" object");
    if (!sawEntries)
        throw RejectedError(prefix + "no \"log.entries\" array");
    if (scan.more()) {
        if (scan.peek() == '{')
            scan.fail("a second JSON document follows the archive (two files joined?)");
        scan.fail("data follows the archive's closing '}'");
    }
}

std::vector<std::size_t> HarArchive::sessionOrder() const {
    std::vector<std::int64_t> keys(spans.size());
    std::int64_t last = INT64_MIN;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        std::int64_t when = 0;
        if (parseIsoTime(spans[i].startedDateTime, when))
            last = when;
        keys[i] = last;
    }
    std::vector<std::size_t> order(spans.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    return order;
}

namespace {

/// Reads `count` decimal digits at `at` into `value`.
bool digits(std::string_view text, std::size_t& at, int count, int& value) {
    value = 0;
    for (int i = 0; i < count; ++i, ++at) {
        if (at >= text.size() || text[at] < '0' || text[at] > '9')
            return false;
        value = value * 10 + (text[at] - '0');
    }
    return true;
}

bool literal(std::string_view text, std::size_t& at, char c) {
    if (at >= text.size() || text[at] != c)
        return false;
    ++at;
    return true;
}

/// Days from 1970-01-01 to the given civil date (proleptic Gregorian).
std::int64_t daysFromCivil(int year, int month, int day) {
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const int yoe = year - static_cast<int>(era * 400);
    const int doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

} // namespace

bool parseIsoTime(std::string_view when, std::int64_t& micros) {
    std::size_t at = 0;
    int year, month, day, hour, minute, second;
    if (!digits(when, at, 4, year) || !literal(when, at, '-') || !digits(when, at, 2, month) ||
        !literal(when, at, '-') || !digits(when, at, 2, day) || !literal(when, at, 'T') ||
        !digits(when, at, 2, hour) || !literal(when, at, ':') || !digits(when, at, 2, minute) ||
        !literal(when, at, ':') || !digits(when, at, 2, second))
        return false;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60)
        return false;
    std::int64_t fraction = 0;
    if (literal(when, at, '.')) {
        int scale = 1000000;
        const std::size_t first = at;
        for (; at < when.size() && when[at] >= '0' && when[at] <= '9'; ++at) {
            if (scale > 1)
                fraction += (when[at] - '0') * (scale /= 10);
        }
        if (at == first)
            return false;
    }
    int offset = 0; // minutes east of UTC
    if (!literal(when, at, 'Z')) {
        if (at >= when.size() || (when[at] != '+' && when[at] != '-'))
            return false;
        const int sign = when[at++] == '-' ? -1 : 1;
        int zoneHours, zoneMinutes;
        if (!digits(when, at, 2, zoneHours))
            return false;
        literal(when, at, ':');
        if (!digits(when, at, 2, zoneMinutes))
            return false;
        offset = sign * (zoneHours * 60 + zoneMinutes);
    }
    if (at != when.size())
        return false;
    const std::int64_t seconds =
        daysFromCivil(year, month, day) * 86400 + hour * 3600 + (minute - offset) * 60 + second;
    micros = seconds * 1000000 + fraction;
    return true;
}

std::string mendSurrogates(std::string_view json) {
    auto surrogate = [&](std::size_t at, unsigned low, unsigned high) {
        if (at + 6 > json.size() || json[at] != '\\' || json[at + 1] != 'u')
            return false;
        unsigned value = 0;
        for (std::size_t i = at + 2; i < at + 6; ++i) {
            const char c = static_cast<char>(json[i] | 0x20);
            if (!std::isxdigit(static_cast<unsigned char>(c)))
                return false;
            value = value * 16 + (c <= '9' ? c - '0' : c - 'a' + 10);
        }
        return value >= low && value <= high;
    };
    std::string mended;
    mended.reserve(json.size());
    for (std::size_t at = 0; at < json.size(); ++at) {
        if (json[at] != '\\' || at + 1 == json.size()) {
            mended += json[at];
            continue;
        }
        if (surrogate(at, 0xD800, 0xDBFF) && surrogate(at + 6, 0xDC00, 0xDFFF)) {
            mended.append(json.substr(at, 12));
            at += 11;
        } else if (surrogate(at, 0xD800, 0xDFFF)) {
            mended += "\\ufffd";
            at += 5;
        } else {
            mended.append(json.substr(at, 2)); // any other escape, kept whole
            ++at;
        }
    }
    return mended;
}

} // namespace zuvocli
