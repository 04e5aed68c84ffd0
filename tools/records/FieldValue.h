// A value being read into a record field, in a front end's own form.
//
// The field tables read values through this interface rather than through
// one representation, so a front end can hand its own values to them
// directly: the command line hands JSON (`JsonFieldValue`), a language
// binding hands its own objects without a detour through JSON.
#ifndef ZUVO_TOOL_FIELDVALUE_H
#define ZUVO_TOOL_FIELDVALUE_H

#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <string>

namespace zuvocli {

/// JSON objects keep the order in which fields were added: record order.
typedef nlohmann::ordered_json Json;

/// Where a value sits in the fields given, for messages: "videoProfiles[2]",
/// "idCookies[0].name". Each step refers to its parent and its name, which
/// must outlive it; the text is made only when a message needs it.
class FieldPath {
public:
    /// The record itself.
    FieldPath() = default;
    FieldPath(const FieldPath& parent, const std::string& name) : parent(&parent), name(&name) {}
    FieldPath(const FieldPath& parent, std::size_t index) : parent(&parent), index(index) {}

    bool empty() const { return parent == nullptr; }
    std::string str() const;

private:
    const FieldPath* parent = nullptr;
    const std::string* name = nullptr;
    std::size_t index = 0;
};

/// One value, as a field table reads it. Accessors are only called for the
/// kind the value has; `path` names the field for messages.
class FieldValue {
public:
    enum class Kind { Null, Boolean, Integer, Text, Bytes, List, Object, Other };

    virtual ~FieldValue() = default;
    virtual Kind kind() const = 0;
    virtual bool boolean() const = 0;
    /// An integer as its sign and magnitude, so that every 64-bit value of
    /// either sign is exact.
    virtual void integer(bool& negative, unsigned long long& magnitude,
                         const FieldPath& path) const = 0;
    /// Text as it is; bytes as their Base64 text (their JSON form).
    virtual std::string text() const = 0;
    /// Bytes as they are; text decoded as Base64 (UsageError naming `path`).
    virtual std::string bytes(const FieldPath& path) const = 0;
    /// How many items a list has.
    virtual std::size_t size() const = 0;
    /// A list's items, in order.
    virtual void forEachItem(const std::function<void(std::size_t, const FieldValue&)>& visit,
                             const FieldPath& path) const = 0;
    /// An object's members, in order.
    virtual void
    forEachMember(const std::function<void(const std::string&, const FieldValue&)>& visit,
                  const FieldPath& path) const = 0;
    /// The value as JSON, for messages about it.
    virtual Json json(const FieldPath& path) const = 0;
};

/// A JSON value read as a field value; `json` must outlive it.
class JsonFieldValue : public FieldValue {
public:
    explicit JsonFieldValue(const Json& json) : value(json) {}
    Kind kind() const override;
    bool boolean() const override;
    void integer(bool& negative, unsigned long long& magnitude,
                 const FieldPath& path) const override;
    std::string text() const override;
    std::string bytes(const FieldPath& path) const override;
    std::size_t size() const override { return value.size(); }
    void forEachItem(const std::function<void(std::size_t, const FieldValue&)>& visit,
                     const FieldPath& path) const override;
    void forEachMember(const std::function<void(const std::string&, const FieldValue&)>& visit,
                       const FieldPath& path) const override;
    Json json(const FieldPath& path) const override;

private:
    const Json& value;
};

} // namespace zuvocli

#endif
