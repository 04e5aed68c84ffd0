// Internal: hands a whole document of any length to expat, a bounded piece
// at a time.
#ifndef ZUVOLIB_SRC_PARSE_EXPATFEED_H
#define ZUVOLIB_SRC_PARSE_EXPATFEED_H

#include <expat.h>

#include <cstddef>

namespace velmora {
namespace zuvolib {

/// The length of the pieces a document is fed in. Expat copies every piece
/// into a buffer of its own, rounded up to a power of two, and keeps that
/// buffer with the handle; 120 KiB pieces (with the kilobyte of context expat
/// keeps and a token cut in two) fit a 128 KiB buffer, whatever the size of
/// the document. After each piece but the last expat counts the lines of the
/// text read so far, which costs about a fifth of its own parse of those
/// bytes: pieces this large leave the usual response whole.
const std::size_t FEED_PIECE = 120 * 1024;

/// Where the next piece of `data` (`size` bytes left) ends: at most `limit`
/// bytes in, at a point where cutting the text cannot change the character
/// data the handlers see once pieces are joined and trimmed (see
/// ExpatFeed.cpp). Returns `size` when all of it fits.
std::size_t pieceEnd(const char* data, std::size_t size, std::size_t limit);

/// Parses `size` bytes at `data` as the whole, final input of `parser`, in
/// pieces of about `piece` bytes, the last one marked final; the first piece
/// that fails ends the feed. Events, errors and positions are those of one
/// call with the whole text. Returns the status of the last call made.
XML_Status feedWholeDocument(XML_Parser parser, const char* data, std::size_t size,
                             std::size_t piece = FEED_PIECE);

} // namespace zuvolib
} // namespace velmora

#endif
