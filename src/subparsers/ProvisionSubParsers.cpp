// Provisioning result bodies.

#include "zuvolib/subparsers/ProvisionSubParsers.h"

namespace velmora {
namespace zuvolib {

namespace {

typedef ProvisionSubParser S;

const ParentParser::TagConfigTable config[] = {
    {S::TAG_PROVISIONRESPONSEDATA, "provisionresponsedata"},
    {S::TAG_RS, "rs"},
};

} // namespace

ProvisionSubParser::ProvisionSubParser(Expat& expat, ResponseData& responseData,
                                       std::vector<unsigned char>& provisionData)
    : BufferedSubParser(expat, responseData, config, sizeof(config) / sizeof(config[0])),
      provisionData(provisionData) {}

bool ProvisionSubParser::canParseResultSubTag(unsigned int tagType) const {
    return tagType == TAG_PROVISIONRESPONSEDATA;
}

bool ProvisionSubParser::onResultSubTagEndEvent(unsigned int tagType, const std::string&) {
    const std::string text = takeText();
    if (tagType == TAG_RS)
        provisionData.assign(text.begin(), text.end());
    return true;
}

X509ProSubParser::X509ProSubParser(Expat& expat, X509ProResponseData& responseData)
    : ProvisionSubParser(expat, responseData, responseData.provisionData) {}

ECCLinkProSubParser::ECCLinkProSubParser(Expat& expat, ECCLinkProResponseData& responseData)
    : ProvisionSubParser(expat, responseData, responseData.provisionData) {}

NPTicketProSubParser::NPTicketProSubParser(Expat& expat, NPTicketProResponseData& responseData)
    : ProvisionSubParser(expat, responseData, responseData.provisionData) {}

} // namespace zuvolib
} // namespace velmora
