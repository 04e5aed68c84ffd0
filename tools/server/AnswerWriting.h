// What the scripted server's answers are written with: the element writer,
// the result section each message family fills, and the refusal of a
// request. Private to the server's sources.
#ifndef ZUVO_TOOL_ANSWERWRITING_H
#define ZUVO_TOOL_ANSWERWRITING_H

#include "server/ScriptedServer.h"

#include <zuvolib/xml/TagBuilder.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace zuvocli {

/// Writes nested elements through the library's tag builder: `open` starts
/// an element that later ones go into until `close`, `leaf` adds one with
/// text.
class ElementWriter {
public:
    explicit ElementWriter(velmora::zuvolib::TagBuilder& builder)
        : builder(builder), open_{builder.root} {}

    ElementWriter& open(const std::string& name) {
        builder.addTo(open_.back(), name);
        open_.push_back(builder.current);
        return *this;
    }
    ElementWriter& attribute(const std::string& name, const std::string& value) {
        builder.addAttribute(name, value);
        return *this;
    }
    ElementWriter& leaf(const std::string& name, const std::string& text) {
        builder.addTo(open_.back(), name);
        builder.addValue(text);
        return *this;
    }
    template <class Number,
              class = typename std::enable_if<std::is_arithmetic<Number>::value>::type>
    ElementWriter& leaf(const std::string& name, Number number) {
        return leaf(name, std::to_string(number));
    }
    ElementWriter& close() {
        open_.pop_back();
        return *this;
    }

private:
    velmora::zuvolib::TagBuilder& builder;
    std::vector<std::tr1::shared_ptr<velmora::zuvolib::TagNode>> open_;
};

/// Throws std::runtime_error "scripted server refused the request: WHAT".
[[noreturn]] void refuse(const std::string& what);

struct ScriptedServer::Result {
    std::string method;
    std::function<void(ElementWriter&)> body;
    bool success = true;
    int code = 0;
    std::string userText = "OK";
    bool dropMethod = false; ///< leave out the method attribute
};

} // namespace zuvocli

#endif
