#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using namespace velmora::zuvolib;

namespace {

TEST(TagBuilder, ValuesAndAttributesFollowCurrent) {
    TagBuilder b("a");
    b.addValue("first");
    b.addValue("second");
    b.addChild("b");
    b.addAttribute("k", "v");
    EXPECT_EQ(b.root->value, "second");
    EXPECT_EQ(b.root->attributes, "");
    EXPECT_EQ(b.current->attributes, " k=\"v\"");
    // Both values were counted; the estimate only sizes a reservation.
    EXPECT_EQ(b.bufSize, 9u + 11u + (1 + 1 + 6 + 2) + 6u);
    // The root's value hides the child.
    std::string appended = "x";
    b.appendContentsTo(appended);
    EXPECT_EQ(appended, "x<a>second</a>\n");
}

// Nodes share storage blocks; each must still live exactly as long as its
// own references, whichever builder or tree they came from.
TEST(TagBuilder, NodesOutliveTheBuilderOneByOne) {
    std::tr1::shared_ptr<TagNode> kept;
    std::tr1::weak_ptr<TagNode> dropped;
    std::tr1::shared_ptr<TagNode> root;
    {
        TagBuilder b("list");
        for (int i = 0; i < 40; ++i) {
            b.addTo(b.root, "item-with-a-long-name");
            b.addValue(std::string(20, static_cast<char>('a' + i % 26)));
        }
        kept = b.root->children[17];
        dropped = b.root->children[18];
        root = b.root;
        b.current = TagBuilder("other").root; // a node from another builder as the neighbour
        b.addChild("tail");
        EXPECT_EQ(b.current->name, "tail");
    }
    root.reset();
    EXPECT_TRUE(dropped.expired());
    EXPECT_TRUE(kept->parent.expired());
    EXPECT_EQ(kept->toString(),
              "<item-with-a-long-name>rrrrrrrrrrrrrrrrrrrr</item-with-a-long-name>\n");
}

// Subtrees whose nodes share storage blocks, released on several threads at once.
TEST(TagBuilder, SubtreesReleasedOnOtherThreads) {
    for (int round = 0; round < 20; ++round) {
        std::vector<std::tr1::shared_ptr<TagNode>> lists;
        {
            TagBuilder b("root");
            for (int list = 0; list < 4; ++list) {
                b.addTo(b.root, "list");
                for (int i = 0; i < 9; ++i)
                    b.addToParent("list", "item");
                lists.push_back(b.findByParent("list"));
            }
        }
        std::vector<std::thread> threads;
        for (std::tr1::shared_ptr<TagNode>& list : lists)
            threads.emplace_back([kept = std::move(list)]() mutable {
                EXPECT_EQ(kept->children.size(), 9u);
                kept.reset();
            });
        for (std::thread& t : threads)
            t.join();
    }
}

// One script of placements, errors included, with names made by `name`:
// the tree text, the estimate, the depth and what was found.
template <typename MakeName> std::string placeAll(MakeName name) {
    TagBuilder b("r");
    // Failed placements change nothing but the depth of the walk; the root
    // has no siblings.
    EXPECT_THROW(b.addSibling(name("f")), std::tr1::bad_weak_ptr);
    b.addChild(name("a"));
    b.addSibling(name("b"));
    b.addTo(b.root, name("c"));
    b.addChild(name("d"));
    b.addToParent(name("c"), name("e"));
    b.addToParent(name("e"), name("g")); // the search starts at current itself
    const std::string found = b.findByParent(name("r"))->name;
    EXPECT_THROW(b.addToParent(name("none"), name("f")), std::tr1::bad_weak_ptr);
    // Only the path up from current is searched.
    EXPECT_THROW(b.findByParent(name("a")), std::tr1::bad_weak_ptr);
    TagBuilder cleared("x");
    cleared.current.reset();
    EXPECT_THROW(cleared.findByParent(name("x")), std::exception);
    return b.toXml() + std::to_string(b.bufSize) + " " + std::to_string(b.depth) + " " + found;
}

TEST(TagBuilder, StringAndCStringNamesPlaceAlike) {
    const std::string viaCString = placeAll([](const char* s) { return s; });
    EXPECT_EQ(viaCString, "<r>\n\t<a/>\n\t<b/>\n\t<c>\n\t\t<d/>\n\t\t<e>\n\t\t\t<g/>\n"
                          "\t\t</e>\n\t</c>\n</r>\n70 -8 r");
    EXPECT_EQ(placeAll([](const char* s) { return std::string(s); }), viaCString);
}

} // namespace
