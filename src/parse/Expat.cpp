// Owning holder of an expat parser handle.

#include "zuvolib/parse/Expat.h"

#include <new>

namespace velmora {
namespace zuvolib {

ExpatParser::ExpatParser() : expat{XML_ParserCreate(NULL)} {
    if (!expat.parser)
        throw std::bad_alloc();
}

ExpatParser::~ExpatParser() {
    XML_ParserFree(expat.parser);
}

} // namespace zuvolib
} // namespace velmora
