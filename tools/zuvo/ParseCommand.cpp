// zuvo parse TYPE [FILE|-]: a response document as its record in JSON.
#include "Commands.h"

#include "Errors.h"
#include "Io.h"
#include "Keys.h"
#include "Names.h"
#include "ResponseTypes.h"

#include <iostream>

namespace zuvocli {

std::string responseTypeNames() {
    return joinNames(responseTypes());
}

int runParse(const std::string& type, const std::string& input, const KeyOptions& key) {
    const ResponseType& responseType = findResponseType(type);
    const CipherContext context = makeCipherContext(key.hex, key.file);
    const std::string document = readInput(input);
    const Json record = responseType.parse(document, context);
    std::cout << dumpJson(record) << std::endl;
    return EXIT_OK;
}

} // namespace zuvocli
