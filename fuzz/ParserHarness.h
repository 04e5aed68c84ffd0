// What the response-parser fuzz targets share: how an input becomes a
// document, a parser choice and a cipher context, and the run of one parser
// over it followed by a good document on the same parser object.
//
// Input layout: one mode byte, then the document, then optional inner
// fragments, each introduced by a NUL byte (a NUL can never be part of a
// well-formed document, so nothing is lost by splitting there):
//
//     mode | document [ NUL fragment1 [ NUL fragment2 ... ] ]
//
// The mode byte's low two bits choose the cipher context (0: none, 1: one
// without a key, 2 and 3: the keyed one), the other six choose the parser of
// the family. In the document, "$S<n>" stands for fragment n sealed with the
// key of the keyed context and "$B<n>" for fragment n in Base64 (n is 1 to 9;
// a missing fragment is empty). So the fuzzer mutates the plain fragment
// behind an encrypted or Base64 payload directly, and with the keyed context
// the decryption succeeds and the fragment's own grammar is explored.
#ifndef ZUVO_FUZZ_PARSERHARNESS_H
#define ZUVO_FUZZ_PARSERHARNESS_H

#include <zuvolib/zuvolib.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace fuzz {

using namespace velmora::zuvolib;
typedef ParentParser::CipherContext Context;

/// The context whose key seals every "$S" placeholder and the good documents.
inline const Context& keyedContext() {
    static const Context context(new krel::KrelContext(std::vector<unsigned char>(32, 0x42)));
    return context;
}

inline std::string seal(const std::string& plain) {
    const std::vector<unsigned char> sealed =
        keyedContext()->encrypt(std::vector<unsigned char>(plain.begin(), plain.end()));
    return std::string(sealed.begin(), sealed.end());
}

/// One fuzz input taken apart (see the layout above).
class Input {
public:
    unsigned int parserChoice = 0;
    Context context;
    std::string document;

    Input(const std::uint8_t* data, std::size_t size) {
        static const Context keyless(new krel::KrelContext());
        if (size == 0)
            return;
        const unsigned int mode = data[0];
        parserChoice = mode >> 2;
        switch (mode & 3) {
        case 0: break;
        case 1: context = keyless; break;
        default: context = keyedContext(); break;
        }
        const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
        std::vector<std::string> fragments;
        std::string::size_type end = rest.find('\0');
        const std::string text = rest.substr(0, end);
        while (end != std::string::npos) {
            const std::string::size_type next = rest.find('\0', end + 1);
            fragments.push_back(
                rest.substr(end + 1, next == std::string::npos ? next : next - end - 1));
            end = next;
        }
        document = expand(text, fragments);
    }

private:
    static std::string expand(const std::string& text, const std::vector<std::string>& fragments) {
        std::string out;
        out.reserve(text.size());
        for (std::string::size_type i = 0; i < text.size(); ++i) {
            const bool placeholder = text[i] == '$' && i + 2 < text.size() &&
                                     (text[i + 1] == 'S' || text[i + 1] == 'B') &&
                                     text[i + 2] >= '1' && text[i + 2] <= '9';
            if (!placeholder) {
                out += text[i];
                continue;
            }
            const std::size_t n = static_cast<std::size_t>(text[i + 2] - '1');
            const std::string fragment = n < fragments.size() ? fragments[n] : std::string();
            out +=
                text[i + 1] == 'S' ? seal(fragment) : Velmora::QRXClient::Base64::encode(fragment);
            i += 2;
        }
        return out;
    }
};

inline void require(bool condition, const char* parser, const char* what) {
    if (condition)
        return;
    std::cerr << parser << ": " << what << std::endl;
    std::abort();
}

/// A response envelope with an encrypted header payload carrying the times
/// 1000 and 2000, and `body` as the result.
inline std::string goodDocument(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<zuvo:response "
           "xmlns:zuvo=\"http://www.zuvo.example/qrx/zuvo/2.7\" version=\"2.7\">"
           "<zuvo:responseheader><zuvo:status><zuvo:success>true</zuvo:success></zuvo:status>"
           "<zuvo:payload encrypted=\"true\">" +
           seal("<zuvo:servertime>1000</zuvo:servertime><zuvo:clienttime>2000</zuvo:clienttime>") +
           "</zuvo:payload></zuvo:responseheader><zuvo:result method=\"call\">" + body +
           "</zuvo:result></zuvo:response>";
}

/// Parses the input with a fresh `Parser`: the parse succeeds (and leaves no
/// element open), returns false (and then `showError` works on the same
/// text), or throws one of the exceptions `parse` documents. Then the same
/// parser and `Expat` holder must read `good` in full: `filled` checks the
/// record, and the header must carry the good document's values. Nothing a
/// hostile document leaves behind may spoil the next one.
template <typename Parser, typename Record>
void parseThenReuse(const Input& input, const std::string& good, bool (*filled)(const Record&)) {
    ExpatParser expat;
    Record record;
    Parser parser(expat, record);
    parser.setReportSink([](const std::string&) {}); // reports go nowhere
    try {
        if (parser.parse(input.document, input.context))
            require(parser.GetContext() == ParentParser::TAG_START, parser.getParserName(),
                    "an element is still open after a successful parse");
        else
            parser.showError(input.document);
    } catch (const std::runtime_error&) {    // decryption, malformed payload
    } catch (const std::invalid_argument&) { // payload that is not Base64
    }
    record = Record();
    require(parser.parse(good, keyedContext()), parser.getParserName(),
            "good document rejected after fuzz input");
    require(record.success && record.serverTime == 1000 && record.clientTime == 2000,
            parser.getParserName(), "good document's header misread after fuzz input");
    require(filled(record), parser.getParserName(),
            "good document's body misread after fuzz input");
}

} // namespace fuzz

#endif
