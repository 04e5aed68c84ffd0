// zuvo decode [FILE|-] | --har FILE: protocol documents and captured
// sessions as JSON.
#include "zuvo/Commands.h"

#include "capture/Decode.h"
#include "capture/Har.h"
#include "capture/XmlTree.h"
#include "common/Errors.h"
#include "common/FailureLine.h"
#include "common/Io.h"
#include "common/Keys.h"
#include "common/ParseResponse.h"
#include "records/ResponseTypes.h"

#include <iostream>

namespace zuvocli {
namespace {

/// Every protocol exchange of the HAR file; the others are counted.
int decodeHar(const DecodeOptions& options, const CipherContext& context) {
    const std::vector<HarEntry> entries = readHar(readInput(options.har), options.har);
    Json exchanges = Json::array();
    std::size_t skipped = 0;
    std::size_t failed = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!isProtocolExchange(entries[i])) {
            ++skipped;
            continue;
        }
        Json exchange = {{"entry", i + 1}};
        exchange.update(decodeExchange(entries[i], context));
        failed += decodeFailed(exchange) ? 1 : 0;
        if (options.jsonl)
            std::cout << exchange.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
        else
            exchanges.push_back(exchange);
    }
    if (!options.jsonl) {
        Json session = {{"file", options.har},
                        {"entries", entries.size()},
                        {"skipped", skipped},
                        {"exchanges", exchanges}};
        std::cout << dumpJson(session) << '\n';
    } else if (skipped > 0) {
        std::cerr << "zuvo: " << skipped << " of " << entries.size()
                  << " entries are not protocol traffic and were skipped\n";
    }
    std::cout << std::flush;
    if (failed > 0)
        throw RejectedError(std::to_string(failed) + " exchange" + (failed == 1 ? "" : "s") +
                            " could not be read completely (see \"error\" in the output)");
    return EXIT_OK;
}

} // namespace

int runDecode(const DecodeOptions& options) {
    if (!options.type.empty())
        findResponseType(options.type);
    const CipherContext context = makeCipherContext(options.key.hex, options.key.file);
    if (!options.har.empty())
        return decodeHar(options, context);

    const std::string text = readInput(options.input);
    const std::string name = options.input == "-" ? "standard input" : "'" + options.input + "'";
    Json decoded;
    switch (documentKind(text)) {
    case DocumentKind::Request:
        if (!options.type.empty())
            throw UsageError("--type applies to responses; " + name + " holds a request");
        decoded = decodeRequest(text, context);
        break;
    case DocumentKind::Response: {
        try {
            decoded = decodeResponse(text, options.type, context);
        } catch (const ParseFailedError& e) {
            throw RejectedError(failureLine(options.input, e.failure, e.cause));
        }
        break;
    }
    case DocumentKind::Other: {
        // Name what is there: broken XML, or another document element.
        std::string element;
        try {
            element = readXml(text).name;
        } catch (const std::runtime_error& e) {
            throw RejectedError(name + " is not a protocol document: " + e.what());
        }
        throw RejectedError(name + " is not a protocol document: its document element is <" +
                            element + ">, neither <zuvo:request> nor <zuvo:response>");
    }
    }
    std::cout << dumpJson(decoded) << std::endl;
    if (decodeFailed(decoded))
        throw RejectedError("a payload of the request could not be opened (see \"error\" in the "
                            "output)");
    return EXIT_OK;
}

} // namespace zuvocli
