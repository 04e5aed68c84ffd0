#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

using velmora::zuvolib::escapeXmlText;

namespace {

TEST(XmlEscape, WritesTheFourSpecialCharactersAsEntities) {
    const struct {
        const char* in;
        const char* out;
    } cases[] = {
        {"", ""},
        {"plain text", "plain text"},
        {"a&b", "a&amp;b"},
        {"<tag attr=\"v\">", "&lt;tag attr=&quot;v&quot;&gt;"},
        {"&&", "&amp;&amp;"},
        {"&amp;", "&amp;amp;"}, // already-escaped text is escaped again
        {"'single' \xc3\xa9", "'single' \xc3\xa9"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(escapeXmlText(c.in), c.out) << c.in;
    EXPECT_EQ(escapeXmlText(std::string("a\0<", 3)), std::string("a\0&lt;", 6));
}

} // namespace
