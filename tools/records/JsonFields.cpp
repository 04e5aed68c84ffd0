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

void wrongType(const FieldPath& path, const char* expected, const FieldValue& got) {
    wrongType(path.str(), expected, got.json(path));
}

std::string toBase64(const std::string& bytes) {
    return Velmora::QRXClient::Base64::encode(bytes);
}

std::string fromBase64(const std::string& text, const FieldPath& path) {
    try {
        return Velmora::QRXClient::Base64::decode(text);
    } catch (const std::exception& e) {
        throw UsageError("field '" + path.str() + "' expects Base64 text: " + e.what());
    }
}

Json Convert<velmora::zuvolib::ContentProfile>::to(velmora::zuvolib::ContentProfile value) {
    const std::string identifier = velmora::zuvolib::profileToString(value);
    return identifier.empty() ? Json() : Json(identifier);
}

void Convert<velmora::zuvolib::ContentProfile>::from(const FieldValue& value,
                                                     velmora::zuvolib::ContentProfile& out,
                                                     const FieldPath& path) {
    switch (value.kind()) {
    case FieldValue::Kind::Null:
        // What a value without identifier prints as: written as an empty
        // element, like 10 and 19.
        out = velmora::zuvolib::PROFILE_UNKNOWN;
        return;
    case FieldValue::Kind::Integer: {
        // Numbers reach the values without an identifier (10, 19), which a
        // request writes as empty elements.
        bool negative = false;
        unsigned long long magnitude = 0;
        value.integer(negative, magnitude, path);
        if (negative ? magnitude > 1 : magnitude > velmora::zuvolib::PROFILE_SIMPLESDH)
            wrongType(path, expected(), value);
        out = negative ? velmora::zuvolib::PROFILE_UNKNOWN
                       : static_cast<velmora::zuvolib::ContentProfile>(magnitude);
        return;
    }
    case FieldValue::Kind::Text: {
        const std::string identifier = value.text();
        const velmora::zuvolib::ContentProfile profile =
            velmora::zuvolib::stringToProfile(identifier);
        if (profile == velmora::zuvolib::PROFILE_UNKNOWN)
            throw UsageError("field '" + path.str() + "': unknown profile identifier '" +
                             identifier + "'");
        out = profile;
        return;
    }
    default: wrongType(path, expected(), value);
    }
}

} // namespace zuvocli
