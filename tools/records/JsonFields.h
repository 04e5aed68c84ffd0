// The record tables room: every request and response record's fields and
// names, to and from JSON, and the lists of messages and response types. It
// uses only the common room, the library and nlohmann-json, so any front end
// (the command line, the decoder, a language binding) shares one description
// of the records.
//
// JSON conversion of records as field tables.
//
// Every record the tool reads or prints is described by a table of fields:
// the JSON key (the record's field name), how to print the field and how to
// set it from JSON. `Convert<T>` does one field type; records convert
// through their table (`fieldTable<R>()`, defined per record in
// RequestFields.cpp and ResponseFields.cpp). Conventions: byte strings are
// Base64 text, content profiles their wire identifiers, numbers JSON
// integers checked against the field's range.
#ifndef ZUVO_TOOL_JSONFIELDS_H
#define ZUVO_TOOL_JSONFIELDS_H

#include "common/Errors.h"
#include "common/Names.h"
#include "records/FieldValue.h"

#include <zuvolib/Tr1Memory.h>
#include <zuvolib/subparsers/ContentProfile.h>

#include <nlohmann/json.hpp>

#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zuvocli {

/// Throws UsageError: field `path` expects `expected`, with what it got.
[[noreturn]] void wrongType(const std::string& path, const char* expected, const Json& got);
[[noreturn]] void wrongType(const FieldPath& path, const char* expected, const FieldValue& got);

/// Standard Base64 of `bytes`, and back (UsageError naming `path` on bad text).
std::string toBase64(const std::string& bytes);
std::string fromBase64(const std::string& text, const FieldPath& path);

/// Conversion of one field type; specialised below for every type in use.
template <class T, class Enable = void> struct Convert;

/// Integers: JSON integers within the type's range.
template <class T>
struct Convert<
    T, typename std::enable_if<std::is_integral<T>::value && !std::is_same<T, bool>::value>::type> {
    static const char* expected() {
        if (std::is_signed<T>::value)
            return sizeof(T) == 4 ? "a 32-bit signed integer" : "a signed integer";
        switch (sizeof(T)) {
        case 2: return "an integer from 0 to 65535";
        case 4: return "an integer from 0 to 4294967295";
        default: return "an unsigned 64-bit integer";
        }
    }
    static Json to(T value) { return value; }
    static void from(const FieldValue& value, T& out, const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::Integer)
            wrongType(path, expected(), value);
        bool negative = false;
        unsigned long long magnitude = 0;
        value.integer(negative, magnitude, path);
        typedef typename std::make_unsigned<T>::type Unsigned;
        const unsigned long long largest = static_cast<Unsigned>(std::numeric_limits<T>::max());
        // The magnitude of the smallest value: one past the largest when
        // signed, zero when not.
        const unsigned long long smallest = std::is_signed<T>::value ? largest + 1 : 0;
        if (negative ? magnitude > smallest : magnitude > largest)
            wrongType(path, expected(), value);
        // Two's complement: the negative value's bits are those of its
        // negated magnitude.
        out = static_cast<T>(negative ? 0ULL - magnitude : magnitude);
    }
};

template <> struct Convert<bool> {
    static const char* expected() { return "true or false"; }
    static Json to(bool value) { return value; }
    static void from(const FieldValue& value, bool& out, const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::Boolean)
            wrongType(path, expected(), value);
        out = value.boolean();
    }
};

/// Text fields: JSON strings, taken as they are (bytes as their Base64
/// text).
template <> struct Convert<std::string> {
    static const char* expected() { return "a string"; }
    static Json to(const std::string& value) { return value; }
    static void from(const FieldValue& value, std::string& out, const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::Text && value.kind() != FieldValue::Kind::Bytes)
            wrongType(path, expected(), value);
        out = value.text();
    }
};

/// Byte strings: Base64 text.
template <> struct Convert<std::vector<unsigned char>> {
    static const char* expected() { return "Base64 text"; }
    static Json to(const std::vector<unsigned char>& value) {
        return toBase64(std::string(value.begin(), value.end()));
    }
    static void from(const FieldValue& value, std::vector<unsigned char>& out,
                     const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::Text && value.kind() != FieldValue::Kind::Bytes)
            wrongType(path, expected(), value);
        const std::string bytes = value.bytes(path);
        out.assign(bytes.begin(), bytes.end());
    }
};

/// Content profiles: the wire identifier (null when the value has none);
/// read from the identifier, from the plain number, or from null (a value
/// without identifier).
template <> struct Convert<velmora::zuvolib::ContentProfile> {
    static const char* expected() {
        return "a profile identifier such as \"simplesdh\" or a number from -1 to 20";
    }
    static Json to(velmora::zuvolib::ContentProfile value);
    static void from(const FieldValue& value, velmora::zuvolib::ContentProfile& out,
                     const FieldPath& path);
};

/// Lists: JSON arrays; element paths read "field[2]".
template <class T> struct Convert<std::vector<T>> {
    static const char* expected() { return "a JSON array"; }
    static Json to(const std::vector<T>& values) {
        Json array = Json::array();
        for (const T& value : values)
            array.push_back(Convert<T>::to(value));
        return array;
    }
    static void from(const FieldValue& value, std::vector<T>& out, const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::List)
            wrongType(path, expected(), value);
        std::vector<T> values;
        values.reserve(value.size());
        value.forEachItem(
            [&](std::size_t i, const FieldValue& item) {
                values.emplace_back();
                Convert<T>::from(item, values.back(), FieldPath(path, i));
            },
            path);
        out.swap(values);
    }
};

/// Shared records (burned-in subtitles): null when empty. Print only.
template <class T> struct Convert<std::tr1::shared_ptr<T>> {
    static Json to(const std::tr1::shared_ptr<T>& value) {
        return value ? Convert<T>::to(*value) : Json();
    }
};

/// One field of record `R`.
template <class R> struct Field {
    std::string name;     ///< JSON key, the record's field name
    const char* expected; ///< what JSON it takes, for messages
    bool text;            ///< `--set name=value` takes the value as a string
    std::function<Json(const R&)> get;
    std::function<void(R&, const FieldValue&, const FieldPath&)> set;
};

template <class R> using FieldTable = std::vector<Field<R>>;

/// The table of record `R`; one explicit specialisation per record.
template <class R> const FieldTable<R>& fieldTable();

// The table of record R is the expression that follows; it is made once.
#define ZUVO_FIELD_TABLE(R, ...)                                                                   \
    template <> const FieldTable<R>& fieldTable() {                                                \
        static const FieldTable<R> table = __VA_ARGS__;                                            \
        return table;                                                                              \
    }

/// A field reached through `member`, a pointer to a member of `R` or of one
/// of its bases; the member's type picks the conversion.
template <class R, class M> Field<R> field(const char* name, M member) {
    typedef typename std::decay<decltype(std::declval<R&>().*member)>::type Value;
    Field<R> f;
    f.name = name;
    f.expected = Convert<Value>::expected();
    f.text = std::is_same<Value, std::string>::value ||
             std::is_same<Value, std::vector<unsigned char>>::value;
    f.get = [member](const R& record) { return Convert<Value>::to(record.*member); };
    f.set = [member](R& record, const FieldValue& value, const FieldPath& path) {
        Convert<Value>::from(value, record.*member, path);
    };
    return f;
}

/// A field reached through `member`, with a getter only (printed records).
template <class R, class M> Field<R> printedField(const char* name, M member) {
    typedef typename std::decay<decltype(std::declval<R&>().*member)>::type Value;
    Field<R> f;
    f.name = name;
    f.expected = "";
    f.text = false;
    f.get = [member](const R& record) { return Convert<Value>::to(record.*member); };
    return f;
}

/// A `std::string` field that holds raw bytes: Base64 text in JSON.
template <class R> Field<R> byteStringField(const char* name, std::string R::*member) {
    Field<R> f;
    f.name = name;
    f.expected = "Base64 text";
    f.text = true;
    f.get = [member](const R& record) { return Json(toBase64(record.*member)); };
    f.set = [member](R& record, const FieldValue& value, const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::Text && value.kind() != FieldValue::Kind::Bytes)
            wrongType(path, "Base64 text", value);
        record.*member = value.bytes(path);
    };
    return f;
}

/// The field of `R` named `name`; UsageError naming it and the known ones.
template <class R> const Field<R>& findField(const std::string& name, const FieldPath& path) {
    for (const Field<R>& f : fieldTable<R>()) {
        if (f.name == name)
            return f;
    }
    throw UsageError("unknown field '" + path.str() +
                     "' (known fields: " + joinNames(fieldTable<R>()) + ")");
}

/// Records: JSON objects, one key per field of the table.
template <class R> struct RecordConvert {
    static const char* expected() { return "a JSON object"; }
    static Json to(const R& record) {
        // A table names each field once: the members go straight to the end
        // of the object, which is sized once, with no search for the key.
        Json object = Json::object();
        Json::object_t& members = object.get_ref<Json::object_t&>();
        members.reserve(fieldTable<R>().size());
        for (const Field<R>& f : fieldTable<R>())
            members.emplace_back(f.name, f.get(record));
        return object;
    }
    /// Sets the fields the object names; the others keep their values.
    static void from(const FieldValue& value, R& record, const FieldPath& path) {
        if (value.kind() != FieldValue::Kind::Object)
            wrongType(path.empty() ? std::string("record") : path.str(), expected(),
                      value.json(path));
        value.forEachMember(
            [&](const std::string& name, const FieldValue& member) {
                const FieldPath fieldPath(path, name);
                findField<R>(name, fieldPath).set(record, member, fieldPath);
            },
            path);
    }
};

/// Applies one `--set field=value` to `record`. Text fields take the value
/// as it is; the others parse it as JSON.
template <class R> void applySetting(R& record, const std::string& setting) {
    const std::string::size_type eq = setting.find('=');
    if (eq == std::string::npos || eq == 0)
        throw UsageError("--set '" + setting + "': expected field=value");
    const std::string name = setting.substr(0, eq);
    const std::string value = setting.substr(eq + 1);
    const FieldPath root;
    const FieldPath path(root, name);
    const Field<R>& f = findField<R>(name, path);
    if (f.text) {
        const Json text(value);
        f.set(record, JsonFieldValue(text), path);
        return;
    }
    const Json parsed = Json::parse(value, nullptr, false);
    if (parsed.is_discarded())
        throw UsageError("field '" + name + "' expects " + f.expected + ", got '" + value + "'");
    f.set(record, JsonFieldValue(parsed), path);
}

} // namespace zuvocli

#endif
