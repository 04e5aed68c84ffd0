// Stand-in for the platform's Base64 codec (RFC 4648, standard alphabet).
#ifndef QRXCLIENT_BASE64_H
#define QRXCLIENT_BASE64_H

#include <string>
#include <vector>

#define QRXCLIENT_API __attribute__((visibility("default")))

namespace Velmora {
namespace QRXClient {

class QRXCLIENT_API Base64 {
public:
    /// Standard Base64 of `data`: alphabet A-Z a-z 0-9 + /, "=" padding, no
    /// line breaks.
    static std::string encode(const std::string& data);

    /// Decodes `text`. ASCII white space (space, tab, CR, LF) is skipped
    /// anywhere; the final padding may be present or left out. Throws
    /// `std::invalid_argument` naming the byte offset for any other character
    /// outside the alphabet, for data after padding, for incomplete padding
    /// and for a dangling final character. The empty text decodes to nothing.
    static std::string decode(const std::string& text);

    /// As above, for text held in a byte vector.
    static std::vector<unsigned char> decode(const std::vector<unsigned char>& text);
};

} // namespace QRXClient
} // namespace Velmora

#endif
