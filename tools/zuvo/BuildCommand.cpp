// zuvo build MESSAGE: a request record from JSON and --set, as a document.
#include "zuvo/Commands.h"

#include "common/Errors.h"
#include "common/Io.h"
#include "common/Keys.h"
#include "common/Names.h"
#include "records/RequestMessages.h"

#include <iostream>
#include <stdexcept>

namespace zuvocli {

std::string requestMessageNames() {
    return joinNames(requestMessages());
}

std::string requestMessageTable() {
    std::string table;
    for (const RequestMessage& m : requestMessages()) {
        table += "  " + std::string(m.name) + " (" + m.record + ")";
        if (!m.ownFields.empty())
            table += ": " + m.ownFields;
        if (m.takesRc)
            table += "; takes --rc";
        table += "\n";
    }
    return table;
}

int runBuild(const BuildOptions& options) {
    const RequestMessage& message = findRequestMessage(options.message);
    if (options.rcGiven && !message.takesRc)
        throw UsageError("message '" + options.message + "' takes no --rc");

    Json input;
    if (!options.input.empty()) {
        const std::string text = readInput(options.input);
        input = Json::parse(text, nullptr, false);
        if (input.is_discarded())
            throw UsageError("'" + options.input + "' is not valid JSON");
        if (!input.is_object())
            throw UsageError("'" + options.input + "' must hold a JSON object of " +
                             message.record + " fields");
    }
    const CipherContext context = makeCipherContext(options.key.hex, options.key.file);
    std::string document;
    try {
        document = message.build(input, options.settings, options.rc, context);
    } catch (const std::invalid_argument& e) {
        // The builder refuses a value (such as an unknown renewal type).
        throw UsageError(options.message + ": " + e.what());
    }
    std::cout << document << std::flush;
    return EXIT_OK;
}

} // namespace zuvocli
