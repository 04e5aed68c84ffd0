// The tool's errors as the module's Python exceptions.
#include "Errors.h"

#include "common/ParseResponse.h"

#include <pybind11/stl.h>

#include <exception>
#include <stdexcept>
#include <string>

namespace zuvopy {

namespace py = pybind11;
namespace zl = velmora::zuvolib;

namespace {

/// Strong references, never released: the classes live as long as the
/// interpreter, and a destructor at exit would run after it is gone.
struct ErrorClasses {
    PyObject* error = nullptr;
    PyObject* parseError = nullptr;
    PyObject* payloadError = nullptr;
};

ErrorClasses& classes() {
    static ErrorClasses held;
    return held;
}

/// Lower-case names of ParseFailure::Kind, in declaration order.
const char* const KIND_NAMES[] = {"none",           "malformed",      "rejected",
                                  "mismatched_end", "missing_method", "no_cipher_context",
                                  "payload"};

const char* kindName(zl::ParseFailure::Kind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < sizeof KIND_NAMES / sizeof KIND_NAMES[0] ? KIND_NAMES[index] : "unknown";
}

/// Sets ParseError for `e`, its attributes being the failure record.
void raiseParseError(const zuvocli::ParseFailedError& e) {
    const zl::ParseFailure& f = e.failure;
    py::object error = py::reinterpret_borrow<py::object>(classes().parseError)(e.what());
    error.attr("kind") = kindName(f.kind);
    error.attr("parser") = f.parserName;
    error.attr("element") = f.element;
    error.attr("open_elements") = py::cast(f.openElements);
    error.attr("line") = f.line;
    error.attr("column") = f.column;
    error.attr("byte_offset") = f.byteOffset;
    error.attr("report") = py::reinterpret_steal<py::object>(PyUnicode_DecodeUTF8(
        e.details.data(), static_cast<Py_ssize_t>(e.details.size()), "replace"));
    PyErr_SetObject(classes().parseError, error.ptr());
}

/// A field given a value it cannot hold, as opposed to an unknown name or
/// bad text.
bool isWrongType(const std::string& message) {
    return message.rfind("field '", 0) == 0 &&
           message.find("' expects Base64 text:") == std::string::npos;
}

} // namespace

void setErrorClasses(py::object error, py::object parseError, py::object payloadError) {
    classes().error = error.release().ptr();
    classes().parseError = parseError.release().ptr();
    classes().payloadError = payloadError.release().ptr();
}

void translateErrors(Rejection rejection, const std::function<void()>& work) {
    try {
        work();
        return;
    } catch (const zuvocli::ParseFailedError& e) {
        // A payload the key cannot open is its own exception, whatever the
        // parser had read by then.
        if (e.failure.kind == zl::ParseFailure::PAYLOAD) {
            const std::string message =
                e.cause.empty() ? std::string(e.what()) : std::string(e.what()) + ": " + e.cause;
            PyErr_SetString(classes().payloadError, message.c_str());
        } else {
            raiseParseError(e);
        }
    } catch (const zuvocli::RejectedError& e) {
        PyErr_SetString(rejection == Rejection::Payload ? classes().payloadError : classes().error,
                        e.what());
    } catch (const zuvocli::UsageError& e) {
        PyErr_SetString(isWrongType(e.what()) ? PyExc_TypeError : PyExc_ValueError, e.what());
    } catch (const std::invalid_argument& e) {
        PyErr_SetString(PyExc_ValueError, e.what());
    }
    throw py::error_already_set();
}

void runUnlocked(Rejection rejection, const std::function<void()>& work) {
    std::exception_ptr failure;
    {
        py::gil_scoped_release unlocked;
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (failure)
        translateErrors(rejection, [&] { std::rethrow_exception(failure); });
}

} // namespace zuvopy
