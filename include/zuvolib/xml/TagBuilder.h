// Cursor-style writer of request documents.
#ifndef ZUVOLIB_XML_TAGBUILDER_H
#define ZUVOLIB_XML_TAGBUILDER_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/export.h"
#include "zuvolib/xml/TagNode.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// Builds one element tree. It owns the root, remembers the element added
/// last (`current`), and places each new element relative to it; values and
/// attributes always go to `current`. It also keeps a running estimate of the
/// text length so that `toXml` writes into one allocation.
///
/// Every operation that takes a name also takes a C string, which spares a
/// temporary string when the name is a literal.
///
/// Placement errors throw `std::tr1::bad_weak_ptr` (a walk past the root);
/// nothing is caught inside.
class ZUVO_API TagBuilder {
public:
    /// Starts a tree whose root element is `rootName`.
    explicit TagBuilder(const std::string& rootName);

    /// Adds the length of an element's opening and closing tags to the estimate.
    void incBufSizeByTagLen(const std::string& tagName);

    /// Adds a new element `name` as the last child of `parent` and makes it current.
    void addTo(std::tr1::shared_ptr<TagNode> parent, const std::string& name);
    void addTo(std::tr1::shared_ptr<TagNode> parent, const char* name);

    /// New element as the last child of `current`.
    void addChild(const std::string& name);
    void addChild(const char* name);

    /// New element as the last child of `current`'s parent. Throws
    /// `std::tr1::bad_weak_ptr` when `current` is the root; nothing is added.
    void addSibling(const std::string& name);
    void addSibling(const char* name);

    /// New element as the last child of the nearest element named
    /// `parentName` on the path from `current` (included) up to the root.
    /// Throws `std::tr1::bad_weak_ptr` when there is none; nothing is added.
    void addToParent(const std::string& parentName, const std::string& name);
    void addToParent(const char* parentName, const char* name);

    /// The nearest element named `parentName` on the path from `current`
    /// (included) up to the root; throws `std::tr1::bad_weak_ptr` when none.
    std::tr1::shared_ptr<TagNode> findByParent(const std::string& parentName);
    std::tr1::shared_ptr<TagNode> findByParent(const char* parentName);

    /// Sets `current`'s text, replacing an earlier one.
    void addValue(const std::string& text);
    void addValue(std::string&& text);

    /// Adds an attribute to `current`.
    void addAttribute(const std::string& name, const std::string& value);

    /// The whole tree as text (no XML declaration), in a string reserved once.
    std::string toXml() const;

    /// Appends the whole tree as text to `out`.
    void appendContentsTo(std::string& out) const;

    unsigned int bufSize;                  ///< estimate of the text length in bytes
    std::tr1::shared_ptr<TagNode> root;    ///< the document element
    std::tr1::shared_ptr<TagNode> current; ///< the element added last
    int depth;                             ///< nesting counter feeding the estimate
};

} // namespace zuvolib
} // namespace velmora

#endif
