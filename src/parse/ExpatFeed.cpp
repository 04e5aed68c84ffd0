// Feeding a whole document to expat.

#include "parse/ExpatFeed.h"

namespace velmora {
namespace zuvolib {

XML_Status feedWholeDocument(XML_Parser parser, const char* data, std::size_t size,
                             std::size_t maxPiece) {
    for (; size > maxPiece; data += maxPiece, size -= maxPiece) {
        const XML_Status status = XML_Parse(parser, data, static_cast<int>(maxPiece), XML_FALSE);
        if (status != XML_STATUS_OK)
            return status;
    }
    return XML_Parse(parser, data, static_cast<int>(size), XML_TRUE);
}

} // namespace zuvolib
} // namespace velmora
