// The zuvo tool's decoder on arbitrary text, read three ways: as a request,
// as a response whose parser is chosen from its body, and as a HAR file
// whose exchanges are decoded in session order. Each either succeeds or
// throws one of the two errors the decoder documents (RejectedError,
// UsageError); a session's entries never throw. Keyed with the key the seed corpus is sealed with.
#include "capture/Decode.h"
#include "capture/Exchange.h"
#include "common/Errors.h"
#include "common/Keys.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

using namespace zuvocli;

namespace {

// The key of fuzz/corpus/decode: 32 bytes of 0x42.
const CipherContext& keyed() {
    static const CipherContext context = makeCipherContext(std::vector<unsigned char>(32, 0x42));
    return context;
}

template <class Step> void expectDocumented(const char* what, Step step) {
    try {
        step();
    } catch (const RejectedError&) {
    } catch (const UsageError&) {
    } catch (const std::exception& e) {
        std::cerr << what << ": undocumented exception: " << e.what() << std::endl;
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    expectDocumented("decodeRequest", [&] { decodeRequest(text, keyed()); });
    expectDocumented("decodeResponse", [&] { decodeResponse(text, std::string(), keyed()); });
    expectDocumented("decodeSession", [&] {
        const HarArchive archive(text, "input");
        decodeSession(archive, keyed(), true, [](const Json& exchange) {
            if (!exchange.contains("outcome"))
                std::abort();
        });
    });
    return 0;
}
