// Authentication renewal response: a fresh client ticket.
#ifndef ZUVOLIB_SUBPARSERS_AUTHRENEWSUBPARSER_H
#define ZUVOLIB_SUBPARSERS_AUTHRENEWSUBPARSER_H

#include "zuvolib/export.h"
#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/subparsers/BufferedSubParser.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// The authentication renewal response.
struct AuthrenewResponseData : ResponseData {
    std::vector<unsigned char> clientTicket;       ///< "zuvo:cticket" in the payload
    unsigned long long clientTicketExpiration = 0; ///< its attribute "expiration"
    std::vector<unsigned char> rsData;             ///< "zuvo:rs" in the payload
};

/// Reads an authentication renewal response into an `AuthrenewResponseData`:
/// the header as `ParentParser` does, and the body "authenticationrenewal"
/// with an encrypted "payload" read as by `RegSubParser`. A payload must be
/// text: an element inside it rejects the document, and so does an empty
/// cipher context. See `ParentParser::parse` for results and exceptions.
class ZUVO_API AuthrenewSubParser : public BufferedSubParser {
public:
    enum OwnTagType : unsigned int { TAG_AUTHENTICATIONRENEWAL = 31 };

    /// Keeps references to `expat` and `responseData`; both must outlive it.
    AuthrenewSubParser(Expat& expat, AuthrenewResponseData& responseData);

    const char* getParserName() const override { return "AuthrenewSubParser"; }

protected:
    bool canParseResultSubTag(unsigned int tagType) const override;
    bool onResultSubTagStartEvent(unsigned int parentTagType, unsigned int tagType,
                                  const std::string& name,
                                  const std::map<std::string, std::string>& attributes) override;
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) override;

private:
    AuthrenewResponseData& data;
};

} // namespace zuvolib
} // namespace velmora

#endif
