// A device's first two exchanges, without the transport: build a ping
// request, then read a pre-registration response as the server would send it.
#include <zuvolib/zuvolib.h>

#include <iostream>
#include <string>

using namespace velmora::zuvolib;

namespace {

// What the server answers a pre-registration with. Its header payload
// (server and client time) is Base64 text, as a server sends it to a device
// that has encryption off.
const char* const PREREG_RESPONSE =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<zuvo:response xmlns:zuvo=\"http://www.zuvo.example/qrx/zuvo/2.7\" version=\"2.7\">\n"
    "  <zuvo:responseheader>\n"
    "    <zuvo:status><zuvo:success>true</zuvo:success></zuvo:status>\n"
    "    <zuvo:payload encrypted=\"false\">"
    "PHp1dm86c2VydmVydGltZT4xNzAwMDAwMTAwPC96dXZvOnNlcnZlcnRpbWU+"
    "</zuvo:payload>\n"
    "  </zuvo:responseheader>\n"
    "  <zuvo:result method=\"preregister\">\n"
    "    <zuvo:regcode>K7Q2MX</zuvo:regcode>\n"
    "    <zuvo:retryinterval>5</zuvo:retryinterval>\n"
    "    <zuvo:totaltime>900</zuvo:totaltime>\n"
    "  </zuvo:result>\n"
    "</zuvo:response>\n";

} // namespace

int main() {
    // Without a key the context leaves encryption off: payloads are Base64.
    const RequestBuilder::CipherContext context(new krel::KrelContext());

    PingRequestData ping;
    ping.softwareVersion = "4.2.1";
    ping.uiVersion = "1.0";
    ping.clientTime = 1700000000;
    std::cout << RequestBuilder::buildRequest(ping, context);

    PreregResponseData prereg;
    ExpatParser expat;
    PreregSubParser parser(expat, prereg);
    if (!parser.parse(PREREG_RESPONSE, context)) {
        parser.showError(PREREG_RESPONSE);
        return 1;
    }
    std::cout << "registration code " << prereg.regCode << ", retry every " << prereg.retryInterval
              << " s for " << prereg.totalTime << " s; server time " << prereg.serverTime << '\n';
    return prereg.success && prereg.regCode == "K7Q2MX" ? 0 : 1;
}
