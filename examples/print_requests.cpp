// Prints a ping and a pre-registration document, once with Base64 payloads
// and once encrypted with the stand-in cipher context.

#include <zuvolib/zuvolib.h>

#include <iostream>
#include <vector>

using namespace velmora::zuvolib;

int main() {
    PingRequestData ping;
    ping.softwareVersion = "4.2.1";
    ping.uiVersion = "1.0";
    ping.serverTime = 1700000000;
    ping.clientTime = 1700000042;

    PreregRequestData prereg;
    prereg.softwareVersion = ping.softwareVersion;
    prereg.uiVersion = ping.uiVersion;
    prereg.serverTime = ping.serverTime;
    prereg.clientTime = ping.clientTime;

    // Without a key the context leaves encryption off: payloads are Base64.
    const RequestBuilder::CipherContext plain(new krel::KrelContext());
    // A demonstration key; a device uses its own cipher context.
    const RequestBuilder::CipherContext sealed(
        new krel::KrelContext(std::vector<unsigned char>(32, 0x5a)));

    try {
        std::cout << "== ping, Base64 payload ==\n" << RequestBuilder::buildRequest(ping, plain);
        std::cout << "\n== pre-registration, Base64 payload ==\n"
                  << RequestBuilder::buildRequest(prereg, plain);
        std::cout << "\n== ping, encrypted payload ==\n"
                  << RequestBuilder::buildRequest(ping, sealed);
        std::cout << "\n== pre-registration, encrypted payload ==\n"
                  << RequestBuilder::buildRequest(prereg, sealed);
    } catch (const std::exception& e) {
        std::cerr << "print_requests: " << e.what() << '\n';
        return 1;
    }
    return 0;
}
