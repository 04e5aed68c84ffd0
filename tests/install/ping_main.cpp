// Built against the installed package through pkg-config alone.
#include <zuvolib/zuvolib.h>

#include <iostream>

int main() {
    velmora::zuvolib::PingRequestData ping;
    ping.softwareVersion = "sw-1";
    ping.uiVersion = "ui-2";
    ping.serverTime = 1000;
    ping.clientTime = 2000;
    const velmora::zuvolib::RequestBuilder::CipherContext context(new krel::KrelContext());
    std::cout << velmora::zuvolib::RequestBuilder::buildRequest(ping, context);
    return 0;
}
