// Stand-in for the device's cipher context.
//
// A device build links its own platform library in place of this one; the
// interface below is the one the device library exports. This stand-in uses
// AES-256-GCM from OpenSSL's libcrypto, so payloads are really encrypted and
// authenticated while the rest of the system is developed and tested.
#ifndef KREL_KRELCONTEXT_H
#define KREL_KRELCONTEXT_H

#include <vector>

#define KREL_API __attribute__((visibility("default")))

namespace krel {

class KREL_API KrelContext {
public:
    /// A context without a key: `encryptionEnabled` is 0, so request payloads
    /// are Base64 only; `encrypt` and `decrypt` are the identity cipher over
    /// Base64 (Base64 text of the plain bytes, and back).
    KrelContext();

    /// A context that encrypts with `key`, which must hold exactly 32 bytes
    /// (otherwise `std::invalid_argument`). Sets `encryptionEnabled` to 1.
    explicit KrelContext(const std::vector<unsigned char>& key);

    virtual ~KrelContext();

    /// Encrypts `plain` with a fresh random 12-byte nonce. The result is the
    /// ASCII text of standard Base64 over nonce || ciphertext || 16-byte tag,
    /// safe to place inside an XML element (without a key: the Base64 text of
    /// `plain`). Throws `std::runtime_error` when libcrypto fails.
    virtual std::vector<unsigned char> encrypt(const std::vector<unsigned char>& plain);

    /// Inverse of `encrypt`; ASCII white space around the text is ignored.
    /// Throws `std::runtime_error` saying why for text that is not Base64, is
    /// too short to hold nonce and tag, or fails authentication (wrong key or
    /// tampered text); without a key only for text that is not Base64.
    virtual std::vector<unsigned char> decrypt(const std::vector<unsigned char>& cipher);

    /// Non-zero: request payloads are encrypted; zero: they are Base64 only.
    int encryptionEnabled;

private:
    std::vector<unsigned char> key_;
};

} // namespace krel

#endif
