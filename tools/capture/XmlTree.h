// A small element tree read with expat, for the scripted server to inspect
// request documents and their payloads. Names keep their prefixes.
#ifndef ZUVO_TOOL_XMLTREE_H
#define ZUVO_TOOL_XMLTREE_H

#include <map>
#include <string>
#include <vector>

namespace zuvocli {

/// One element: name as written, attributes, the text directly inside it
/// (pieces joined, surrounding white space removed) and its children.
struct XmlElement {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::string text;
    /// The same text exactly as the document writes it: references such as
    /// "&amp;" left as they stand, white space kept.
    std::string raw;
    std::vector<XmlElement> children;

    /// The first child named `childName`, or null.
    const XmlElement* find(const std::string& childName) const;
    /// The first child named `childName`; std::runtime_error when missing.
    const XmlElement& child(const std::string& childName) const;
    /// Every child named `childName`, in document order.
    std::vector<const XmlElement*> all(const std::string& childName) const;
    /// The attribute `attribute`, or the empty string.
    std::string attribute(const std::string& attribute) const;
};

/// The document element of `document`. Throws std::runtime_error with
/// expat's message and the line for text that is not well-formed XML.
XmlElement readXml(const std::string& document);

} // namespace zuvocli

#endif
