// Element tree node and its serialiser.

#include "zuvolib/xml/TagNode.h"

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

void TagNode::appendContentsTo(std::string& out, int depth) const {
    const std::size_t tabs = depth > 0 ? static_cast<std::size_t>(depth) : 0;
    out.append(tabs, '\t');
    out += '<';
    out += name;
    out += attributes;
    if (value.empty() && children.empty()) {
        out += "/>\n";
        return;
    }
    out += '>';
    if (value.empty()) {
        // Children only: one per line, the closing tag under the opening tag.
        out += '\n';
        writeChildrenTo(out, depth);
        out.append(tabs, '\t');
    } else {
        // Text wins: children of an element with text are not written.
        out += value;
    }
    out += "</";
    out += name;
    out += ">\n";
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
    parent->children.push_back(child);
    child->parent = parent;
}

} // namespace zuvolib
} // namespace velmora
