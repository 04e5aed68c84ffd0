// The feed of long documents, with small pieces standing in for int-sized
// ones (the program compiles the feed itself, as the library keeps it
// private).

#include "parse/ExpatFeed.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace velmora::zuvolib;

namespace {

struct ParserFree {
    void operator()(XML_ParserStruct* p) const { XML_ParserFree(p); }
};

// What expat made of a document fed in pieces of `maxPiece` bytes: the
// events, then the status, error and error offset.
std::string feed(const std::string& document, std::size_t maxPiece) {
    const std::unique_ptr<XML_ParserStruct, ParserFree> parser(XML_ParserCreate(NULL));
    std::string events;
    XML_SetUserData(parser.get(), &events);
    XML_SetElementHandler(
        parser.get(),
        [](void* out, const char* name, const char**) {
            *static_cast<std::string*>(out) += std::string("<") + name + ">";
        },
        [](void* out, const char* name) {
            *static_cast<std::string*>(out) += std::string("</") + name + ">";
        });
    XML_SetCharacterDataHandler(parser.get(), [](void* out, const char* s, int len) {
        static_cast<std::string*>(out)->append(s, static_cast<std::size_t>(len));
    });
    const XML_Status status =
        feedWholeDocument(parser.get(), document.data(), document.size(), maxPiece);
    if (status == XML_STATUS_OK)
        return events + " ok";
    return events + " " + XML_ErrorString(XML_GetErrorCode(parser.get())) + " at " +
           std::to_string(XML_GetCurrentByteIndex(parser.get()));
}

TEST(ExpatFeed, PiecesReadLikeTheWholeDocument) {
    const std::string cases[][2] = {
        {"<a><b>text</b><c/></a>", "<a><b>text</b><c></c></a> ok"},
        // The last piece is the final one: a document cut short is no document.
        {"<a><b>text</b>", "<a><b>text</b> no element found at 14"},
        // Where an empty document stops is expat's to say (releases differ): it
        // only has to be the same in pieces as in one.
        {"", ""},
        // A piece that fails ends the feed: nothing after it is read.
        {"<a></x><b/></a>", "<a> mismatched tag at 5"},
        {"<a/><b/>", "<a></a> junk after document element at 4"},
    };
    for (const auto& c : cases) {
        for (const std::size_t piece : {std::size_t(1), std::size_t(2), std::size_t(3),
                                        std::size_t(7), c[0].size(), std::size_t(INT_MAX)}) {
            if (piece == 0)
                continue;
            const std::string expected = c[1].empty() ? feed(c[0], INT_MAX) : c[1];
            EXPECT_EQ(feed(c[0], piece), expected) << "'" << c[0] << "' in pieces of " << piece;
        }
    }
    EXPECT_EQ(feed("", INT_MAX).rfind(" no element found at ", 0), 0u);
}

} // namespace
