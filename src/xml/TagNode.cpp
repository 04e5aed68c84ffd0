// Element tree node and its serialiser.

#include "zuvolib/xml/TagNode.h"

#include <cstring>

namespace velmora {
namespace zuvolib {

TagNode::TagNode(const std::string& name) : name(name) {}

TagNode::TagNode(const char* name) : name(name) {}

void TagNode::addAttribute(const std::string& attrName, const std::string& attrValue) {
    attributes.reserve(attributes.size() + attrName.size() + attrValue.size() + 4);
    attributes += ' ';
    attributes += attrName;
    attributes += "=\"";
    attributes += attrValue;
    attributes += '"';
}

std::string TagNode::indent(int depth) const {
    return std::string(depth > 0 ? static_cast<std::size_t>(depth) : 0, '\t');
}

namespace {

// Grows `out` by `n` bytes and returns where they start: each line of text
// is then written with plain copies instead of one checked append per piece.
char* extend(std::string& out, std::size_t n) {
    const std::size_t at = out.size();
    out.resize(at + n);
    return &out[at];
}

char* put(char* p, const std::string& s) {
    std::memcpy(p, s.data(), s.size());
    return p + s.size();
}

char* put(char* p, const char* literal, std::size_t n) {
    std::memcpy(p, literal, n);
    return p + n;
}

// Indentation and "<name attributes".
char* openTag(char* p, std::size_t tabs, const TagNode& node) {
    std::memset(p, '\t', tabs);
    p += tabs;
    *p++ = '<';
    p = put(p, node.name);
    return put(p, node.attributes);
}

// "</name>" and the line feed.
void closeTag(char* p, const std::string& name) {
    p = put(p, "</", 2);
    p = put(p, name);
    put(p, ">\n", 2);
}

} // namespace

void TagNode::appendContentsTo(std::string& out, int depth) const {
    const std::size_t tabs = depth > 0 ? static_cast<std::size_t>(depth) : 0;
    const std::size_t openLength = tabs + 1 + name.size() + attributes.size();
    const std::size_t closeLength = name.size() + 4;
    if (value.empty() && children.empty()) {
        put(openTag(extend(out, openLength + 3), tabs, *this), "/>\n", 3);
        return;
    }
    if (!value.empty()) {
        // Text wins: children of an element with text are not written.
        char* p = openTag(extend(out, openLength + 1 + value.size() + closeLength), tabs, *this);
        *p++ = '>';
        closeTag(put(p, value), name);
        return;
    }
    // Children only: one per line, the closing tag under the opening tag.
    put(openTag(extend(out, openLength + 2), tabs, *this), ">\n", 2);
    writeChildrenTo(out, depth);
    char* p = extend(out, tabs + closeLength);
    std::memset(p, '\t', tabs);
    closeTag(p + tabs, name);
}

void TagNode::writeChildrenTo(std::string& out, int depth) const {
    for (const std::tr1::shared_ptr<TagNode>& child : children)
        child->appendContentsTo(out, depth + 1);
}

void TagNode::toString(std::string& out) const {
    appendContentsTo(out, 0);
}

std::string TagNode::toString() const {
    std::string out;
    appendContentsTo(out, 0);
    out.shrink_to_fit();
    return out;
}

void addChild(const std::tr1::shared_ptr<TagNode>& parent,
              const std::tr1::shared_ptr<TagNode>& child) {
    // Most parents get a handful of children: one block for the first four.
    if (parent->children.empty())
        parent->children.reserve(4);
    parent->children.push_back(child);
    child->parent = parent;
}

} // namespace zuvolib
} // namespace velmora
