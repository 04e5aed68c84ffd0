#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <string>

using namespace velmora::zuvolib;

namespace {

typedef std::tr1::shared_ptr<TagNode> Node;

Node node(const std::string& name, const std::string& value = "") {
    Node n(new TagNode(name));
    n->value = value;
    return n;
}

TEST(TagNode, WritesOneElementPerLineWithTabIndentation) {
    Node a = node("a"), b = node("b", "v"), c = node("c"), d = node("d"), e = node("e", "w");
    a->addAttribute("x", "1"); // attributes keep call order and duplicates
    a->addAttribute("b", "2");
    a->addAttribute("x", "3");
    addChild(a, b);
    addChild(b, node("child", "hidden")); // a value hides the children
    addChild(a, c);
    addChild(a, d);
    addChild(d, e);
    EXPECT_EQ(a->toString(), "<a x=\"1\" b=\"2\" x=\"3\">\n"
                             "\t<b>v</b>\n"
                             "\t<c/>\n"
                             "\t<d>\n"
                             "\t\t<e>w</e>\n"
                             "\t</d>\n"
                             "</a>\n");
    EXPECT_EQ(e->parent.lock(), d);
    // The parent link does not keep the parent alive.
    a.reset();
    d.reset();
    EXPECT_TRUE(e->parent.expired());
}

TEST(TagNode, TextRules) {
    const struct {
        const char* name;
        const char* value;
        const char* attrValue; // null: no attribute
        const char* expected;
    } cases[] = {
        {"r", "", nullptr, "<r/>\n"},
        {"r", "", "", "<r k=\"\"/>\n"},
        {"r", "a<b&c>", nullptr, "<r>a<b&c></r>\n"},        // no escaping of text
        {"r", "", "say \"hi\"", "<r k=\"say \"hi\"\"/>\n"}, // nor of attributes
        {"r", "\xc3\xa9\x01", nullptr, "<r>\xc3\xa9\x01</r>\n"},
    };
    for (const auto& c : cases) {
        Node n = node(c.name, c.value);
        if (c.attrValue)
            n->addAttribute("k", c.attrValue);
        EXPECT_EQ(n->toString(), c.expected);
    }
}

TEST(TagNode, AppendsAndIndents) {
    Node n = node("r");
    std::string out = "prefix|";
    n->toString(out);
    n->toString(out);
    EXPECT_EQ(out, "prefix|<r/>\n<r/>\n");
    EXPECT_EQ(n->indent(3), "\t\t\t");
    std::string nested;
    n->appendContentsTo(nested, 2);
    EXPECT_EQ(nested, "\t\t<r/>\n");
}

} // namespace
