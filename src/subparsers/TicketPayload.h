// Internal: the client ticket payload of registration and renewal results.
#ifndef ZUVOLIB_SRC_SUBPARSERS_TICKETPAYLOAD_H
#define ZUVOLIB_SRC_SUBPARSERS_TICKETPAYLOAD_H

#include "zuvolib/parse/ParentParser.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// Decrypts `payload` (always treated as encrypted) and replaces, in this
/// order, `clientTicket` with the text of "zuvo:cticket", `expiration` with
/// its attribute "expiration" and `rsData` with the text of "zuvo:rs"; an
/// element the fragment lacks gives an empty value. Throws as
/// `PayloadDecryptor` does.
void readTicketPayload(const ParentParser::CipherContext& cipherContext, const std::string& payload,
                       std::vector<unsigned char>& clientTicket, unsigned long long& expiration,
                       std::vector<unsigned char>& rsData);

} // namespace zuvolib
} // namespace velmora

#endif
