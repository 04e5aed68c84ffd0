// The response types `zuvo parse` knows, each tied to its sub-parser.
#ifndef ZUVO_TOOL_RESPONSETYPES_H
#define ZUVO_TOOL_RESPONSETYPES_H

#include "common/Keys.h"
#include "records/JsonFields.h"

#include <functional>
#include <string>
#include <vector>

namespace zuvocli {

/// One response type.
struct ResponseType {
    const char* name;   ///< command-line name, e.g. "prereg"
    const char* record; ///< the response record, e.g. "PreregResponseData"
    /// Parses `document` and returns the filled record as JSON. Throws
    /// RejectedError with the library's report for a rejected or malformed
    /// document, or one whose payload does not decode.
    std::function<Json(const std::string& document, const CipherContext& context)> parse;
};

/// Every response type; "plain" reads the common header only.
const std::vector<ResponseType>& responseTypes();

/// The response type named `name`; UsageError listing the known ones otherwise.
const ResponseType& findResponseType(const std::string& name);

/// Pretty JSON text (two-space indent); invalid UTF-8 in strings is replaced
/// rather than refused.
std::string dumpJson(const Json& json);

} // namespace zuvocli

#endif
