// Cursor-style tree builder with a running length estimate.

#include "zuvolib/xml/TagBuilder.h"

#include <exception>

namespace velmora {
namespace zuvolib {

TagBuilder::TagBuilder(const std::string& rootName)
    : bufSize(1), root(new TagNode(rootName)), current(root), depth(0) {
    incBufSizeByTagLen(rootName);
}

void TagBuilder::incBufSizeByTagLen(const std::string& tagName) {
    // "<" ">" "</" ">" and the line feed, plus the name twice.
    bufSize += 6 + 2 * static_cast<unsigned int>(tagName.size());
}

void TagBuilder::addTo(std::tr1::shared_ptr<TagNode> parent, const std::string& name) {
    current = std::tr1::shared_ptr<TagNode>(new TagNode(name));
    zuvolib::addChild(parent, current);
    // The indentation is approximated by `depth`, which may be negative.
    bufSize += 1 + static_cast<unsigned int>(depth);
    incBufSizeByTagLen(name);
}

void TagBuilder::addChild(const std::string& name) {
    ++depth;
    addTo(current, name);
}

void TagBuilder::addSibling(const std::string& name) {
    // Throws std::tr1::bad_weak_ptr at the root, before anything changes.
    std::tr1::shared_ptr<TagNode> parent(current->parent);
    addTo(parent, name);
}

void TagBuilder::addToParent(const std::string& parentName, const std::string& name) {
    addTo(findByParent(parentName), name);
}

std::tr1::shared_ptr<TagNode> TagBuilder::findByParent(const std::string& parentName) {
    std::tr1::shared_ptr<TagNode> node = current;
    for (;;) {
        if (!node)
            throw std::exception();
        if (node->name == parentName)
            return node;
        // Past the root the weak link is empty and this throws bad_weak_ptr.
        node = std::tr1::shared_ptr<TagNode>(node->parent);
        --depth;
    }
}

void TagBuilder::addValue(const std::string& text) {
    current->value = text;
    bufSize += static_cast<unsigned int>(text.size());
}

void TagBuilder::addAttribute(const std::string& name, const std::string& value) {
    current->addAttribute(name, value);
    bufSize += static_cast<unsigned int>(name.size() + value.size() + 4);
}

std::string TagBuilder::toXml() const {
    std::string out;
    out.reserve(bufSize);
    root->toString(out);
    return out;
}

void TagBuilder::appendContentsTo(std::string& out) const { root->toString(out); }

} // namespace zuvolib
} // namespace velmora
