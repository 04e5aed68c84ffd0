// JSON values read as field values.
#include "records/FieldValue.h"

#include "records/JsonFields.h"

namespace zuvocli {

std::string FieldPath::str() const {
    if (parent == nullptr)
        return std::string();
    std::string text = parent->str();
    if (name == nullptr)
        return text + "[" + std::to_string(index) + "]";
    return text.empty() ? *name : text + "." + *name;
}

FieldValue::Kind JsonFieldValue::kind() const {
    switch (value.type()) {
    case Json::value_t::null: return Kind::Null;
    case Json::value_t::boolean: return Kind::Boolean;
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned: return Kind::Integer;
    case Json::value_t::string: return Kind::Text;
    case Json::value_t::array: return Kind::List;
    case Json::value_t::object: return Kind::Object;
    default: return Kind::Other;
    }
}

bool JsonFieldValue::boolean() const {
    return value.get<bool>();
}

void JsonFieldValue::integer(bool& negative, unsigned long long& magnitude,
                             const FieldPath&) const {
    if (value.is_number_unsigned()) {
        negative = false;
        magnitude = value.get<unsigned long long>();
        return;
    }
    const long long number = value.get<long long>();
    negative = number < 0;
    // Negated as unsigned so that the smallest value has its magnitude too.
    magnitude = negative ? 0ULL - static_cast<unsigned long long>(number)
                         : static_cast<unsigned long long>(number);
}

std::string JsonFieldValue::text() const {
    return value.get<std::string>();
}

std::string JsonFieldValue::bytes(const FieldPath& path) const {
    return fromBase64(value.get_ref<const std::string&>(), path);
}

void JsonFieldValue::forEachItem(const std::function<void(std::size_t, const FieldValue&)>& visit,
                                 const FieldPath&) const {
    for (std::size_t i = 0; i < value.size(); ++i)
        visit(i, JsonFieldValue(value[i]));
}

void JsonFieldValue::forEachMember(
    const std::function<void(const std::string&, const FieldValue&)>& visit,
    const FieldPath&) const {
    for (auto it = value.begin(); it != value.end(); ++it)
        visit(it.key(), JsonFieldValue(it.value()));
}

Json JsonFieldValue::json(const FieldPath&) const {
    return value;
}

} // namespace zuvocli
