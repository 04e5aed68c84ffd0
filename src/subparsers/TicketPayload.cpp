// The client ticket payload.

#include "subparsers/TicketPayload.h"

#include "zuvolib/parse/PayloadDecryptor.h"

#include <QRXClient/lexical_cast.h>

namespace velmora {
namespace zuvolib {

void readTicketPayload(const ParentParser::CipherContext& cipherContext, const std::string& payload,
                       std::vector<unsigned char>& clientTicket, unsigned long long& expiration,
                       std::vector<unsigned char>& rsData) {
    const PayloadDecryptor plain(cipherContext, payload, true);
    clientTicket = plain.getValueUcVector("zuvo:cticket");
    expiration = Velmora::QRXClient::lexical_cast<unsigned long long>(
        plain.getAttr("zuvo:cticket", "expiration"));
    rsData = plain.getValueUcVector("zuvo:rs");
}

} // namespace zuvolib
} // namespace velmora
