// The cipher key options (--key, --key-file) and key generation.
#ifndef ZUVO_TOOL_KEYS_H
#define ZUVO_TOOL_KEYS_H

#include <krel/KrelContext.h>
#include <zuvolib/Tr1Memory.h>

#include <string>
#include <vector>

namespace zuvocli {

typedef std::tr1::shared_ptr<krel::KrelContext> CipherContext;

/// Size of a key of the stand-in cipher, in bytes.
const std::size_t KEY_BYTES = 32;

/// The key written as 64 hex digits (either case). Throws UsageError saying
/// what is wrong: a bad digit and its position, or the wrong length.
std::vector<unsigned char> parseHexKey(const std::string& hex);

/// `bytes` as lower-case hex digits.
std::string toHex(const std::vector<unsigned char>& bytes);

/// The cipher context for the key options: from `keyHex` when it is not
/// empty, else from the hex in `keyFile` (surrounding white space ignored)
/// when that is not empty, else a context without a key (encryption off,
/// payloads in Base64). Throws UsageError for a bad key or unreadable file.
CipherContext makeCipherContext(const std::string& keyHex, const std::string& keyFile);

/// A context that encrypts with `key`.
CipherContext makeCipherContext(const std::vector<unsigned char>& key);

/// A fresh random key from the system's cryptographic generator. Throws
/// std::runtime_error when the generator fails.
std::vector<unsigned char> randomKey();

} // namespace zuvocli

#endif
