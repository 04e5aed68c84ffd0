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
}

TEST(TagNode, TextRules) {
    // Value, attribute value (null: no attribute) and the text written.
    const char* const cases[][3] = {
        {"", nullptr, "<r/>\n"},
        {"", "", "<r k=\"\"/>\n"},
        {"a<b&c>", nullptr, "<r>a<b&c></r>\n"},        // no escaping of text
        {"", "say \"hi\"", "<r k=\"say \"hi\"\"/>\n"}, // nor of attributes
        {"\xc3\xa9\x01", nullptr, "<r>\xc3\xa9\x01</r>\n"},
    };
    for (const auto& c : cases) {
        Node n = node("r", c[0]);
        if (c[1])
            n->addAttribute("k", c[1]);
        EXPECT_EQ(n->toString(), c[2]);
    }
}

TEST(TagNode, AppendsAndIndents) {
    Node n = node("r");
    std::string out = "prefix|";
    n->toString(out);
    n->appendContentsTo(out, 2);
    EXPECT_EQ(out, "prefix|<r/>\n\t\t<r/>\n");
    EXPECT_EQ(n->indent(3), "\t\t\t");
}

} // namespace
