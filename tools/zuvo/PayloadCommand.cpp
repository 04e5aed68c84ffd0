// zuvo payload [--encrypted] [TEXT|-]: payload text back into its fragment.
#include "zuvo/Commands.h"

#include "common/Errors.h"
#include "common/Io.h"
#include "common/Keys.h"
#include "common/Payload.h"

#include <iostream>

namespace zuvocli {

int runPayload(const PayloadOptions& options) {
    const CipherContext context = makeCipherContext(options.key.hex, options.key.file);
    if (options.encrypted && !context->encryptionEnabled)
        throw UsageError("--encrypted needs the key: give --key or --key-file");
    const std::string text =
        (!options.textGiven || options.text == "-") ? readInput("-") : options.text;
    if (options.encode) {
        std::cout << encodePayload(text, options.encrypted, context) << std::endl;
        return EXIT_OK;
    }
    const std::string fragment = decodePayload(text, options.encrypted, context);
    std::cout << fragment;
    if (!fragment.empty() && fragment[fragment.size() - 1] != '\n')
        std::cout << '\n';
    std::cout << std::flush;
    return EXIT_OK;
}

} // namespace zuvocli
