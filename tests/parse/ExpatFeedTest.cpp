// The feed of documents in bounded pieces, with small pieces standing in for
// the real ones (the program compiles the feed itself, as the library keeps
// it private).

#include "parse/ExpatFeed.h"

#include <gtest/gtest.h>

#include <climits>

#include <memory>
#include <string>

using namespace velmora::zuvolib;

namespace {

struct ParserFree {
    void operator()(XML_ParserStruct* p) const { XML_ParserFree(p); }
};

// What expat made of a document fed in pieces of about `maxPiece` bytes: the
// events, then the status, error and error offset. Text is trimmed piece by
// piece as the library's handler does (trailing tabs and line feeds go, blank
// pieces are dropped), so a cut in the wrong place shows.
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
        std::string piece(s, static_cast<std::size_t>(len));
        piece.erase(piece.find_last_not_of("\t\n") + 1);
        if (piece.find_first_not_of(" \t\n") != std::string::npos)
            *static_cast<std::string*>(out) += piece;
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
        // Text whose pieces the handler would trim or drop if cut inside:
        // tabs and spaces next to visible text, a '<' in a CDATA section,
        // a long run without markup.
        {"<a>x\t\ty  \n\t<b>  </b>q  </a>", "<a>x\t\ty  <b></b>q  </a> ok"},
        {"<a><![CDATA[p\t<\t<q\t\t]]>r</a>", "<a>p\t<\t<qr</a> ok"},
        {"<a t='v w'>abcdefgh ijklm\tnop</a>", "<a>abcdefgh ijklm\tnop</a> ok"},
        // Documents in UTF-16 go whole.
        {std::string("\xff\xfe<\0a\0>\0x\0\t\0y\0<\0/\0a\0>\0", 22), "<a>x\ty</a> ok"},
    };
    for (const auto& c : cases) {
        for (std::size_t piece = 1; piece <= c[0].size() + 1; ++piece) {
            const std::string expected = c[1].empty() ? feed(c[0], INT_MAX) : c[1];
            EXPECT_EQ(feed(c[0], piece), expected) << "'" << c[0] << "' in pieces of " << piece;
        }
    }
    EXPECT_EQ(feed("", INT_MAX).rfind(" no element found at ", 0), 0u);
}

} // namespace
