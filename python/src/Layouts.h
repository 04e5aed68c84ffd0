// The records the module turns into Python objects, each with its name and
// its fields in record order, read from the tool's field tables.
#ifndef ZUVO_PY_LAYOUTS_H
#define ZUVO_PY_LAYOUTS_H

#include "records/JsonFields.h"

#include <string>
#include <vector>

namespace zuvopy {

/// One record: its C++ name ("AuthResponseData") and its field names.
struct RecordLayout {
    std::string name;
    std::vector<std::string> fields;
    bool response;          ///< read from responses (true) or built into requests
    zuvocli::Json defaults; ///< a default-constructed record
};

/// Every request and response record, nested ones included.
const std::vector<RecordLayout>& recordLayouts();

} // namespace zuvopy

#endif
