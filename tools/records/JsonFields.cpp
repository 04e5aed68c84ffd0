// JSON conversion helpers shared by every field table.
#include "records/JsonFields.h"

#include <QRXClient/Base64.h>

namespace zuvocli {
namespace {

/// A short description of a JSON value for messages: its type and, for
/// scalars, the value itself.
std::string describe(const Json& json) {
    switch (json.type()) {
    case Json::value_t::null: return "null";
    case Json::value_t::object: return "an object";
    case Json::value_t::array: return "an array";
    case Json::value_t::string:
        return "the string " + json.dump(-1, ' ', false, Json::error_handler_t::replace);
    case Json::value_t::boolean: return json.get<bool>() ? "true" : "false";
    default: return json.dump();
    }
}

} // namespace

void wrongType(const std::string& path, const char* expected, const Json& got) {
    throw UsageError("field '" + path + "' expects " + expected + ", got " + describe(got));
}

std::string toBase64(const std::string& bytes) {
    return Velmora::QRXClient::Base64::encode(bytes);
}

std::string fromBase64(const std::string& text, const std::string& path) {
    try {
        return Velmora::QRXClient::Base64::decode(text);
    } catch (const std::exception& e) {
        throw UsageError("field '" + path + "' expects Base64 text: " + e.what());
    }
}

Json Convert<velmora::zuvolib::ContentProfile>::to(velmora::zuvolib::ContentProfile value) {
    const std::string identifier = velmora::zuvolib::profileToString(value);
    return identifier.empty() ? Json() : Json(identifier);
}

void Convert<velmora::zuvolib::ContentProfile>::from(const Json& json,
                                                     velmora::zuvolib::ContentProfile& out,
                                                     const std::string& path) {
    if (json.is_null()) {
        // What a value without identifier prints as: written as an empty
        // element, like 10 and 19.
        out = velmora::zuvolib::PROFILE_UNKNOWN;
        return;
    }
    if (json.is_number_integer()) {
        // Numbers reach the values without an identifier (10, 19), which a
        // request writes as empty elements.
        const long long number = json.get<long long>();
        if (number < velmora::zuvolib::PROFILE_UNKNOWN ||
            number > velmora::zuvolib::PROFILE_SIMPLESDH)
            wrongType(path, expected(), json);
        out = static_cast<velmora::zuvolib::ContentProfile>(number);
        return;
    }
    if (!json.is_string())
        wrongType(path, expected(), json);
    const std::string identifier = json.get<std::string>();
    const velmora::zuvolib::ContentProfile profile = velmora::zuvolib::stringToProfile(identifier);
    if (profile == velmora::zuvolib::PROFILE_UNKNOWN)
        throw UsageError("field '" + path + "': unknown profile identifier '" + identifier + "'");
    out = profile;
}

} // namespace zuvocli
