// zuvo parse TYPE [FILE|-]: a response document as its record in JSON.
#include "zuvo/Commands.h"

#include "common/Errors.h"
#include "common/FailureLine.h"
#include "common/Io.h"
#include "common/Keys.h"
#include "common/Names.h"
#include "common/ParseResponse.h"
#include "records/ResponseTypes.h"

#include <iostream>

namespace zuvocli {

std::string responseTypeNames() {
    return joinNames(responseTypes());
}

int runParse(const std::string& type, const std::string& input, const KeyOptions& key,
             bool verbose) {
    const ResponseType& responseType = findResponseType(type);
    const CipherContext context = makeCipherContext(key.hex, key.file);
    const std::string document = readInput(input);
    Json record;
    try {
        record = responseType.parse(document, context);
    } catch (const ParseFailedError& e) {
        // One line locating the failure; the library's report only on request.
        throw RejectedError(failureLine(input, e.failure, e.cause),
                            verbose ? e.details : std::string());
    }
    std::cout << dumpJson(record) << std::endl;
    return EXIT_OK;
}

} // namespace zuvocli
