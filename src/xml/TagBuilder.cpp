// Cursor-style tree builder with a running length estimate.
//
// Names come in as std::string or as C strings; both forms share one
// implementation, templated on the name type, so that literal names never
// make a temporary string.

#include "zuvolib/xml/TagBuilder.h"

#include "xml/NodePool.h"

#include <cstring>
#include <exception>
#include <utility>

namespace velmora {
namespace zuvolib {
namespace {

// A name to look for, with its length taken once.
struct Wanted {
    explicit Wanted(const std::string& s) : text(s.data()), size(s.size()) {}
    explicit Wanted(const char* s) : text(s), size(std::strlen(s)) {}
    bool matches(const std::string& name) const {
        return name.size() == size && std::memcmp(name.data(), text, size) == 0;
    }
    const char* text;
    std::size_t size;
};

// Shared bodies of the std::string and C string overloads.
// `parent` is taken by value: it may be `b.current`, which is replaced here.
template <typename Name>
void addToImpl(TagBuilder& b, std::tr1::shared_ptr<TagNode> parent, const Name& name) {
    // The new node shares a storage block with the one added before it.
    b.current = detail::makeNode(name, b.current);
    zuvolib::addChild(parent, b.current);
    // The indentation is approximated by `depth`, which may be negative.
    b.bufSize += 1 + static_cast<unsigned int>(b.depth);
    b.incBufSizeByTagLen(b.current->name);
}

std::tr1::shared_ptr<TagNode> findByParentImpl(TagBuilder& b, const Wanted& parentName) {
    if (!b.current)
        throw std::exception();
    if (parentName.matches(b.current->name))
        return b.current;
    // Each step up takes the parent from its weak link; past the root the
    // link is empty and this throws bad_weak_ptr.
    std::tr1::shared_ptr<TagNode> node = b.current;
    do {
        node = std::tr1::shared_ptr<TagNode>(node->parent);
        --b.depth;
    } while (!parentName.matches(node->name));
    return node;
}

template <typename Name> void addSiblingImpl(TagBuilder& b, const Name& name) {
    // Throws std::tr1::bad_weak_ptr at the root, before anything changes.
    const std::tr1::shared_ptr<TagNode> parent(b.current->parent);
    addToImpl(b, parent, name);
}

} // namespace

TagBuilder::TagBuilder(const std::string& rootName)
    : bufSize(1), root(detail::makeNode(rootName, std::tr1::shared_ptr<TagNode>())), current(root),
      depth(0) {
    incBufSizeByTagLen(rootName);
}

void TagBuilder::incBufSizeByTagLen(const std::string& tagName) {
    // "<" ">" "</" ">" and the line feed, plus the name twice.
    bufSize += 6 + 2 * static_cast<unsigned int>(tagName.size());
}

void TagBuilder::addTo(std::tr1::shared_ptr<TagNode> parent, const std::string& name) {
    addToImpl(*this, parent, name);
}

void TagBuilder::addTo(std::tr1::shared_ptr<TagNode> parent, const char* name) {
    addToImpl(*this, parent, name);
}

void TagBuilder::addChild(const std::string& name) {
    ++depth;
    addToImpl(*this, current, name);
}

void TagBuilder::addChild(const char* name) {
    ++depth;
    addToImpl(*this, current, name);
}

void TagBuilder::addSibling(const std::string& name) {
    addSiblingImpl(*this, name);
}

void TagBuilder::addSibling(const char* name) {
    addSiblingImpl(*this, name);
}

void TagBuilder::addToParent(const std::string& parentName, const std::string& name) {
    addToImpl(*this, findByParentImpl(*this, Wanted(parentName)), name);
}

void TagBuilder::addToParent(const char* parentName, const char* name) {
    addToImpl(*this, findByParentImpl(*this, Wanted(parentName)), name);
}

std::tr1::shared_ptr<TagNode> TagBuilder::findByParent(const std::string& parentName) {
    return findByParentImpl(*this, Wanted(parentName));
}

std::tr1::shared_ptr<TagNode> TagBuilder::findByParent(const char* parentName) {
    return findByParentImpl(*this, Wanted(parentName));
}

void TagBuilder::addValue(const std::string& text) {
    current->value = text;
    bufSize += static_cast<unsigned int>(text.size());
}

void TagBuilder::addValue(std::string&& text) {
    bufSize += static_cast<unsigned int>(text.size());
    current->value = std::move(text);
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

void TagBuilder::appendContentsTo(std::string& out) const {
    root->toString(out);
}

} // namespace zuvolib
} // namespace velmora
