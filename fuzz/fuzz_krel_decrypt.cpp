// The stand-in cipher on arbitrary text: decrypt succeeds only for text it
// sealed itself, and otherwise throws runtime_error.
#include <krel/KrelContext.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static krel::KrelContext context(std::vector<unsigned char>(32, 0x42));
    const std::vector<unsigned char> input(data, data + size);
    try {
        context.decrypt(input);
    } catch (const std::runtime_error&) {
    }
    if (context.decrypt(context.encrypt(input)) != input)
        std::abort();
    return 0;
}
