// Text-to-number conversions never fail, and a number written as text reads
// back as the same number.
#include <QRXClient/lexical_cast.h>

#include <cstdint>
#include <cstdlib>
#include <string>

using Velmora::QRXClient::lexical_cast;

template <typename T> static void roundTrip(const std::string& text) {
    const T value = lexical_cast<T>(text);
    if (lexical_cast<T>(lexical_cast<std::string>(value)) != value)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    roundTrip<int>(text);
    roundTrip<unsigned int>(text);
    roundTrip<unsigned long long>(text);
    const unsigned short narrow = lexical_cast<unsigned short>(text);
    if (lexical_cast<unsigned short>(
            lexical_cast<std::string>(static_cast<unsigned int>(narrow))) != narrow)
        std::abort();
    return 0;
}
