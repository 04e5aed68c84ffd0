// The provisioning family: the three provisioning bodies (one grammar,
// "provisionresponsedata" with its "rs" text) and the web API proxy body,
// which keeps the text of "httpbody" as it came. The mode byte chooses the
// parser. Input layout: see ParserHarness.h.
#include "ParserHarness.h"

namespace {

using namespace fuzz;

template <typename Record> bool provisionFilled(const Record& data) {
    return std::string(data.provisionData.begin(), data.provisionData.end()) == "P";
}
bool proxyFilled(const WebApiProxyResponseData& data) {
    return data.httpBody == "<zuvo:httpbody><![CDATA[B]]></zuvo:httpbody>";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string provision = goodDocument(
        "<zuvo:provisionresponsedata><zuvo:rs>P</zuvo:rs></zuvo:provisionresponsedata>");
    static const std::string proxy =
        goodDocument("<zuvo:webapiproxy><zuvo:httpbody>B</zuvo:httpbody></zuvo:webapiproxy>");
    const Input input(data, size);
    switch (input.parserChoice % 4) {
    case 0:
        parseThenReuse<X509ProSubParser>(input, provision, provisionFilled<X509ProResponseData>);
        break;
    case 1:
        parseThenReuse<ECCLinkProSubParser>(input, provision,
                                            provisionFilled<ECCLinkProResponseData>);
        break;
    case 2:
        parseThenReuse<NPTicketProSubParser>(input, provision,
                                             provisionFilled<NPTicketProResponseData>);
        break;
    default: parseThenReuse<WebApiProxySubParser>(input, proxy, proxyFilled); break;
    }
    return 0;
}
