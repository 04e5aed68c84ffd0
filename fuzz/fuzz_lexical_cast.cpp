// Text-to-number conversions never fail, match a classic-locale string
// stream exactly, and a number written as text reads back as itself.
#include <QRXClient/lexical_cast.h>

#include <cstdint>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <string>

using Velmora::QRXClient::lexical_cast;

template <typename T> static void check(const std::string& text) {
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    T expected = 0;
    in >> expected;
    const T value = lexical_cast<T>(text);
    if (value != expected)
        std::abort();
    if (lexical_cast<T>(lexical_cast<std::string>(value)) != value)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    check<int>(text);
    check<unsigned int>(text);
    check<unsigned short>(text);
    check<unsigned long long>(text);
    check<long long>(text);
    return 0;
}
