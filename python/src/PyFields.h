// Python objects read straight into request records by the record tables,
// without a detour through JSON. Every call needs the interpreter lock.
#ifndef ZUVO_PY_PYFIELDS_H
#define ZUVO_PY_PYFIELDS_H

#include "records/FieldValue.h"

#include <pybind11/pybind11.h>

namespace zuvopy {

/// A borrowed Python object as a record field value: None, bool, int, str,
/// bytes (raw bytes for byte fields, their Base64 text for text fields),
/// lists and tuples, dicts with str keys, and record objects (their
/// attributes). Anything else is a value of the wrong type. Raises
/// pybind11::type_error for an int beyond 64 bits or a dict key that is no
/// str.
class PyFieldValue : public zuvocli::FieldValue {
public:
    explicit PyFieldValue(PyObject* object) : object(object) {}
    Kind kind() const override;
    bool boolean() const override;
    void integer(bool& negative, unsigned long long& magnitude,
                 const zuvocli::FieldPath& path) const override;
    std::string text() const override;
    std::string bytes(const zuvocli::FieldPath& path) const override;
    std::size_t size() const override;
    void forEachItem(const std::function<void(std::size_t, const FieldValue&)>& visit,
                     const zuvocli::FieldPath& path) const override;
    void forEachMember(const std::function<void(const std::string&, const FieldValue&)>& visit,
                       const zuvocli::FieldPath& path) const override;
    zuvocli::Json json(const zuvocli::FieldPath& path) const override;

private:
    /// The dict holding an object's members: the dict itself, or a record
    /// object's attributes; a null handle for anything else.
    pybind11::object members() const;

    PyObject* object;
};

} // namespace zuvopy

#endif
