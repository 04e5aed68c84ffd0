// Web API proxy response: the proxied HTTP body.
#ifndef ZUVOLIB_SUBPARSERS_WEBAPIPROXYSUBPARSER_H
#define ZUVOLIB_SUBPARSERS_WEBAPIPROXYSUBPARSER_H

#include "zuvolib/export.h"
#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/subparsers/BufferedSubParser.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// The web API proxy response.
struct WebApiProxyResponseData : ResponseData {
    /// The "httpbody" element rewrapped as a self-contained fragment:
    /// "<zuvo:httpbody><![CDATA[" + its text + "]]></zuvo:httpbody>". The
    /// text is inserted unchanged (not escaped, not checked for "]]>").
    std::string httpBody;
};

/// Reads a web API proxy response into a `WebApiProxyResponseData`: the
/// header as `ParentParser` does, and the body "webapiproxy" with its
/// "httpbody". Each "httpbody" replaces an earlier one. See
/// `ParentParser::parse` for results and exceptions.
class ZUVO_API WebApiProxySubParser : public BufferedSubParser {
public:
    enum OwnTagType : unsigned int { TAG_WEBAPIPROXY = 31, TAG_HTTPBODY };

    /// Keeps references to `expat` and `responseData`; both must outlive it.
    WebApiProxySubParser(Expat& expat, WebApiProxyResponseData& responseData);

    const char* getParserName() const override { return "WebApiProxySubParser"; }

protected:
    bool canParseResultSubTag(unsigned int tagType) const override;
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) override;

private:
    WebApiProxyResponseData& data;
};

} // namespace zuvolib
} // namespace velmora

#endif
