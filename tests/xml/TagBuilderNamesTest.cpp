#include <zuvolib/zuvolib.h>

#include <gtest/gtest.h>

#include <string>

using namespace velmora::zuvolib;

namespace {

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
    const std::string found = b.findByParent(name("r"))->name;
    EXPECT_THROW(b.addToParent(name("none"), name("f")), std::tr1::bad_weak_ptr);
    TagBuilder cleared("x");
    cleared.current.reset();
    EXPECT_THROW(cleared.findByParent(name("x")), std::exception);
    return b.toXml() + std::to_string(b.bufSize) + " " + std::to_string(b.depth) + " " + found;
}

TEST(TagBuilder, StringAndCStringNamesPlaceAlike) {
    const std::string viaCString = placeAll([](const char* s) { return s; });
    EXPECT_EQ(viaCString, "<r>\n\t<a/>\n\t<b/>\n\t<c>\n\t\t<d/>\n\t\t<e/>\n\t</c>\n</r>\n60 -3 r");
    EXPECT_EQ(placeAll([](const char* s) { return std::string(s); }), viaCString);
}

} // namespace
