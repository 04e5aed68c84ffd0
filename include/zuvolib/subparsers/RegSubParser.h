// Registration response: the client ticket and the user it belongs to.
#ifndef ZUVOLIB_SUBPARSERS_REGSUBPARSER_H
#define ZUVOLIB_SUBPARSERS_REGSUBPARSER_H

#include "zuvolib/export.h"
#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/subparsers/BufferedSubParser.h"

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// The registration response.
struct RegResponseData : ResponseData {
    std::vector<unsigned char> clientTicket;       ///< "zuvo:cticket" in the payload
    unsigned long long clientTicketExpiration = 0; ///< its attribute "expiration"
    std::vector<unsigned char> rsData;             ///< "zuvo:rs" in the payload
    std::string userId;                            ///< "userid", as written
    std::string userDescription;                   ///< "userdescription", as written
};

/// Reads a registration response into a `RegResponseData`: the header as
/// `ParentParser` does, and the body "registrationdata" with "userid",
/// "userdescription" and an encrypted "payload" holding "zuvo:cticket" (with
/// attribute "expiration") and "zuvo:rs". The payload always goes through
/// the cipher context; its three values are replaced together (an element
/// it lacks gives an empty value). An empty cipher context rejects the
/// document. See `ParentParser::parse` for results and exceptions.
class ZUVO_API RegSubParser : public BufferedSubParser {
public:
    enum OwnTagType : unsigned int { TAG_REGISTRATIONDATA = 31, TAG_USERID, TAG_USERDESCRIPTION };

    /// Keeps references to `expat` and `responseData`; both must outlive it.
    RegSubParser(Expat& expat, RegResponseData& responseData);

    const char* getParserName() const override { return "RegSubParser"; }

protected:
    bool canParseResultSubTag(unsigned int tagType) const override;
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) override;

private:
    RegResponseData& data;
};

} // namespace zuvolib
} // namespace velmora

#endif
