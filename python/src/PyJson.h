// Record JSON (the form the tool prints and reads) to and from Python
// objects. Records become instances of their Python record class, found by
// the exact, ordered list of their fields; every other JSON object becomes
// a dict.
#ifndef ZUVO_PY_PYJSON_H
#define ZUVO_PY_PYJSON_H

#include "records/JsonFields.h"

#include <Python.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace zuvopy {

typedef zuvocli::Json Json;

/// A record class and its field names as interned Python strings.
struct RecordClass {
    PyObject* cls = nullptr;
    std::vector<PyObject*> names;
};

/// Python record classes by the layout of their records: the field names
/// joined with '\n'. Holds strong references for the life of the module.
class RecordClasses {
public:
    /// Registers `cls` (a type object) for records whose fields are `names`.
    void add(const std::vector<std::string>& names, PyObject* cls);
    /// The class of an object with keys `layout`; null when none matches.
    const RecordClass* find(const std::string& layout) const;

private:
    std::unordered_map<std::string, RecordClass> classes;
};

/// A new reference to the Python form of `json`: null, booleans, numbers,
/// strings (invalid UTF-8 replaced), lists, and records of `classes` (when
/// given; dicts otherwise). `top` is the class of the outermost object, or
/// null to look it up like the others. Returns null with a Python error set
/// when Python runs out of memory.
PyObject* toPython(const Json& json, const RecordClasses* classes, PyObject* top = nullptr);

/// `value` as JSON for a record field named `path`: None, bool, int, str,
/// bytes (as Base64 text), lists and tuples, dicts with str keys, and
/// records (their fields). Throws pybind11::type_error naming `path` for
/// anything else.
Json fromPython(PyObject* value, const std::string& path);

} // namespace zuvopy

#endif
