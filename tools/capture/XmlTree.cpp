// A small element tree read with expat.
#include "capture/XmlTree.h"

#include <expat.h>

#include <memory>
#include <random>
#include <stdexcept>

namespace zuvocli {

const XmlElement* XmlElement::find(const std::string& childName) const {
    for (const XmlElement& c : children) {
        if (c.name == childName)
            return &c;
    }
    return nullptr;
}

const XmlElement& XmlElement::child(const std::string& childName) const {
    const XmlElement* found = find(childName);
    if (!found)
        throw std::runtime_error("<" + name + "> has no <" + childName + ">");
    return *found;
}

std::vector<const XmlElement*> XmlElement::all(const std::string& childName) const {
    std::vector<const XmlElement*> found;
    for (const XmlElement& c : children) {
        if (c.name == childName)
            found.push_back(&c);
    }
    return found;
}

std::string XmlElement::attribute(const std::string& attributeName) const {
    const auto it = attributes.find(attributeName);
    return it == attributes.end() ? std::string() : it->second;
}

namespace {

/// Deeper documents are refused: the tree is copied and freed recursively,
/// and a server must not run out of stack on a hostile request.
const std::size_t MAX_DEPTH = 256;

/// Builds the tree from expat's callbacks: `open` holds the path from the
/// document element to the element being read.
struct TreeBuilder {
    XML_Parser parser;
    const std::string& document;
    XmlElement root;
    std::vector<XmlElement*> open;
    bool tooDeep = false;

    static void start(void* user, const char* name, const char** attributes) {
        TreeBuilder& self = *static_cast<TreeBuilder*>(user);
        if (self.open.size() >= MAX_DEPTH) {
            self.tooDeep = true;
            XML_StopParser(self.parser, XML_FALSE);
            return;
        }
        XmlElement* element = &self.root;
        if (!self.open.empty()) {
            self.open.back()->children.emplace_back();
            element = &self.open.back()->children.back();
        }
        element->name = name;
        for (const char** a = attributes; a[0] && a[1]; a += 2)
            element->attributes[a[0]] = a[1];
        self.open.push_back(element);
    }

    static void end(void* user, const char*) {
        TreeBuilder& self = *static_cast<TreeBuilder*>(user);
        if (self.tooDeep)
            return; // expat still ends an empty element it was stopped in
        XmlElement& element = *self.open.back();
        const std::string::size_type first = element.text.find_first_not_of(" \t\r\n");
        element.text =
            first == std::string::npos
                ? std::string()
                : element.text.substr(first, element.text.find_last_not_of(" \t\r\n") - first + 1);
        self.open.pop_back();
    }

    static void text(void* user, const char* s, int length) {
        TreeBuilder& self = *static_cast<TreeBuilder*>(user);
        if (self.open.empty())
            return;
        self.open.back()->text.append(s, static_cast<std::size_t>(length));
        // The event's own bytes in the document: a reference counts as
        // written, not as the character it stands for.
        const XML_Index at = XML_GetCurrentByteIndex(self.parser);
        const int count = XML_GetCurrentByteCount(self.parser);
        if (at >= 0 && count > 0)
            self.open.back()->raw.append(self.document, static_cast<std::size_t>(at),
                                         static_cast<std::size_t>(count));
    }
};

struct ParserFree {
    void operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }
};

// One hash salt for the process: expat otherwise asks the system for random
// bytes for every document, a system call per request a server logs.
unsigned long hashSalt() {
    static const unsigned long salt = [] {
        std::random_device device;
        const unsigned long drawn = (static_cast<unsigned long>(device()) << 16) ^ device();
        return drawn != 0 ? drawn : 1; // 0 would mean "draw one per document"
    }();
    return salt;
}

} // namespace

XmlElement readXml(const std::string& document) {
    const std::unique_ptr<XML_ParserStruct, ParserFree> parser(XML_ParserCreate(nullptr));
    if (!parser)
        throw std::bad_alloc();
    XML_SetHashSalt(parser.get(), hashSalt());
    TreeBuilder builder{parser.get(), document, XmlElement(), {}};
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), TreeBuilder::start, TreeBuilder::end);
    XML_SetCharacterDataHandler(parser.get(), TreeBuilder::text);
    if (XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), 1) !=
        XML_STATUS_OK) {
        if (builder.tooDeep)
            throw std::runtime_error("elements nested deeper than " + std::to_string(MAX_DEPTH));
        throw std::runtime_error(std::string("not well-formed XML (") +
                                 XML_ErrorString(XML_GetErrorCode(parser.get())) + " at line " +
                                 std::to_string(XML_GetCurrentLineNumber(parser.get())) + ")");
    }
    return builder.root;
}

} // namespace zuvocli
