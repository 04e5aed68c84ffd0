// Internal: hands a whole document of any length to expat.
#ifndef ZUVOLIB_SRC_PARSE_EXPATFEED_H
#define ZUVOLIB_SRC_PARSE_EXPATFEED_H

#include <expat.h>

#include <cstddef>

namespace velmora {
namespace zuvolib {

/// Parses `size` bytes at `data` as the whole, final input of `parser`.
/// `XML_Parse` takes an int length, so longer text goes in int-sized pieces,
/// the last one marked final. Returns the status of the last call made.
XML_Status feedWholeDocument(XML_Parser parser, const char* data, std::size_t size);

} // namespace zuvolib
} // namespace velmora

#endif
