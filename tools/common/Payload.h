// Payload text back into its fragment.
#ifndef ZUVO_TOOL_PAYLOAD_H
#define ZUVO_TOOL_PAYLOAD_H

#include "common/Keys.h"

#include <string>

namespace zuvocli {

/// The plain fragment of `payload`: decrypted with `context` when
/// `encrypted`, else Base64-decoded. Throws RejectedError saying why when the
/// text is not Base64, or does not decrypt (wrong key, tampered text).
std::string decodePayload(const std::string& payload, bool encrypted, const CipherContext& context);

/// The payload text of `fragment`: encrypted with `context` when
/// `encrypted`, else its Base64 text. The inverse of decodePayload.
std::string encodePayload(const std::string& fragment, bool encrypted,
                          const CipherContext& context);

} // namespace zuvocli

#endif
