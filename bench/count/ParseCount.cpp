// Driver for instruction counts under callgrind: parses one generated
// response `N` times with expat's no-op handlers (whole, then in the
// library's 120 KiB pieces) and with the library's parser, each in a
// function of its own so that callgrind's inclusive cost per call is the
// cost of one parse. scripts/run-parse-count runs it and prints the ratios.
// Usage: zuvo_parse_count 60k|1m|prereg|reg|renew N

#include "../ResponseGenerator.h"

#include <zuvolib/zuvolib.h>

#include <expat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace velmora::zuvolib;
typedef std::tr1::shared_ptr<krel::KrelContext> Context;

namespace {

const std::size_t kFeedPiece = 120 * 1024;

int expatNoop(Expat& expat, const std::string& doc, std::size_t piece) {
    XML_ParserReset(expat.parser, nullptr);
    XML_SetElementHandler(
        expat.parser, [](void*, const XML_Char*, const XML_Char**) {},
        [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(expat.parser, [](void*, const XML_Char*, int) {});
    std::size_t at = 0;
    for (; doc.size() - at > piece; at += piece)
        XML_Parse(expat.parser, doc.data() + at, static_cast<int>(piece), 0);
    return XML_Parse(expat.parser, doc.data() + at, static_cast<int>(doc.size() - at), 1);
}

__attribute__((noinline)) int floorWhole(Expat& expat, const std::string& doc) {
    return expatNoop(expat, doc, doc.size());
}

__attribute__((noinline)) int floorPieces(Expat& expat, const std::string& doc) {
    return expatNoop(expat, doc, kFeedPiece);
}

template <typename Parser, typename Record>
__attribute__((noinline)) long library(Expat& expat, const std::string& doc,
                                       const Context& context) {
    Record record;
    Parser parser(expat, record);
    if (!parser.parse(doc, context))
        std::abort();
    return static_cast<long>(record.serverTime);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s 60k|1m|prereg|reg|renew N\n", argv[0]);
        return 2;
    }
    const std::vector<unsigned char> key(32, 0x21);
    krel::KrelContext sealer(key);
    const Context context(new krel::KrelContext(key));
    const std::string which = argv[1];
    const int n = std::atoi(argv[2]);
    std::string doc;
    long (*parse)(Expat&, const std::string&, const Context&) = nullptr;
    if (which == "60k" || which == "1m") {
        const std::size_t bytes = which == "60k" ? 60 * 1024 : 1024 * 1024;
        doc = zuvobench::authorizationResponse(zuvobench::shapeForSize(bytes, sealer), sealer);
        parse = library<AuthSubParser, AuthResponseData>;
    } else if (which == "prereg") {
        doc = zuvobench::preregResponse(sealer);
        parse = library<PreregSubParser, PreregResponseData>;
    } else if (which == "reg") {
        doc = zuvobench::registrationResponse(sealer);
        parse = library<RegSubParser, RegResponseData>;
    } else if (which == "renew") {
        doc = zuvobench::renewalResponse(sealer);
        parse = library<AuthrenewSubParser, AuthrenewResponseData>;
    } else {
        std::fprintf(stderr, "unknown document %s\n", which.c_str());
        return 2;
    }
    ExpatParser owner;
    Expat& expat = owner;
    long sum = 0;
    for (int i = 0; i < n; ++i) {
        sum += floorWhole(expat, doc);
        sum += floorPieces(expat, doc);
        sum += parse(expat, doc, context);
    }
    return sum > 0 ? 0 : 1;
}
