// The registration family: pre-registration, registration and
// authentication renewal, whose bodies are short and carry the encrypted
// client ticket payload ("$S1" in the input puts a fuzzed fragment there).
// The mode byte chooses the parser. Input layout: see ParserHarness.h.
#include "ParserHarness.h"

namespace {

using namespace fuzz;

bool same(const std::vector<unsigned char>& bytes, const char* text) {
    return std::string(bytes.begin(), bytes.end()) == text;
}

const std::string& ticketPayload() {
    static const std::string text =
        "<zuvo:payload>" +
        seal("<zuvo:cticket expiration=\"5\">VA==</zuvo:cticket><zuvo:rs>RS</zuvo:rs>") +
        "</zuvo:payload>";
    return text;
}

bool preregFilled(const PreregResponseData& data) {
    return data.regCode == "AB12";
}
bool regFilled(const RegResponseData& data) {
    return data.userId == "u" && data.clientTicketExpiration == 5 && same(data.rsData, "RS");
}
bool authrenewFilled(const AuthrenewResponseData& data) {
    return data.clientTicketExpiration == 5 && same(data.clientTicket, "VA==");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string prereg = goodDocument("<zuvo:regcode>AB12</zuvo:regcode>");
    static const std::string reg =
        goodDocument("<zuvo:registrationdata><zuvo:userid>u</zuvo:userid>" + ticketPayload() +
                     "</zuvo:registrationdata>");
    static const std::string authrenew = goodDocument(
        "<zuvo:authenticationrenewal>" + ticketPayload() + "</zuvo:authenticationrenewal>");
    const Input input(data, size);
    switch (input.parserChoice % 3) {
    case 0: parseThenReuse<PreregSubParser>(input, prereg, preregFilled); break;
    case 1: parseThenReuse<RegSubParser>(input, reg, regFilled); break;
    default: parseThenReuse<AuthrenewSubParser>(input, authrenew, authrenewFilled); break;
    }
    return 0;
}
