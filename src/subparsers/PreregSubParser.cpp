// Pre-registration result body.

#include "zuvolib/subparsers/PreregSubParser.h"

#include <QRXClient/lexical_cast.h>

namespace velmora {
namespace zuvolib {

namespace {

typedef PreregSubParser S;

const ParentParser::TagConfigTable config[] = {
    {S::TAG_REGCODE, "regcode"},
    {S::TAG_RETRYINTERVAL, "retryinterval"},
    {S::TAG_TOTALTIME, "totaltime"},
};

} // namespace

PreregSubParser::PreregSubParser(Expat& expat, PreregResponseData& responseData)
    : BufferedSubParser(expat, responseData, config, sizeof(config) / sizeof(config[0])),
      data(responseData) {}

bool PreregSubParser::canParseResultSubTag(unsigned int tagType) const {
    return tagType >= TAG_REGCODE && tagType <= TAG_TOTALTIME;
}

bool PreregSubParser::onResultSubTagEndEvent(unsigned int tagType, const std::string&) {
    using Velmora::QRXClient::lexical_cast;
    const std::string text = takeText();
    switch (tagType) {
    case TAG_REGCODE: data.regCode = text; break;
    case TAG_RETRYINTERVAL: data.retryInterval = lexical_cast<int>(text); break;
    case TAG_TOTALTIME: data.totalTime = lexical_cast<int>(text); break;
    default: break;
    }
    return true;
}

} // namespace zuvolib
} // namespace velmora
