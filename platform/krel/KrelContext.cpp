// AES-256-GCM stand-in for the device cipher context.
//
// Wire form of one sealed message: Base64( nonce[12] || ciphertext || tag[16] ).

#include "krel/KrelContext.h"

#include "QRXClient/Base64.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

namespace krel {
namespace {

const std::size_t kKeySize = 32;
const std::size_t kNonceSize = 12;
const std::size_t kTagSize = 16;

struct CipherCtxDeleter {
    void operator()(EVP_CIPHER_CTX* ctx) const { EVP_CIPHER_CTX_free(ctx); }
};
typedef std::unique_ptr<EVP_CIPHER_CTX, CipherCtxDeleter> CipherCtxPtr;

CipherCtxPtr newCipherCtx() {
    CipherCtxPtr ctx(EVP_CIPHER_CTX_new());
    if (!ctx)
        throw std::runtime_error("KrelContext: cannot allocate a cipher context");
    return ctx;
}

// The cipher, fetched from the default provider once: naming it with
// EVP_aes_256_gcm() makes every init fetch it again, which costs more than
// opening a short payload. The fetched cipher lives as long as the process.
const EVP_CIPHER* aes256Gcm() {
    static const EVP_CIPHER* const cipher = [] {
        const EVP_CIPHER* fetched = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
        return fetched ? fetched : EVP_aes_256_gcm();
    }();
    return cipher;
}

void check(int ok, const char* what) {
    if (ok != 1)
        throw std::runtime_error(std::string("KrelContext: libcrypto failed in ") + what);
}

// Keying a cipher context (the key schedule, the hash key of GCM) costs more
// than sealing or opening a short payload. Each thread keeps one context with
// the key and direction it was last set up for, and when those are the same
// gives it only the new nonce. The thread's copy of the key is wiped when the
// thread ends.
struct ThreadCipher {
    CipherCtxPtr ctx;
    unsigned char key[kKeySize];
    int direction = -1; ///< 1 sealing, 0 opening; -1 not keyed
    ~ThreadCipher() { OPENSSL_cleanse(key, sizeof key); }
};

thread_local ThreadCipher threadCipher;

// The thread's cipher context, keyed with `key` for `direction` and set to
// `nonce`. Until `done()` the context counts as not keyed, so that an
// operation cut short by an error leaves nothing behind for the next one.
class KeyedCipher {
public:
    KeyedCipher(const std::vector<unsigned char>& key, const unsigned char* nonce, int direction)
        : cipher(threadCipher), direction(direction) {
        if (!cipher.ctx)
            cipher.ctx = newCipherCtx();
        const bool keyed =
            cipher.direction == direction && CRYPTO_memcmp(cipher.key, key.data(), kKeySize) == 0;
        cipher.direction = -1;
        check(EVP_CipherInit_ex(cipher.ctx.get(), keyed ? nullptr : aes256Gcm(), nullptr,
                                keyed ? nullptr : key.data(), nonce, direction),
              "CipherInit");
        if (!keyed)
            std::memcpy(cipher.key, key.data(), kKeySize);
    }
    EVP_CIPHER_CTX* get() const { return cipher.ctx.get(); }
    /// The operation completed: the context may serve the next one as it is.
    void done() { cipher.direction = direction; }

private:
    ThreadCipher& cipher;
    const int direction;
};

// OpenSSL takes lengths as int; refuse anything that would not fit.
int toInt(std::size_t n) {
    if (n > 0x7fffffffu)
        throw std::runtime_error("KrelContext: message too large");
    return static_cast<int>(n);
}

/// True when `bytes` are UTF-8 text without control characters other than
/// tab and line ends: what a payload in the clear always is, and what sealed
/// bytes (a random nonce, ciphertext and tag) practically never are.
bool isPlainText(const std::vector<unsigned char>& bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        const unsigned char c = bytes[i];
        if (c < 0x80) {
            if ((c < 0x20 && c != '\t' && c != '\n' && c != '\r') || c == 0x7f)
                return false;
            ++i;
            continue;
        }
        const std::size_t length = c >= 0xf0 && c < 0xf5 ? 4 : c >= 0xe0 ? 3 : c >= 0xc2 ? 2 : 0;
        if (length == 0 || (length == 3 && c >= 0xf0) || i + length > bytes.size())
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((bytes[i + k] & 0xc0) != 0x80)
                return false;
        }
        i += length;
    }
    return true;
}

} // namespace

KrelContext::KrelContext() : encryptionEnabled(0) {}

KrelContext::KrelContext(const std::vector<unsigned char>& key) : encryptionEnabled(1), key_(key) {
    if (key.size() != kKeySize)
        throw std::invalid_argument("KrelContext: key must be 32 bytes, got " +
                                    std::to_string(key.size()));
}

KrelContext::~KrelContext() {
    if (!key_.empty())
        OPENSSL_cleanse(key_.data(), key_.size());
}

std::vector<unsigned char> KrelContext::encrypt(const std::vector<unsigned char>& plain) {
    // Without a key the context is the identity cipher over Base64, so that
    // a whole session without encryption, sealed payloads included, stays
    // readable on both sides.
    if (key_.empty()) {
        const std::string text =
            Velmora::QRXClient::Base64::encode(std::string(plain.begin(), plain.end()));
        return std::vector<unsigned char>(text.begin(), text.end());
    }

    std::string sealed(kNonceSize + plain.size() + kTagSize, '\0');
    unsigned char* nonce = reinterpret_cast<unsigned char*>(&sealed[0]);
    unsigned char* body = nonce + kNonceSize;
    check(RAND_bytes(nonce, static_cast<int>(kNonceSize)), "RAND_bytes");

    KeyedCipher ctx(key_, nonce, 1);
    int len = 0;
    if (!plain.empty())
        check(EVP_EncryptUpdate(ctx.get(), body, &len, plain.data(), toInt(plain.size())),
              "EncryptUpdate");
    int tail = 0;
    check(EVP_EncryptFinal_ex(ctx.get(), body + len, &tail), "EncryptFinal");
    check(EVP_CIPHER_CTX_ctrl(ctx.get(), EVP_CTRL_GCM_GET_TAG, static_cast<int>(kTagSize),
                              body + plain.size()),
          "GET_TAG");
    ctx.done();

    const std::string text = Velmora::QRXClient::Base64::encode(sealed);
    return std::vector<unsigned char>(text.begin(), text.end());
}

std::vector<unsigned char> KrelContext::decrypt(const std::vector<unsigned char>& cipher) {
    std::vector<unsigned char> sealed;
    try {
        sealed = Velmora::QRXClient::Base64::decode(cipher);
    } catch (const std::invalid_argument& e) {
        throw std::runtime_error(std::string("KrelContext: encrypted text is not valid Base64 (") +
                                 e.what() + ")");
    }
    if (key_.empty()) {
        // The identity cipher, as in encrypt; sealed bytes need the key.
        if (!isPlainText(sealed))
            throw std::runtime_error("KrelContext: cannot decrypt without a key (the text is "
                                     "sealed, not Base64 of plain text)");
        return sealed;
    }
    if (sealed.size() < kNonceSize + kTagSize)
        throw std::runtime_error("KrelContext: encrypted text is truncated (" +
                                 std::to_string(sealed.size()) + " bytes, at least " +
                                 std::to_string(kNonceSize + kTagSize) + " needed)");

    const std::size_t bodySize = sealed.size() - kNonceSize - kTagSize;
    unsigned char* nonce = sealed.data();
    unsigned char* body = nonce + kNonceSize;
    unsigned char* tag = body + bodySize;

    std::vector<unsigned char> plain(bodySize);
    KeyedCipher ctx(key_, nonce, 0);
    int len = 0;
    if (bodySize != 0)
        check(EVP_DecryptUpdate(ctx.get(), plain.data(), &len, body, toInt(bodySize)),
              "DecryptUpdate");
    check(EVP_CIPHER_CTX_ctrl(ctx.get(), EVP_CTRL_GCM_SET_TAG, static_cast<int>(kTagSize), tag),
          "SET_TAG");
    int tail = 0;
    if (EVP_DecryptFinal_ex(ctx.get(), plain.data() + len, &tail) != 1) {
        OPENSSL_cleanse(plain.data(), plain.size());
        throw std::runtime_error(
            "KrelContext: authentication failed: wrong key or tampered encrypted text");
    }
    ctx.done();
    return plain;
}

} // namespace krel
