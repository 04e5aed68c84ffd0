// Element tree node and its serialiser.

#include "zuvolib/xml/TagNode.h"

#include <cstring>

namespace velmora {
namespace zuvolib {
namespace {

// Tab characters for nesting level `depth`; a negative level indents nothing.
std::size_t tabsFor(int depth) {
    return depth > 0 ? static_cast<std::size_t>(depth) : 0;
}

} // namespace

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
    return std::string(tabsFor(depth), '\t');
}

namespace {

// Writing is done in two passes over the subtree: its exact length first,
// then the bytes, copied straight into space the string has grown by once.

std::size_t openTagLength(const TagNode& node, std::size_t tabs) {
    return tabs + 1 + node.name.size() + node.attributes.size();
}

std::size_t closeTagLength(const TagNode& node) {
    return node.name.size() + 4;
}

std::size_t textLength(const TagNode& node, std::size_t tabs) {
    const std::size_t open = openTagLength(node, tabs);
    if (!node.value.empty())
        return open + 1 + node.value.size() + closeTagLength(node);
    if (node.children.empty())
        return open + 3;
    std::size_t length = open + 2 + tabs + closeTagLength(node);
    for (const std::tr1::shared_ptr<TagNode>& child : node.children)
        length += textLength(*child, tabs + 1);
    return length;
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
char* closeTag(char* p, const std::string& name) {
    p = put(p, "</", 2);
    p = put(p, name);
    return put(p, ">\n", 2);
}

char* writeText(char* p, const TagNode& node, std::size_t tabs) {
    p = openTag(p, tabs, node);
    if (!node.value.empty()) {
        // Text wins: children of an element with text are not written.
        *p++ = '>';
        return closeTag(put(p, node.value), node.name);
    }
    if (node.children.empty())
        return put(p, "/>\n", 3);
    // Children only: one per line, the closing tag under the opening tag.
    p = put(p, ">\n", 2);
    for (const std::tr1::shared_ptr<TagNode>& child : node.children)
        p = writeText(p, *child, tabs + 1);
    std::memset(p, '\t', tabs);
    return closeTag(p + tabs, node.name);
}

} // namespace

void TagNode::appendContentsTo(std::string& out, int depth) const {
    const std::size_t tabs = tabsFor(depth);
    const std::size_t at = out.size();
    out.resize(at + textLength(*this, tabs));
    writeText(&out[at], *this, tabs);
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
