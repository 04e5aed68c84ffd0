// Table-driven Base64 codec with a strict decoder.

#include "QRXClient/Base64.h"

#include <stdexcept>

namespace Velmora {
namespace QRXClient {
namespace {

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Decoding classes for every byte value.
enum : unsigned char { kInvalid = 0xFF, kSpace = 0xFE, kPad = 0xFD };

struct DecodeTable {
    unsigned char v[256];
    DecodeTable() {
        for (int i = 0; i < 256; ++i)
            v[i] = kInvalid;
        for (int i = 0; i < 64; ++i)
            v[static_cast<unsigned char>(kAlphabet[i])] = static_cast<unsigned char>(i);
        for (unsigned char c : {' ', '\t', '\r', '\n'})
            v[c] = kSpace;
        v[static_cast<unsigned char>('=')] = kPad;
    }
};

const DecodeTable kDecode;

[[noreturn]] void fail(const char* what, std::size_t offset) {
    throw std::invalid_argument(std::string("Base64: ") + what + " at byte offset " +
                                std::to_string(offset));
}

// Decodes [text, text + size) and appends the bytes to `out`, which is
// sized for the most a text of that length can hold and cut to what it held.
template <typename Out> void decodeInto(const unsigned char* text, std::size_t size, Out& out) {
    const std::size_t start = out.size();
    out.resize(start + size / 4 * 3 + 3);
    unsigned char* const first = reinterpret_cast<unsigned char*>(&out[0]) + start;
    unsigned char* o = first;
    unsigned int acc = 0;
    int sextets = 0; // data characters in the current quantum
    int pads = 0;    // padding characters seen
    std::size_t lastData = 0;
    for (std::size_t i = 0; i < size; ++i) {
        // Whole quanta of four data characters, the bulk of any text, at once.
        while (sextets == 0 && pads == 0 && i + 4 <= size) {
            const unsigned int a = kDecode.v[text[i]], b = kDecode.v[text[i + 1]],
                               c = kDecode.v[text[i + 2]], d = kDecode.v[text[i + 3]];
            if ((a | b | c | d) >= 64)
                break; // not four data characters: one at a time below
            const unsigned int v = (a << 18) | (b << 12) | (c << 6) | d;
            *o++ = static_cast<unsigned char>(v >> 16);
            *o++ = static_cast<unsigned char>(v >> 8);
            *o++ = static_cast<unsigned char>(v);
            lastData = i + 3;
            i += 4;
        }
        if (i == size)
            break;
        const unsigned char c = kDecode.v[text[i]];
        if (c == kSpace)
            continue;
        if (c == kInvalid)
            fail("invalid character", i);
        if (c == kPad) {
            if (sextets < 2)
                fail("misplaced padding", i);
            ++pads;
            if (sextets + pads > 4)
                fail("too much padding", i);
            continue;
        }
        if (pads != 0)
            fail("data after padding", i);
        lastData = i;
        acc = (acc << 6) | c;
        if (++sextets == 4) {
            *o++ = static_cast<unsigned char>(acc >> 16);
            *o++ = static_cast<unsigned char>(acc >> 8);
            *o++ = static_cast<unsigned char>(acc);
            acc = 0;
            sextets = 0;
        }
    }
    if (sextets == 1)
        fail("dangling final character", lastData);
    if (pads != 0 && sextets + pads != 4)
        fail("incomplete padding", size);
    if (sextets == 2) {
        *o++ = static_cast<unsigned char>(acc >> 4);
    } else if (sextets == 3) {
        *o++ = static_cast<unsigned char>(acc >> 10);
        *o++ = static_cast<unsigned char>(acc >> 2);
    }
    out.resize(start + static_cast<std::size_t>(o - first));
}

} // namespace

std::string Base64::encode(const std::string& data) {
    const unsigned char* in = reinterpret_cast<const unsigned char*>(data.data());
    const std::size_t n = data.size();
    std::string out((n + 2) / 3 * 4, '=');
    std::size_t o = 0;
    std::size_t i = 0;
    for (; i + 3 <= n; i += 3) {
        const unsigned int v = (in[i] << 16) | (in[i + 1] << 8) | in[i + 2];
        out[o++] = kAlphabet[v >> 18];
        out[o++] = kAlphabet[(v >> 12) & 63];
        out[o++] = kAlphabet[(v >> 6) & 63];
        out[o++] = kAlphabet[v & 63];
    }
    if (n - i == 1) {
        const unsigned int v = in[i] << 16;
        out[o++] = kAlphabet[v >> 18];
        out[o++] = kAlphabet[(v >> 12) & 63];
    } else if (n - i == 2) {
        const unsigned int v = (in[i] << 16) | (in[i + 1] << 8);
        out[o++] = kAlphabet[v >> 18];
        out[o++] = kAlphabet[(v >> 12) & 63];
        out[o++] = kAlphabet[(v >> 6) & 63];
    }
    return out;
}

std::string Base64::decode(const std::string& text) {
    std::string out;
    decodeInto(reinterpret_cast<const unsigned char*>(text.data()), text.size(), out);
    return out;
}

std::vector<unsigned char> Base64::decode(const std::vector<unsigned char>& text) {
    std::vector<unsigned char> out;
    decodeInto(text.data(), text.size(), out);
    return out;
}

} // namespace QRXClient
} // namespace Velmora
