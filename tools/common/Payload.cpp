// Payload text back into its fragment.
#include "common/Payload.h"

#include "common/Errors.h"

#include <QRXClient/Base64.h>

#include <vector>

namespace zuvocli {

std::string decodePayload(const std::string& payload, bool encrypted,
                          const CipherContext& context) {
    if (!encrypted) {
        try {
            return Velmora::QRXClient::Base64::decode(payload);
        } catch (const std::exception& e) {
            throw RejectedError(std::string("payload is not Base64 text: ") + e.what());
        }
    }
    try {
        const std::vector<unsigned char> plain =
            context->decrypt(std::vector<unsigned char>(payload.begin(), payload.end()));
        return std::string(plain.begin(), plain.end());
    } catch (const std::exception& e) {
        throw RejectedError(std::string("payload could not be decrypted: ") + e.what());
    }
}

std::string encodePayload(const std::string& fragment, bool encrypted,
                          const CipherContext& context) {
    if (!encrypted)
        return Velmora::QRXClient::Base64::encode(fragment);
    const std::vector<unsigned char> sealed =
        context->encrypt(std::vector<unsigned char>(fragment.begin(), fragment.end()));
    return std::string(sealed.begin(), sealed.end());
}

} // namespace zuvocli
