// zuvo keygen: a fresh random key for --key.
#include "zuvo/Commands.h"

#include "common/Errors.h"
#include "common/Keys.h"

#include <iostream>

namespace zuvocli {

int runKeygen() {
    std::cout << toHex(randomKey()) << std::endl;
    return EXIT_OK;
}

} // namespace zuvocli
