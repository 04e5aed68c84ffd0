// Compact JSON text of a tree, as nlohmann's dump writes it, made faster.
#ifndef ZUVO_RECORDS_JSONTEXT_H
#define ZUVO_RECORDS_JSONTEXT_H

#include "records/FieldValue.h"

#include <string>

namespace zuvocli {

/// Appends to `out` exactly the text `value.dump(-1, ' ', false,
/// Json::error_handler_t::replace)` makes: no white space, UTF-8 kept as it
/// is, invalid UTF-8 replaced by U+FFFD. Strings of printable ASCII without
/// quotes or backslashes (nearly every string of a log line) and integers are
/// written directly; other strings and all floating-point numbers go through
/// nlohmann's own writer. Throws std::bad_alloc only.
void appendCompactJson(const Json& value, std::string& out);

/// The compact text of `value`, as appendCompactJson writes it.
std::string compactJson(const Json& value);

} // namespace zuvocli

#endif
