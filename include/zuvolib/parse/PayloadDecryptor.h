// Decoding of a response payload into readable values.
#ifndef ZUVOLIB_PARSE_PAYLOADDECRYPTOR_H
#define ZUVOLIB_PARSE_PAYLOADDECRYPTOR_H

#include "zuvolib/Tr1Memory.h"
#include "zuvolib/export.h"
#include "zuvolib/parse/SimpleParser.h"

#include <krel/KrelContext.h>

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// The text of a payload element turned back into its fragment and read
/// with `SimpleParser`. Names are looked up as written in the fragment,
/// prefix included: ask for "zuvo:servertime", not "servertime". A missing
/// element is no error: lookups give empty results.
class ZUVO_API PayloadDecryptor : public SimpleParser {
public:
    /// Decodes and reads `payload`. When `encrypted`, its bytes go as they
    /// stand to `cipherContext->decrypt`; otherwise they are Base64-decoded.
    ///
    /// Throws:
    /// - `ZuvoExceptionNoCipherContext` when `encrypted` and `cipherContext`
    ///   is empty, before anything is decoded;
    /// - whatever `decrypt` throws (the stand-in: `std::runtime_error` for a
    ///   wrong key or tampered or truncated text);
    /// - `std::invalid_argument` from the Base64 decoder for text that is not
    ///   Base64;
    /// - `std::runtime_error` with expat's error text when the plain fragment
    ///   is not well formed.
    PayloadDecryptor(const std::tr1::shared_ptr<krel::KrelContext>& cipherContext,
                     const std::string& payload, bool encrypted);

    /// The text of element `name`, or "".
    std::string getValueString(const std::string& name) const { return getValue(name); }

    /// Attribute `attr` of element `name`, or "".
    std::string getAttr(const std::string& name, const std::string& attr) const {
        return SimpleParser::getAttr(name, attr);
    }

    /// The text of element `name` as bytes, one per character, not decoded.
    std::vector<unsigned char> getValueUcVector(const std::string& name) const;
};

} // namespace zuvolib
} // namespace velmora

#endif
