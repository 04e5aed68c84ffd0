// The cipher key options (--key, --key-file) and key generation.
#include "common/Keys.h"

#include "common/Errors.h"
#include "common/Io.h"

#include <openssl/rand.h>

#include <stdexcept>

namespace zuvocli {
namespace {

int hexDigitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

std::vector<unsigned char> parseHexKey(const std::string& hex) {
    for (std::string::size_type i = 0; i < hex.size(); ++i) {
        if (hexDigitValue(hex[i]) < 0)
            throw UsageError("invalid hex key: character " + std::to_string(i + 1) +
                             " is not a hex digit");
    }
    if (hex.size() != 2 * KEY_BYTES)
        throw UsageError("invalid hex key: expected " + std::to_string(2 * KEY_BYTES) +
                         " hex digits, got " + std::to_string(hex.size()));
    std::vector<unsigned char> key(KEY_BYTES);
    for (std::size_t i = 0; i < KEY_BYTES; ++i)
        key[i] = static_cast<unsigned char>(hexDigitValue(hex[2 * i]) * 16 +
                                            hexDigitValue(hex[2 * i + 1]));
    return key;
}

std::string toHex(const std::vector<unsigned char>& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(2 * bytes.size());
    for (unsigned char b : bytes) {
        hex += digits[b >> 4];
        hex += digits[b & 0x0f];
    }
    return hex;
}

CipherContext makeCipherContext(const std::string& keyHex, const std::string& keyFile) {
    if (!keyHex.empty())
        return makeCipherContext(parseHexKey(keyHex));
    if (!keyFile.empty()) {
        const std::string text = trim(readInput(keyFile));
        try {
            return makeCipherContext(parseHexKey(text));
        } catch (const UsageError& e) {
            throw UsageError(std::string(e.what()) + " (in key file '" + keyFile + "')");
        }
    }
    return CipherContext(new krel::KrelContext());
}

CipherContext makeCipherContext(const std::vector<unsigned char>& key) {
    return CipherContext(new krel::KrelContext(key));
}

std::vector<unsigned char> randomKey() {
    std::vector<unsigned char> key(KEY_BYTES);
    if (RAND_bytes(key.data(), static_cast<int>(key.size())) != 1)
        throw std::runtime_error("the random generator failed");
    return key;
}

} // namespace zuvocli
