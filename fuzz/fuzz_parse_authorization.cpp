// The authorization body: the playback catalogue (CDNs, video, audio and
// timed-text downloadables with their tracks, trick plays, download URLs,
// streaming parameters) and the encrypted movie ticket payload ("$S1" in
// the input puts a fuzzed fragment there). Input layout: see
// ParserHarness.h; the parser choice bits are unused.
#include "ParserHarness.h"

namespace {

using namespace fuzz;

bool filled(const AuthResponseData& data) {
    return data.movieId == 77 && data.movieTicketExpiration == 9 &&
           std::string(data.movieTicket.begin(), data.movieTicket.end()) == "MT";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string good =
        goodDocument("<zuvo:authorization movie_id=\"77\"><zuvo:payload>" +
                     seal("<zuvo:mticket expiration=\"9\">MT</zuvo:mticket>") +
                     "</zuvo:payload></zuvo:authorization>");
    parseThenReuse<AuthSubParser>(Input(data, size), good, filled);
    return 0;
}
