// One element of a request document tree, and its exact text form.
#ifndef ZUVOLIB_XML_TAGNODE_H
#define ZUVOLIB_XML_TAGNODE_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/export.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// An element: name, optional text, pre-rendered attributes, a weak link to
/// its parent and owning links to its children. Nodes are created by
/// `TagBuilder`; a tree is freed when the last outside reference to its root
/// goes.
///
/// Text form: one element per line, indented by one tab per level, ended by
/// a line feed. An element without text and children is written self-closing;
/// an element with text is written on one line and its children are not
/// written at all. Nothing is escaped: names, values and attribute values are
/// written byte for byte, so callers hand in text that is safe in its place.
class ZUVO_API TagNode {
public:
    explicit TagNode(const std::string& name);
    explicit TagNode(const char* name);

    /// Appends ` name="value"` to `attributes`. Nothing is merged: adding a
    /// name twice writes it twice.
    void addAttribute(const std::string& name, const std::string& value);

    /// `depth` tab characters.
    std::string indent(int depth) const;

    /// Appends this element and its subtree to `out` at nesting level `depth`.
    void appendContentsTo(std::string& out, int depth) const;

    /// Appends every child, in order, at level `depth + 1`.
    void writeChildrenTo(std::string& out, int depth) const;

    /// Appends the subtree at level 0 to `out` (does not clear it).
    void toString(std::string& out) const;

    /// The subtree at level 0 as a new string.
    std::string toString() const;

    const std::string name;             ///< element name with its prefix, e.g. "zuvo:header"
    std::string value;                  ///< text content; empty means none
    std::string attributes;             ///< rendered attributes, each with one leading space
    std::tr1::weak_ptr<TagNode> parent; ///< empty for a root
    std::vector<std::tr1::shared_ptr<TagNode>> children; ///< in the order added
};

/// Appends `child` to `parent`'s children, then points `child` back at
/// `parent` (replacing any earlier link).
ZUVO_API void addChild(const std::tr1::shared_ptr<TagNode>& parent,
                       const std::tr1::shared_ptr<TagNode>& child);

} // namespace zuvolib
} // namespace velmora

#endif
