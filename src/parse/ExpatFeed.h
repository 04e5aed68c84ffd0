// Internal: hands a whole document of any length to expat.
#ifndef ZUVOLIB_SRC_PARSE_EXPATFEED_H
#define ZUVOLIB_SRC_PARSE_EXPATFEED_H

#include <expat.h>

#include <climits>
#include <cstddef>

namespace velmora {
namespace zuvolib {

/// Parses `size` bytes at `data` as the whole, final input of `parser`.
/// `XML_Parse` takes an int length, so longer text goes in pieces of at most
/// `maxPiece` bytes (the most an int holds), the last one marked final; the
/// first piece that fails ends the feed. Returns the status of the last call
/// made.
XML_Status feedWholeDocument(XML_Parser parser, const char* data, std::size_t size,
                             std::size_t maxPiece = INT_MAX);

} // namespace zuvolib
} // namespace velmora

#endif
