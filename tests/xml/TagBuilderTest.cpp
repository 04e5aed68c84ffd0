#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace velmora::zuvolib;

namespace {

TEST(TagBuilder, AddToParentSearchesUpFromCurrent) {
    // The search starts at current itself: the nearest match wins.
    TagBuilder x("x");
    x.addChild("x");
    x.addToParent("x", "d");
    EXPECT_EQ(x.toXml(), "<x>\n\t<x>\n\t\t<d/>\n\t</x>\n</x>\n");

    // Nodes off the path up from current are never found.
    TagBuilder u("a");
    u.addChild("b");
    u.addChild("c");
    u.addToParent("a", "e");
    EXPECT_EQ(u.depth, 0);
    EXPECT_THROW(u.findByParent("c"), std::tr1::bad_weak_ptr);
}

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
    EXPECT_EQ(root->children.size(), 40u);
    root.reset();
    EXPECT_TRUE(dropped.expired());
    ASSERT_TRUE(kept);
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

} // namespace
