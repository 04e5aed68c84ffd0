// Payload text -> plain fragment -> lookups.

#include "zuvolib/parse/PayloadDecryptor.h"

#include "parse/PayloadOpenFailure.h"

#include "zuvolib/ZuvoExceptionNoCipherContext.h"

#include <QRXClient/Base64.h>

#include <new>

namespace velmora {
namespace zuvolib {

PayloadDecryptor::PayloadDecryptor(const std::tr1::shared_ptr<krel::KrelContext>& cipherContext,
                                   const std::string& payload, bool encrypted) {
    const std::vector<unsigned char> bytes(payload.begin(), payload.end());
    if (encrypted && !cipherContext)
        throw ZuvoExceptionNoCipherContext();
    // An encrypted payload goes to the cipher context as it stands: any
    // text encoding of the sealed bytes is the context's business.
    std::vector<unsigned char> plain;
    try {
        plain =
            encrypted ? cipherContext->decrypt(bytes) : Velmora::QRXClient::Base64::decode(bytes);
    } catch (const std::bad_alloc&) {
        throw; // out of memory says nothing about the payload
    } catch (...) {
        // A parse around this records the refusal; the caller still gets
        // the exception as it was thrown.
        notePayloadOpenFailure();
        throw;
    }
    parse(std::string(plain.begin(), plain.end()));
}

std::vector<unsigned char> PayloadDecryptor::getValueUcVector(const std::string& name) const {
    const std::string text = getValue(name);
    return std::vector<unsigned char>(text.begin(), text.end());
}

} // namespace zuvolib
} // namespace velmora
