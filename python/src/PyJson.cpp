// Record JSON to and from Python objects, through the C API: a 1 MB
// catalogue makes tens of thousands of objects, so each costs one
// allocation and no attribute lookups.
#include "PyJson.h"

#include <pybind11/pybind11.h>

namespace zuvopy {

namespace py = pybind11;

void RecordClasses::add(const std::vector<std::string>& names, PyObject* cls) {
    RecordClass entry;
    Py_INCREF(cls);
    entry.cls = cls;
    std::string layout;
    for (const std::string& name : names) {
        entry.names.push_back(PyUnicode_InternFromString(name.c_str()));
        (layout += name) += '\n';
    }
    classes[layout] = std::move(entry);
}

const RecordClass* RecordClasses::find(const std::string& layout) const {
    const auto found = classes.find(layout);
    return found == classes.end() ? nullptr : &found->second;
}

namespace {

PyObject* toPyString(const std::string& text) {
    return PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
}

/// An instance of `cls` whose attributes are `dict` (a new reference,
/// stolen): no __init__ runs.
PyObject* makeRecord(PyObject* cls, PyObject* dict) {
    PyObject* record = PyType_GenericAlloc(reinterpret_cast<PyTypeObject*>(cls), 0);
    if (record != nullptr && PyObject_GenericSetDict(record, dict, nullptr) != 0)
        Py_CLEAR(record);
    Py_DECREF(dict);
    return record;
}

/// The record class of `json` by its keys; null when it is no record.
const RecordClass* classOf(const Json& json, const RecordClasses& classes) {
    // Reused between calls (the interpreter lock is held here); filled and
    // read before any recursion.
    static std::string layout;
    layout.clear();
    for (auto it = json.begin(); it != json.end(); ++it)
        (layout += it.key()) += '\n';
    return classes.find(layout);
}

PyObject* objectToPython(const Json& json, const RecordClasses* classes, PyObject* top) {
    const RecordClass* record = classes != nullptr ? classOf(json, *classes) : nullptr;
    PyObject* dict = PyDict_New();
    if (dict == nullptr)
        return nullptr;
    std::size_t index = 0;
    for (auto it = json.begin(); it != json.end(); ++it, ++index) {
        PyObject* value = toPython(it.value(), classes);
        const int failed = value == nullptr ? -1
                           : record != nullptr
                               ? PyDict_SetItem(dict, record->names[index], value)
                               : PyDict_SetItemString(dict, it.key().c_str(), value);
        Py_XDECREF(value);
        if (failed != 0) {
            Py_DECREF(dict);
            return nullptr;
        }
    }
    PyObject* cls = top != nullptr ? top : record != nullptr ? record->cls : nullptr;
    return cls == nullptr ? dict : makeRecord(cls, dict);
}

} // namespace

PyObject* toPython(const Json& json, const RecordClasses* classes, PyObject* top) {
    switch (json.type()) {
    case Json::value_t::null: Py_RETURN_NONE;
    case Json::value_t::boolean: return PyBool_FromLong(json.get<bool>() ? 1 : 0);
    case Json::value_t::number_unsigned:
        return PyLong_FromUnsignedLongLong(json.get<unsigned long long>());
    case Json::value_t::number_integer: return PyLong_FromLongLong(json.get<long long>());
    case Json::value_t::number_float: return PyFloat_FromDouble(json.get<double>());
    case Json::value_t::string: return toPyString(json.get_ref<const std::string&>());
    case Json::value_t::array: {
        PyObject* list = PyList_New(static_cast<Py_ssize_t>(json.size()));
        if (list == nullptr)
            return nullptr;
        Py_ssize_t i = 0;
        for (const Json& item : json) {
            PyObject* value = toPython(item, classes);
            if (value == nullptr) {
                Py_DECREF(list);
                return nullptr;
            }
            PyList_SET_ITEM(list, i++, value);
        }
        return list;
    }
    case Json::value_t::object: return objectToPython(json, classes, top);
    default: Py_RETURN_NONE; // binary and discarded values never come from records
    }
}

Json fromPython(PyObject* value, const std::string& path) {
    if (value == Py_None)
        return Json();
    if (PyBool_Check(value))
        return value == Py_True;
    if (PyLong_Check(value)) {
        int overflow = 0;
        const long long number = PyLong_AsLongLongAndOverflow(value, &overflow);
        if (overflow > 0) {
            const unsigned long long big = PyLong_AsUnsignedLongLong(value);
            if (PyErr_Occurred() != nullptr) {
                PyErr_Clear();
                throw py::type_error("field '" + path + "': integer out of range");
            }
            return big;
        }
        if (overflow < 0)
            throw py::type_error("field '" + path + "': integer out of range");
        return number;
    }
    if (PyUnicode_Check(value)) {
        Py_ssize_t size = 0;
        const char* text = PyUnicode_AsUTF8AndSize(value, &size);
        if (text == nullptr)
            throw py::error_already_set();
        return std::string(text, static_cast<std::size_t>(size));
    }
    if (PyBytes_Check(value)) {
        const std::string bytes(PyBytes_AS_STRING(value),
                                static_cast<std::size_t>(PyBytes_GET_SIZE(value)));
        return zuvocli::toBase64(bytes);
    }
    if (PyList_Check(value) || PyTuple_Check(value)) {
        Json array = Json::array();
        const Py_ssize_t size = PySequence_Fast_GET_SIZE(value);
        for (Py_ssize_t i = 0; i < size; ++i)
            array.push_back(fromPython(PySequence_Fast_GET_ITEM(value, i),
                                       path + "[" + std::to_string(i) + "]"));
        return array;
    }
    PyObject* dict = PyDict_Check(value) ? value : nullptr;
    if (dict == nullptr && PyObject_HasAttrString(value, "_fields") &&
        PyObject_HasAttrString(value, "__dict__")) {
        // A record object: its attributes are its fields.
        py::object attributes = py::reinterpret_borrow<py::object>(value).attr("__dict__");
        return fromPython(attributes.ptr(), path);
    }
    if (dict == nullptr)
        throw py::type_error("field '" + path + "': cannot take a value of type " +
                             Py_TYPE(value)->tp_name);
    Json object = Json::object();
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    Py_ssize_t pos = 0;
    while (PyDict_Next(dict, &pos, &key, &item)) {
        if (!PyUnicode_Check(key))
            throw py::type_error("field names must be str, got " +
                                 std::string(Py_TYPE(key)->tp_name) +
                                 (path.empty() ? "" : " in '" + path + "'"));
        const std::string name = PyUnicode_AsUTF8(key);
        object[name] = fromPython(item, path.empty() ? name : path + "." + name);
    }
    return object;
}

} // namespace zuvopy
