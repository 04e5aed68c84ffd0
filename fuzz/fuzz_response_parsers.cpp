// Every response parser on arbitrary text, with no cipher context, with a
// context without a key and with a keyed one: parse either succeeds,
// returns false (and then showError works on the same text), or throws one
// of the exceptions it documents. Afterwards the same parser object must
// read a good document of its type in full, encrypted payloads included:
// nothing a hostile document leaves behind may spoil the next one.
#include <zuvolib/zuvolib.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

using namespace velmora::zuvolib;

namespace {

typedef ParentParser::CipherContext Context;

// The fixed key the seed corpus is sealed with (fuzz/corpus/response_parsers).
const Context& keyed() {
    static const Context context(new krel::KrelContext(std::vector<unsigned char>(32, 0x42)));
    return context;
}

std::string seal(const std::string& plain) {
    const std::vector<unsigned char> sealed =
        keyed()->encrypt(std::vector<unsigned char>(plain.begin(), plain.end()));
    return std::string(sealed.begin(), sealed.end());
}

// A good response: encrypted header payload with the times 1000 and 2000,
// and `body` as the result.
std::string goodDocument(const std::string& body) {
    static const std::string header =
        "<zuvo:responseheader><zuvo:status><zuvo:success>true</zuvo:success></zuvo:status>"
        "<zuvo:payload encrypted=\"true\">" +
        seal("<zuvo:servertime>1000</zuvo:servertime><zuvo:clienttime>2000</zuvo:clienttime>") +
        "</zuvo:payload></zuvo:responseheader>";
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<zuvo:response "
           "xmlns:zuvo=\"http://www.zuvo.example/qrx/zuvo/2.7\" version=\"2.7\">" +
           header + "<zuvo:result method=\"call\">" + body + "</zuvo:result></zuvo:response>";
}

const std::string& ticketPayload() {
    static const std::string text =
        "<zuvo:payload>" +
        seal("<zuvo:cticket expiration=\"5\">VA==</zuvo:cticket><zuvo:rs>RS</zuvo:rs>") +
        "</zuvo:payload>";
    return text;
}

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::cerr << "good document misread after fuzz input: " << what << std::endl;
    std::abort();
}

bool same(const std::vector<unsigned char>& bytes, const char* text) {
    return std::string(bytes.begin(), bytes.end()) == text;
}

// Per record type: a good result body and the check of what it filled.
std::string goodBody(const PreregResponseData*) {
    return "<zuvo:regcode>AB12</zuvo:regcode>";
}
bool filled(const PreregResponseData& data) {
    return data.regCode == "AB12";
}
std::string goodBody(const RegResponseData*) {
    return "<zuvo:registrationdata><zuvo:userid>u</zuvo:userid>" + ticketPayload() +
           "</zuvo:registrationdata>";
}
bool filled(const RegResponseData& data) {
    return data.userId == "u" && data.clientTicketExpiration == 5 && same(data.rsData, "RS");
}
std::string goodBody(const AuthrenewResponseData*) {
    return "<zuvo:authenticationrenewal>" + ticketPayload() + "</zuvo:authenticationrenewal>";
}
bool filled(const AuthrenewResponseData& data) {
    return data.clientTicketExpiration == 5 && same(data.clientTicket, "VA==");
}
std::string goodBody(const ResponseData*) { // the three provisioning records
    return "<zuvo:provisionresponsedata><zuvo:rs>P</zuvo:rs></zuvo:provisionresponsedata>";
}
template <typename Record> bool filled(const Record& data) {
    return same(data.provisionData, "P");
}
std::string goodBody(const AuthResponseData*) {
    return "<zuvo:authorization movie_id=\"77\"><zuvo:payload>" +
           seal("<zuvo:mticket expiration=\"9\">MT</zuvo:mticket>") +
           "</zuvo:payload></zuvo:authorization>";
}
bool filled(const AuthResponseData& data) {
    return data.movieId == 77 && data.movieTicketExpiration == 9 && same(data.movieTicket, "MT");
}
std::string goodBody(const WebApiProxyResponseData*) {
    return "<zuvo:webapiproxy><zuvo:httpbody>B</zuvo:httpbody></zuvo:webapiproxy>";
}
bool filled(const WebApiProxyResponseData& data) {
    return data.httpBody == "<zuvo:httpbody><![CDATA[B]]></zuvo:httpbody>";
}

// One parser object reads `text` with each context, then a good document.
template <typename Parser, typename Record> void run(Expat& expat, const std::string& text) {
    static const Context keyless(new krel::KrelContext());
    Record record;
    Parser parser(expat, record);
    for (const Context& context : {Context(), keyless, keyed()}) {
        try {
            if (!parser.parse(text, context))
                parser.showError(text);
        } catch (const std::runtime_error&) {    // decryption, malformed payload
        } catch (const std::invalid_argument&) { // payload that is not Base64
        }
    }
    static const std::string good = goodDocument(goodBody(static_cast<const Record*>(nullptr)));
    record = Record();
    require(parser.parse(good, keyed()), parser.getParserName());
    require(record.success && record.serverTime == 1000 && record.clientTime == 2000, "header");
    require(filled(record), parser.getParserName());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::ostringstream sink;
    std::streambuf* const saved = std::cout.rdbuf(sink.rdbuf());
    sink.str("");

    const std::string text(reinterpret_cast<const char*>(data), size);
    ExpatParser expat;
    run<PreregSubParser, PreregResponseData>(expat, text);
    run<RegSubParser, RegResponseData>(expat, text);
    run<AuthrenewSubParser, AuthrenewResponseData>(expat, text);
    run<X509ProSubParser, X509ProResponseData>(expat, text);
    run<ECCLinkProSubParser, ECCLinkProResponseData>(expat, text);
    run<NPTicketProSubParser, NPTicketProResponseData>(expat, text);
    run<WebApiProxySubParser, WebApiProxyResponseData>(expat, text);
    run<AuthSubParser, AuthResponseData>(expat, text);
    std::cout.rdbuf(saved);
    return 0;
}
