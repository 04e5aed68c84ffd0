// Built against the installed package through pkg-config alone. Holds its
// cipher context by the API's own std::tr1 name, as a caller's code would.
#include <zuvolib/zuvolib.h>

#include <iostream>

int main() {
    velmora::zuvolib::PingRequestData ping;
    ping.softwareVersion = "sw-1";
    ping.uiVersion = "ui-2";
    ping.serverTime = 1000;
    ping.clientTime = 2000;
    const std::tr1::shared_ptr<krel::KrelContext> context(new krel::KrelContext());
    std::cout << velmora::zuvolib::RequestBuilder::buildRequest(ping, context);
    return 0;
}
