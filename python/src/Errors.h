// The module's exceptions, raised from the tool's errors. The classes are
// defined in Python (zuvo/__init__.py) and handed over once at import.
#ifndef ZUVO_PY_ERRORS_H
#define ZUVO_PY_ERRORS_H

#include <pybind11/pybind11.h>

#include <functional>

namespace zuvopy {

/// The classes zuvo.Error, zuvo.ParseError and zuvo.PayloadError.
void setErrorClasses(pybind11::object error, pybind11::object parseError,
                     pybind11::object payloadError);

/// What a rejection of the library becomes in Python.
enum class Rejection {
    Payload, ///< a payload that does not open: PayloadError
    Other,   ///< a document that is not what it claims: Error
};

/// Runs `work` and turns the tool's errors into Python exceptions:
/// ParseFailedError into ParseError with the library's failure record,
/// other RejectedErrors as `rejection` says, UsageErrors into ValueError
/// (TypeError when a field got a value of the wrong type), a builder's
/// std::invalid_argument into ValueError. Raises pybind11::error_already_set.
void translateErrors(Rejection rejection, const std::function<void()>& work);

/// Runs `work` with the interpreter lock released, then raises what it
/// threw as translateErrors does, holding the lock again. `work` must not
/// touch Python objects.
void runUnlocked(Rejection rejection, const std::function<void()>& work);

} // namespace zuvopy

#endif
