// Base64 decoding of arbitrary text: it decodes or throws invalid_argument,
// and whatever decodes re-encodes to an equivalent text.
#include <QRXClient/Base64.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    using Velmora::QRXClient::Base64;
    try {
        const std::string plain = Base64::decode(text);
        const std::vector<unsigned char> bytes =
            Base64::decode(std::vector<unsigned char>(text.begin(), text.end()));
        if (std::string(bytes.begin(), bytes.end()) != plain)
            std::abort();
        if (Base64::decode(Base64::encode(plain)) != plain)
            std::abort();
    } catch (const std::invalid_argument&) {
    }
    return 0;
}
