// Registration result body.

#include "zuvolib/subparsers/RegSubParser.h"

#include "subparsers/TicketPayload.h"

namespace velmora {
namespace zuvolib {

namespace {

typedef RegSubParser S;

const ParentParser::TagConfigTable config[] = {
    {S::TAG_REGISTRATIONDATA, "registrationdata"},
    {S::TAG_USERID, "userid"},
    {S::TAG_USERDESCRIPTION, "userdescription"},
};

} // namespace

RegSubParser::RegSubParser(Expat& expat, RegResponseData& responseData)
    : BufferedSubParser(expat, responseData, config, sizeof(config) / sizeof(config[0])),
      data(responseData) {}

bool RegSubParser::canParseResultSubTag(unsigned int tagType) const {
    return tagType == TAG_REGISTRATIONDATA;
}

bool RegSubParser::onResultSubTagEndEvent(unsigned int tagType, const std::string&) {
    const std::string text = takeText();
    switch (tagType) {
    case TAG_USERID: data.userId = text; break;
    case TAG_USERDESCRIPTION: data.userDescription = text; break;
    case TAG_PAYLOAD:
        readTicketPayload(getCipherContext(), text, data.clientTicket, data.clientTicketExpiration,
                          data.rsData);
        break;
    default: break;
    }
    return true;
}

} // namespace zuvolib
} // namespace velmora
