// zuvo payload [--encrypted] [TEXT|-]: payload text back into its fragment.
#include "Commands.h"

#include "Errors.h"
#include "Io.h"
#include "Keys.h"
#include "Payload.h"

#include <iostream>

namespace zuvocli {

int runPayload(bool encrypted, const std::string& text, bool textGiven, const KeyOptions& key) {
    const CipherContext context = makeCipherContext(key.hex, key.file);
    if (encrypted && !context->encryptionEnabled)
        throw UsageError("--encrypted needs the key: give --key or --key-file");
    const std::string payload = (!textGiven || text == "-") ? readInput("-") : text;
    const std::string fragment = decodePayload(payload, encrypted, context);
    std::cout << fragment;
    if (!fragment.empty() && fragment[fragment.size() - 1] != '\n')
        std::cout << '\n';
    std::cout << std::flush;
    return EXIT_OK;
}

} // namespace zuvocli
