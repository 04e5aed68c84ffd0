// The expat parser handle that response parsers run on.
#ifndef ZUVOLIB_PARSE_EXPAT_H
#define ZUVOLIB_PARSE_EXPAT_H

#include "zuvolib/export.h"

#include <expat.h>

namespace velmora {
namespace zuvolib {

/// Holder of one expat parser handle. The response parsers keep a reference
/// to it and reach the handle through it on every call, so the holder must
/// outlive them. Whoever fills `parser` owns the handle: create it with
/// `XML_ParserCreate(NULL)` and free it with `XML_ParserFree`, or let an
/// `ExpatParser` do both. One handle serves one parse at a time; the parsers
/// reset it before each document.
struct Expat {
    XML_Parser parser;
};

/// Owns an `Expat` holder with a live handle for the lifetime of the object.
///
/// \code
///   ExpatParser expat;
///   PreregSubParser parser(expat, record);
/// \endcode
class ZUVO_API ExpatParser {
public:
    /// Creates the handle with `XML_ParserCreate(NULL)`; throws
    /// `std::bad_alloc` when expat cannot make one.
    ExpatParser();
    /// Frees the handle.
    ~ExpatParser();
    ExpatParser(const ExpatParser&) = delete;
    ExpatParser& operator=(const ExpatParser&) = delete;

    /// The holder, to hand to a response parser.
    Expat& get() { return expat; }
    operator Expat&() { return expat; }

private:
    Expat expat;
};

} // namespace zuvolib
} // namespace velmora

#endif
