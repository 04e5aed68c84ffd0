// The response types `zuvo parse` knows, each tied to its sub-parser.
#include "ResponseTypes.h"

namespace zuvocli {

const std::vector<ResponseType>& responseTypes() {
    static const std::vector<ResponseType> types = {};
    return types;
}

const ResponseType& findResponseType(const std::string& name) {
    std::string known;
    for (const ResponseType& t : responseTypes()) {
        if (name == t.name)
            return t;
        known += (known.empty() ? "" : ", ") + std::string(t.name);
    }
    throw UsageError("unknown response type '" + name + "' (known types: " + known + ")");
}

std::string dumpJson(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace zuvocli
