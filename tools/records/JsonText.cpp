// A compact JSON writer for log lines: nlohmann's dump checks and decodes
// every byte of every string as UTF-8, about fifty instructions a byte of a
// log line; the strings of a log line are almost all plain ASCII, which needs
// no more than a scan and a copy.
#include "records/JsonText.h"

#include <charconv>

namespace zuvocli {

namespace {

const Json::error_handler_t REPLACE = Json::error_handler_t::replace;

// True when `text` goes into JSON as it stands: printable ASCII other than
// the quote and the backslash.
bool isPlain(const std::string& text) {
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7f || byte == '"' || byte == '\\')
            return false;
    }
    return true;
}

void appendString(const std::string& text, std::string& out) {
    if (!isPlain(text)) {
        out += Json(text).dump(-1, ' ', false, REPLACE);
        return;
    }
    out += '"';
    out += text;
    out += '"';
}

template <typename Integer> void appendInteger(Integer number, std::string& out) {
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    out.append(digits, end.ptr);
}

// `open`, the items written by `write` with commas between them, `close`.
template <typename Items, typename Write>
void appendList(const Items& items, char open, char close, std::string& out, Write write) {
    out += open;
    bool first = true;
    for (const auto& item : items) {
        if (!first)
            out += ',';
        first = false;
        write(item);
    }
    out += close;
}

} // namespace

void appendCompactJson(const Json& value, std::string& out) {
    switch (value.type()) {
    case Json::value_t::object:
        appendList(value.get_ref<const Json::object_t&>(), '{', '}', out, [&](const auto& member) {
            appendString(member.first, out);
            out += ':';
            appendCompactJson(member.second, out);
        });
        return;
    case Json::value_t::array:
        appendList(value.get_ref<const Json::array_t&>(), '[', ']', out,
                   [&](const Json& item) { appendCompactJson(item, out); });
        return;
    case Json::value_t::string: appendString(value.get_ref<const std::string&>(), out); return;
    case Json::value_t::number_integer: appendInteger(value.get<std::int64_t>(), out); return;
    case Json::value_t::number_unsigned: appendInteger(value.get<std::uint64_t>(), out); return;
    case Json::value_t::boolean: out += value.get<bool>() ? "true" : "false"; return;
    case Json::value_t::null: out += "null"; return;
    default: out += value.dump(-1, ' ', false, REPLACE); return; // floats, binary
    }
}

std::string compactJson(const Json& value) {
    std::string out;
    appendCompactJson(value, out);
    return out;
}

} // namespace zuvocli
