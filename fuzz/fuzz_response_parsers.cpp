// Every response parser on arbitrary text: parse either succeeds, returns
// false (and then showError works on the same text), or throws one of the
// exceptions it documents. Payloads are tried with no cipher context and
// with a keyed one.
#include <zuvolib/zuvolib.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

using namespace velmora::zuvolib;

namespace {

template <typename Parser, typename Record>
void run(Expat& expat, const std::string& text, const ParentParser::CipherContext& context) {
    Record record;
    Parser parser(expat, record);
    try {
        if (!parser.parse(text, context))
            parser.showError(text);
    } catch (const std::runtime_error&) {    // decryption, malformed payload
    } catch (const std::invalid_argument&) { // payload that is not Base64
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ParentParser::CipherContext keyed(
        new krel::KrelContext(std::vector<unsigned char>(32, 0x42)));
    static std::ostringstream sink;
    std::streambuf* const saved = std::cout.rdbuf(sink.rdbuf());
    sink.str("");

    const std::string text(reinterpret_cast<const char*>(data), size);
    ExpatParser expat;
    for (const ParentParser::CipherContext& context : {ParentParser::CipherContext(), keyed}) {
        run<PreregSubParser, PreregResponseData>(expat, text, context);
        run<RegSubParser, RegResponseData>(expat, text, context);
        run<AuthrenewSubParser, AuthrenewResponseData>(expat, text, context);
        run<X509ProSubParser, X509ProResponseData>(expat, text, context);
        run<WebApiProxySubParser, WebApiProxyResponseData>(expat, text, context);
    }
    SimpleParser fragment;
    try {
        fragment.parse(text);
    } catch (const std::runtime_error&) {
    }
    std::cout.rdbuf(saved);
    return 0;
}
