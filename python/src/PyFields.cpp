// Python objects read as record field values.
#include "PyFields.h"

#include "PyJson.h"

#include "records/JsonFields.h"

#include <pybind11/pybind11.h>

namespace zuvopy {

namespace py = pybind11;

namespace {

std::string utf8Of(PyObject* text) {
    Py_ssize_t size = 0;
    const char* bytes = PyUnicode_AsUTF8AndSize(text, &size);
    if (bytes == nullptr)
        throw py::error_already_set();
    return std::string(bytes, static_cast<std::size_t>(size));
}

} // namespace

py::object PyFieldValue::members() const {
    if (PyDict_Check(object))
        return py::reinterpret_borrow<py::object>(object);
    // A record object: its attributes are its fields. Its type lists them in
    // `_fields`; the instance keeps them in its own dict.
    if (PyObject_HasAttrString(object, "_fields") == 0)
        return py::object();
    py::object dict = py::reinterpret_steal<py::object>(PyObject_GetAttrString(object, "__dict__"));
    if (!dict || !PyDict_Check(dict.ptr())) {
        PyErr_Clear();
        return py::object();
    }
    return dict;
}

zuvocli::FieldValue::Kind PyFieldValue::kind() const {
    if (object == Py_None)
        return Kind::Null;
    if (PyBool_Check(object))
        return Kind::Boolean;
    if (PyLong_Check(object))
        return Kind::Integer;
    if (PyUnicode_Check(object))
        return Kind::Text;
    if (PyBytes_Check(object))
        return Kind::Bytes;
    if (PyList_Check(object) || PyTuple_Check(object))
        return Kind::List;
    return members() ? Kind::Object : Kind::Other;
}

bool PyFieldValue::boolean() const {
    return object == Py_True;
}

void PyFieldValue::integer(bool& negative, unsigned long long& magnitude,
                           const zuvocli::FieldPath& path) const {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(object, &overflow);
    if (overflow == 0) {
        negative = number < 0;
        magnitude = negative ? 0ULL - static_cast<unsigned long long>(number)
                             : static_cast<unsigned long long>(number);
        return;
    }
    if (overflow > 0) {
        magnitude = PyLong_AsUnsignedLongLong(object);
        negative = false;
        if (PyErr_Occurred() == nullptr)
            return;
        PyErr_Clear();
    }
    throw py::type_error("field '" + path.str() + "': integer out of range");
}

std::string PyFieldValue::text() const {
    if (PyBytes_Check(object))
        return zuvocli::toBase64(std::string(PyBytes_AS_STRING(object),
                                             static_cast<std::size_t>(PyBytes_GET_SIZE(object))));
    return utf8Of(object);
}

std::string PyFieldValue::bytes(const zuvocli::FieldPath& path) const {
    if (PyBytes_Check(object))
        return std::string(PyBytes_AS_STRING(object),
                           static_cast<std::size_t>(PyBytes_GET_SIZE(object)));
    return zuvocli::fromBase64(utf8Of(object), path);
}

std::size_t PyFieldValue::size() const {
    return static_cast<std::size_t>(PySequence_Fast_GET_SIZE(object));
}

void PyFieldValue::forEachItem(const std::function<void(std::size_t, const FieldValue&)>& visit,
                               const zuvocli::FieldPath&) const {
    const Py_ssize_t size = PySequence_Fast_GET_SIZE(object);
    for (Py_ssize_t i = 0; i < size; ++i)
        visit(static_cast<std::size_t>(i), PyFieldValue(PySequence_Fast_GET_ITEM(object, i)));
}

void PyFieldValue::forEachMember(
    const std::function<void(const std::string&, const FieldValue&)>& visit,
    const zuvocli::FieldPath& path) const {
    const py::object dict = members();
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    Py_ssize_t pos = 0;
    std::string name; // one buffer for every name
    while (PyDict_Next(dict.ptr(), &pos, &key, &item)) {
        if (!PyUnicode_Check(key))
            throw py::type_error("field names must be str, got " +
                                 std::string(Py_TYPE(key)->tp_name) +
                                 (path.empty() ? "" : " in '" + path.str() + "'"));
        Py_ssize_t size = 0;
        const char* text = PyUnicode_AsUTF8AndSize(key, &size);
        if (text == nullptr)
            throw py::error_already_set();
        name.assign(text, static_cast<std::size_t>(size));
        visit(name, PyFieldValue(item));
    }
}

zuvocli::Json PyFieldValue::json(const zuvocli::FieldPath& path) const {
    return fromPython(object, path.str());
}

} // namespace zuvopy
