// Feeding a whole document to expat in bounded pieces.
//
// Expat reports character data up to the end of each piece, so a cut inside
// text splits one piece of text into two. The handlers trim trailing tabs
// and line feeds from every piece and drop blank ones, so a cut is only
// harmless where the text before it ends in a visible character and the text
// after it starts with one. Two kinds of cut keep that:
// - before a '<' that follows a visible byte: outside CDATA sections a '<'
//   always starts markup, where text ends anyway; inside one, both sides are
//   visible;
// - between two ASCII letters or digits, for long runs without markup (a
//   large payload); inside a name or an attribute the cut only leaves expat a
//   partial token, which it completes from the next piece.
// Documents in UTF-16 (a zero byte or a byte order mark at the start) go in
// one piece, as their bytes are not characters.

#include "parse/ExpatFeed.h"

#include <climits>
#include <cstring>

namespace velmora {
namespace zuvolib {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isAlnum(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isUtf16(const char* data, std::size_t size) {
    if (size < 2)
        return false;
    const unsigned char first = static_cast<unsigned char>(data[0]);
    const unsigned char second = static_cast<unsigned char>(data[1]);
    return first == 0 || second == 0 || (first == 0xFE && second == 0xFF) ||
           (first == 0xFF && second == 0xFE);
}

// The last cut in (0, limit] of the first kind, then of the second; 0 when
// there is none.
std::size_t lastCut(const char* data, std::size_t limit) {
    for (std::size_t at = limit; at > 0; --at) {
        const void* found = memrchr(data + 1, '<', at);
        if (!found)
            break;
        at = static_cast<std::size_t>(static_cast<const char*>(found) - data);
        if (!isSpace(data[at - 1]))
            return at;
    }
    for (std::size_t at = limit; at > 0; --at) {
        if (isAlnum(data[at - 1]) && isAlnum(data[at]))
            return at;
    }
    return 0;
}

// The first cut after `limit`, of either kind; `size` when there is none.
std::size_t nextCut(const char* data, std::size_t size, std::size_t limit) {
    for (std::size_t at = limit + 1; at < size; ++at) {
        if ((data[at] == '<' && !isSpace(data[at - 1])) ||
            (isAlnum(data[at - 1]) && isAlnum(data[at])))
            return at;
    }
    return size;
}

} // namespace

std::size_t pieceEnd(const char* data, std::size_t size, std::size_t limit) {
    if (limit == 0)
        limit = 1;
    if (size <= limit)
        return size;
    const std::size_t cut = lastCut(data, limit);
    return cut ? cut : nextCut(data, size, limit);
}

XML_Status feedWholeDocument(XML_Parser parser, const char* data, std::size_t size,
                             std::size_t piece) {
    if (isUtf16(data, size))
        piece = INT_MAX;
    for (;;) {
        std::size_t length = pieceEnd(data, size, piece);
        // Expat takes an int length: beyond that, any cut will do.
        if (length > INT_MAX)
            length = INT_MAX;
        const bool last = length == size;
        const XML_Status status =
            XML_Parse(parser, data, static_cast<int>(length), last ? XML_TRUE : XML_FALSE);
        if (last || status != XML_STATUS_OK)
            return status;
        data += length;
        size -= length;
    }
}

} // namespace zuvolib
} // namespace velmora
