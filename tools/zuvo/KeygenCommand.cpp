// zuvo keygen: a fresh random key for --key.
#include "Commands.h"

#include "Errors.h"
#include "Keys.h"

#include <iostream>

namespace zuvocli {

int runKeygen() {
    std::cout << toHex(randomKey()) << std::endl;
    return EXIT_OK;
}

} // namespace zuvocli
