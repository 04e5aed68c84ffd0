// Authentication renewal result body.

#include "zuvolib/subparsers/AuthrenewSubParser.h"

#include "subparsers/TicketPayload.h"

namespace velmora {
namespace zuvolib {

namespace {

const ParentParser::TagConfigTable config[] = {
    {AuthrenewSubParser::TAG_AUTHENTICATIONRENEWAL, "authenticationrenewal"},
};

} // namespace

AuthrenewSubParser::AuthrenewSubParser(Expat& expat, AuthrenewResponseData& responseData)
    : BufferedSubParser(expat, responseData, config, sizeof(config) / sizeof(config[0])),
      data(responseData) {}

bool AuthrenewSubParser::canParseResultSubTag(unsigned int tagType) const {
    return tagType == TAG_AUTHENTICATIONRENEWAL;
}

bool AuthrenewSubParser::onResultSubTagStartEvent(
    unsigned int parentTagType, unsigned int tagType, const std::string& name,
    const std::map<std::string, std::string>& attributes) {
    if (parentTagType == TAG_PAYLOAD)
        return false;
    return BufferedSubParser::onResultSubTagStartEvent(parentTagType, tagType, name, attributes);
}

bool AuthrenewSubParser::onResultSubTagEndEvent(unsigned int tagType, const std::string&) {
    const std::string text = takeText();
    if (tagType == TAG_PAYLOAD)
        readTicketPayload(getCipherContext(), text, data.clientTicket, data.clientTicketExpiration,
                          data.rsData);
    return true;
}

} // namespace zuvolib
} // namespace velmora
