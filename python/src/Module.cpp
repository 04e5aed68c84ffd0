// The extension module `zuvo._zuvo`: the library's builders and parsers
// through the tool's record tables. The public names live in the package
// (zuvo/__init__.py), which defines the record classes and the exceptions
// and hands them over with `_bind`.
//
// The interpreter lock is released while the library builds or parses and
// while records are turned into JSON; converting between Python objects and
// JSON needs it.
#include "Errors.h"
#include "Layouts.h"
#include "PyFields.h"
#include "PyJson.h"

#include "capture/Decode.h"
#include "capture/Exchange.h"
#include "capture/HarArchive.h"
#include "capture/XmlTree.h"
#include "common/Keys.h"
#include "records/RequestMessages.h"
#include "records/ResponseTypes.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace zuvopy {

namespace {

using zuvocli::CipherContext;

/// The record classes, by layout and by name. Filled once by `_bind`; the
/// references are never released (see Errors.cpp).
struct Classes {
    RecordClasses byLayout;
    std::unordered_map<std::string, PyObject*> byName;
};

Classes& classes() {
    static Classes held;
    return held;
}

void bind(py::object error, py::object parseError, py::object payloadError, py::dict records) {
    setErrorClasses(std::move(error), std::move(parseError), std::move(payloadError));
    for (const RecordLayout& layout : recordLayouts()) {
        PyObject* cls = records[py::str(layout.name)].ptr();
        // Only responses become records; request records are built from
        // fields, and some share their fields with a response record.
        if (layout.response)
            classes().byLayout.add(layout.fields, cls);
        Py_INCREF(cls);
        classes().byName[layout.name] = cls;
    }
}

/// The text of a str (as UTF-8) or bytes-like argument (bytes, bytearray,
/// memoryview).
std::string textOf(py::handle text) {
    if (PyUnicode_Check(text.ptr()))
        return text.cast<std::string>();
    if (PyBytes_Check(text.ptr()))
        return std::string(PyBytes_AS_STRING(text.ptr()),
                           static_cast<std::size_t>(PyBytes_GET_SIZE(text.ptr())));
    if (PyObject_CheckBuffer(text.ptr())) {
        const py::object bytes = py::reinterpret_steal<py::object>(PyBytes_FromObject(text.ptr()));
        if (!bytes)
            throw py::error_already_set();
        return textOf(bytes);
    }
    throw py::type_error(std::string("expected str or bytes, got ") + Py_TYPE(text.ptr())->tp_name);
}

/// The cipher context for `key`: None (payloads in Base64), 64 hex digits,
/// or 32 bytes. ValueError for a key of the wrong form, TypeError for
/// another type.
CipherContext contextFor(py::handle key) {
    CipherContext context;
    if (key.is_none()) {
        // The key-less context holds nothing: one serves every call.
        static const CipherContext keyless =
            zuvocli::makeCipherContext(std::string(), std::string());
        context = keyless;
    } else if (PyUnicode_Check(key.ptr())) {
        const std::string hex = key.cast<std::string>();
        translateErrors(Rejection::Other,
                        [&] { context = zuvocli::makeCipherContext(zuvocli::parseHexKey(hex)); });
    } else if (PyBytes_Check(key.ptr())) {
        const std::string bytes = key.cast<std::string>();
        if (bytes.size() != zuvocli::KEY_BYTES)
            throw py::value_error("a key of bytes holds 32 bytes, got " +
                                  std::to_string(bytes.size()));
        context =
            zuvocli::makeCipherContext(std::vector<unsigned char>(bytes.begin(), bytes.end()));
    } else {
        throw py::type_error(std::string("key: expected None, str or bytes, got ") +
                             Py_TYPE(key.ptr())->tp_name);
    }
    return context;
}

/// A new Python object for `json` with the records' classes.
py::object recordsOf(const Json& json, PyObject* top) {
    PyObject* object = toPython(json, &classes().byLayout, top);
    if (object == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(object);
}

/// `json` with plain dicts for every object, as the tool prints it.
py::object plainOf(const Json& json) {
    PyObject* object = toPython(json, nullptr);
    if (object == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(object);
}

std::string build(const std::string& name, py::object fields, py::object key, py::object rc) {
    const zuvocli::RequestMessage* message = nullptr;
    translateErrors(Rejection::Other, [&] { message = &zuvocli::findRequestMessage(name); });
    if (!rc.is_none() && !message->takesRc)
        throw py::value_error("message '" + name + "' takes no rc");
    if (!fields.is_none() && !PyDict_Check(fields.ptr()))
        throw py::type_error("fields: expected a dict of " + std::string(message->record) +
                             " fields");
    const std::string rcText = rc.is_none() ? std::string() : rc.cast<std::string>();
    const CipherContext context = contextFor(key);
    // The fields are read from the Python objects with the lock held; the
    // library builds without it.
    const PyFieldValue input(fields.ptr());
    std::string document;
    translateErrors(Rejection::Other, [&] {
        document = message->buildFrom(&input, std::vector<std::string>(), rcText, context,
                                      [](const std::function<void()>& builder) {
                                          py::gil_scoped_release unlocked;
                                          builder();
                                      });
    });
    return document;
}

/// The response type answering `name`: a request message's answer, or a
/// response type by its own name ("plain").
const zuvocli::ResponseType& responseTypeFor(const std::string& name) {
    for (const zuvocli::RequestMessage& m : zuvocli::requestMessages()) {
        if (name == m.name)
            return zuvocli::findResponseType(m.answer);
    }
    for (const zuvocli::ResponseType& t : zuvocli::responseTypes()) {
        if (name == t.name)
            return t;
    }
    throw py::value_error("unknown message '" + name + "' (known messages: " +
                          zuvocli::joinNames(zuvocli::requestMessages()) + ", plain)");
}

/// The UTF-8 bytes of a str or bytes argument without copying them: they
/// stay valid while `keep` holds the object (both are immutable). Other
/// bytes-like objects are copied into a bytes object first.
std::pair<const char*, std::size_t> borrowedText(py::handle text, py::object& keep) {
    if (PyUnicode_Check(text.ptr())) {
        Py_ssize_t size = 0;
        const char* bytes = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
        if (bytes == nullptr)
            throw py::error_already_set();
        keep = py::reinterpret_borrow<py::object>(text);
        return {bytes, static_cast<std::size_t>(size)};
    }
    // bytes as they are; other bytes-like objects (or a TypeError) through
    // textOf.
    keep = PyBytes_Check(text.ptr()) ? py::reinterpret_borrow<py::object>(text)
                                     : py::object(py::bytes(textOf(text)));
    return {PyBytes_AS_STRING(keep.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(keep.ptr()))};
}

py::object parse(const std::string& name, py::handle text, py::object key) {
    const zuvocli::ResponseType& type = responseTypeFor(name);
    py::object keep;
    const std::pair<const char*, std::size_t> bytes = borrowedText(text, keep);
    const CipherContext context = contextFor(key);
    // Only making the Python objects needs the lock: the copy of the text,
    // the parse and freeing the intermediate record run without it, so that
    // threads parse in parallel.
    // The record of this thread's previous parse is freed here too: leaving
    // the lock a second time to free this one would cost more than it saves.
    thread_local Json record;
    runUnlocked(Rejection::Payload, [&] {
        Json().swap(record);
        record = type.parse(std::string(bytes.first, bytes.second), context);
    });
    return recordsOf(record, classes().byName.at(type.record));
}

py::object decode(py::handle text, py::object key) {
    const std::string document = textOf(text);
    const CipherContext context = contextFor(key);
    Json decoded;
    runUnlocked(Rejection::Other, [&] {
        switch (zuvocli::documentKind(document)) {
        case zuvocli::DocumentKind::Request:
            decoded = zuvocli::decodeRequest(document, context);
            return;
        case zuvocli::DocumentKind::Response:
            decoded = zuvocli::decodeResponse(document, std::string(), context);
            return;
        case zuvocli::DocumentKind::Other: break;
        }
        std::string element;
        try {
            element = zuvocli::readXml(document).name;
        } catch (const std::runtime_error& e) {
            throw zuvocli::RejectedError(std::string("not a protocol document: ") + e.what());
        }
        throw zuvocli::RejectedError("not a protocol document: its document element is <" +
                                     element + ">, neither <zuvo:request> nor <zuvo:response>");
    });
    return plainOf(decoded);
}

/// A HAR file's protocol exchanges, decoded in the order they started.
class HarFile {
public:
    HarFile(py::handle text, const std::string& name) {
        std::string json = textOf(text);
        translateErrors(Rejection::Other, [&] { archive.emplace(std::move(json), name); });
    }
    /// Every protocol exchange as `zuvo decode --har --jsonl` prints it.
    py::list exchanges(py::object key) const {
        const CipherContext context = contextFor(key);
        std::vector<Json> decoded;
        runUnlocked(Rejection::Other, [&] {
            zuvocli::decodeSession(*archive, context, context && context->encryptionEnabled,
                                   [&](const Json& exchange) { decoded.push_back(exchange); });
        });
        py::list list;
        for (const Json& exchange : decoded)
            list.append(plainOf(exchange));
        return list;
    }

private:
    std::optional<zuvocli::HarArchive> archive;
};

py::list layouts() {
    py::list list;
    for (const RecordLayout& l : recordLayouts())
        list.append(py::make_tuple(l.name, py::tuple(py::cast(l.fields)), l.response));
    return list;
}

/// A default-constructed `name` record: fields as the tables print them.
py::object defaultRecord(const std::string& name) {
    for (const RecordLayout& l : recordLayouts()) {
        if (l.name == name)
            return recordsOf(l.defaults, classes().byName.at(name));
    }
    throw py::value_error("unknown record '" + name + "'");
}

} // namespace

} // namespace zuvopy

PYBIND11_MODULE(_zuvo, m) {
    using namespace zuvopy;
    m.doc() = "The zuvo protocol library; use the package `zuvo`.";
    m.attr("VERSION") = ZUVO_PY_VERSION;
    py::list messages;
    py::dict answers;
    for (const zuvocli::RequestMessage& message : zuvocli::requestMessages()) {
        messages.append(message.name);
        answers[message.name] = py::make_tuple(message.record, message.answer, message.takesRc);
    }
    m.attr("MESSAGES") = py::tuple(messages);
    m.attr("ANSWERS") = answers;
    py::list types;
    for (const zuvocli::ResponseType& type : zuvocli::responseTypes())
        types.append(py::make_tuple(type.name, type.record));
    m.attr("RESPONSE_TYPES") = py::tuple(types);

    m.def("_bind", &bind);
    m.def("layouts", &layouts);
    m.def("default_record", &defaultRecord);
    m.def("keygen", [] { return zuvocli::toHex(zuvocli::randomKey()); });
    // `build` is the package's function itself: a Python frame in front of
    // it cost a fortieth of a call. The others are reached through the
    // package, positionally.
    m.def("build", &build, py::arg("message"), py::arg("fields") = py::none(), py::kw_only(),
          py::arg("key") = py::none(), py::arg("rc") = py::none(),
          "The request document for ``message``, as ``zuvo build`` prints it.\n\n"
          "``fields`` are the record's fields by name (bytes are taken as bytes);\n"
          "``key`` is None (payloads in Base64), 64 hex digits or 32 bytes; ``rc``\n"
          "is the text the registration, renewal and provisioning messages carry.\n"
          "ValueError names an unknown message or field, TypeError a field given a\n"
          "value of the wrong type.");
    m.def("parse", &parse, py::arg("message"), py::arg("text"), py::arg("key"));
    m.def("decode", &decode, py::arg("text"), py::arg("key"));
    py::class_<HarFile>(m, "HarFile")
        .def(py::init<py::handle, const std::string&>())
        .def("exchanges", &HarFile::exchanges, py::kw_only(), py::arg("key") = py::none());
}
