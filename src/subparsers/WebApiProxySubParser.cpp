// Web API proxy result body.

#include "zuvolib/subparsers/WebApiProxySubParser.h"

namespace velmora {
namespace zuvolib {

namespace {

typedef WebApiProxySubParser S;

const ParentParser::TagConfigTable config[] = {
    {S::TAG_WEBAPIPROXY, "webapiproxy"},
    {S::TAG_HTTPBODY, "httpbody"},
};

} // namespace

WebApiProxySubParser::WebApiProxySubParser(Expat& expat, WebApiProxyResponseData& responseData)
    : BufferedSubParser(expat, responseData, config, sizeof(config) / sizeof(config[0])),
      data(responseData) {}

bool WebApiProxySubParser::canParseResultSubTag(unsigned int tagType) const {
    return tagType == TAG_WEBAPIPROXY;
}

bool WebApiProxySubParser::onResultSubTagEndEvent(unsigned int tagType, const std::string&) {
    static const char OPEN[] = "<zuvo:httpbody><![CDATA[";
    static const char CLOSE[] = "]]></zuvo:httpbody>";
    const std::string text = takeText();
    if (tagType == TAG_HTTPBODY)
        data.httpBody = OPEN + text + CLOSE;
    return true;
}

} // namespace zuvolib
} // namespace velmora
