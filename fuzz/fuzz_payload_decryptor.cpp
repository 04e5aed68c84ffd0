// The payload reader on arbitrary bytes, both ways in:
// - as the payload text itself: encrypted (keyed context, the key the seed
//   corpus is sealed with), encrypted without a context, and plain Base64;
//   only the documented exceptions may come out;
// - as the plain fragment behind a payload: SimpleParser reads it directly,
//   and the same bytes Base64-encoded or sealed must read exactly the same
//   through PayloadDecryptor (same outcome, same values).
#include <zuvolib/zuvolib.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace velmora::zuvolib;

namespace {

typedef std::tr1::shared_ptr<krel::KrelContext> Context;
typedef std::vector<unsigned char> Bytes;

const Context& keyed() {
    static const Context context(new krel::KrelContext(Bytes(32, 0x42)));
    return context;
}

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::cerr << what << std::endl;
    std::abort();
}

// What a reader made of a fragment: failed, or the values of the names a
// payload carries.
struct Reading {
    bool ok = false;
    std::vector<std::string> values;

    void take(const SimpleParser& reader) {
        ok = true;
        for (const char* name :
             {"xml", "zuvo:servertime", "zuvo:clienttime", "zuvo:cticket", "zuvo:rs", "a"})
            values.push_back(reader.getValue(name));
        values.push_back(reader.getAttr("zuvo:cticket", "expiration"));
    }
    bool operator==(const Reading& other) const { return ok == other.ok && values == other.values; }
};

// Reads `payload`; a malformed fragment is the one expected failure.
Reading decrypt(const Context& context, const std::string& payload, bool encrypted) {
    Reading reading;
    try {
        reading.take(PayloadDecryptor(context, payload, encrypted));
    } catch (const std::runtime_error&) {
    }
    return reading;
}

// Only the documented exceptions leave the constructor.
void survive(const Context& context, const std::string& payload, bool encrypted) {
    try {
        PayloadDecryptor(context, payload, encrypted);
    } catch (const ZuvoExceptionNoCipherContext&) {
        require(encrypted && !context, "no-context exception with a context");
    } catch (const std::runtime_error&) {
    } catch (const std::invalid_argument&) {
        require(!encrypted, "argument error from decryption");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    survive(keyed(), text, true);
    survive(Context(), text, true);
    survive(Context(), text, false);

    Reading direct;
    try {
        SimpleParser reader;
        reader.parse(text);
        direct.take(reader);
    } catch (const std::runtime_error&) {
    }
    const Bytes plain(text.begin(), text.end());
    const Bytes sealed = keyed()->encrypt(plain);
    require(decrypt(keyed(), std::string(sealed.begin(), sealed.end()), true) == direct,
            "sealed fragment read differently");
    require(decrypt(Context(), Velmora::QRXClient::Base64::encode(text), false) == direct,
            "Base64 fragment read differently");
    return 0;
}
