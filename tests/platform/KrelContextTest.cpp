#include <krel/KrelContext.h>

#include <gtest/gtest.h>

#include <cctype>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

typedef std::vector<unsigned char> Bytes;

Bytes bytes(const std::string& s) {
    return Bytes(s.begin(), s.end());
}

std::string decryptError(krel::KrelContext& context, const Bytes& text) {
    try {
        context.decrypt(text);
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "no error";
}

TEST(KrelContext, RoundTripsWithFreshNonces) {
    krel::KrelContext context(Bytes(32, 7));
    EXPECT_EQ(context.encryptionEnabled, 1);
    const Bytes plain = bytes(std::string("<zuvo:rc>\0\xff</zuvo:rc>", 22));
    const Bytes a = context.encrypt(plain);
    const Bytes b = context.encrypt(plain);
    EXPECT_NE(a, b) << "a nonce was reused";
    EXPECT_EQ(context.decrypt(a), plain);
    EXPECT_EQ(context.decrypt(b), plain);
    EXPECT_EQ(context.decrypt(context.encrypt(Bytes())), Bytes());
    // The sealed form is printable Base64; white space around it is ignored.
    for (unsigned char c : a)
        EXPECT_TRUE(std::isalnum(c) || c == '+' || c == '/' || c == '=');
    EXPECT_EQ(context.decrypt(bytes("\n\t " + std::string(a.begin(), a.end()) + "\n")), plain);
}

TEST(KrelContext, DetectsWrongKeyTamperingAndTruncation) {
    krel::KrelContext context(Bytes(32, 1));
    krel::KrelContext other(Bytes(32, 2));
    const Bytes sealed = context.encrypt(bytes("movie ticket"));

    EXPECT_NE(decryptError(other, sealed).find("wrong key or tampered"), std::string::npos);

    Bytes tampered = sealed;
    tampered[20] = tampered[20] == 'A' ? 'B' : 'A';
    EXPECT_NE(decryptError(context, tampered).find("wrong key or tampered"), std::string::npos);

    EXPECT_NE(decryptError(context, bytes("AAAA")).find("truncated"), std::string::npos);
    EXPECT_NE(decryptError(context, bytes("not*base64")).find("not valid Base64"),
              std::string::npos);
}

// A thread reuses one keyed cipher while key and direction stay the same:
// keys, directions and failed openings interleaved must never carry over,
// on the first thread as on a new one.
TEST(KrelContext, InterleavedKeysDirectionsAndFailures) {
    krel::KrelContext a(Bytes(32, 1));
    krel::KrelContext b(Bytes(32, 2));
    const Bytes fromA = a.encrypt(bytes("from a"));
    const Bytes fromB = b.encrypt(bytes("from b"));
    Bytes tampered = fromA;
    tampered[20] = tampered[20] == 'A' ? 'B' : 'A';
    const auto run = [&] {
        const struct {
            krel::KrelContext& context;
            const Bytes& text;
            const char* plain; // null: the opening fails
        } steps[] = {{a, fromA, "from a"}, {b, fromA, nullptr},    {a, tampered, nullptr},
                     {a, fromA, "from a"}, {b, fromB, "from b"},   {a, fromB, nullptr},
                     {b, fromB, "from b"}, {a, tampered, nullptr}, {b, fromB, "from b"}};
        for (std::size_t i = 0; i < sizeof(steps) / sizeof(steps[0]); ++i) {
            SCOPED_TRACE("step " + std::to_string(i));
            const std::string error = decryptError(steps[i].context, steps[i].text);
            if (steps[i].plain) {
                EXPECT_EQ(error, "no error");
                EXPECT_EQ(steps[i].context.decrypt(steps[i].text), bytes(steps[i].plain));
            } else {
                EXPECT_NE(error.find("wrong key or tampered"), std::string::npos) << error;
            }
            // Sealing in between changes direction: both ways still agree.
            EXPECT_EQ(steps[i].context.decrypt(steps[i].context.encrypt(bytes("x"))), bytes("x"));
        }
    };
    run();
    std::thread other(run);
    other.join();
}

TEST(KrelContext, KeylessAndBadKeys) {
    krel::KrelContext keyless;
    EXPECT_EQ(keyless.encryptionEnabled, 0);
    // Without a key: the identity cipher over Base64 for text; sealed bytes
    // (here a real key's output) cannot be opened.
    EXPECT_EQ(keyless.encrypt(bytes("<a>\xc3\xa9</a>\n")), bytes("PGE+w6k8L2E+Cg=="));
    EXPECT_EQ(keyless.decrypt(bytes("PGE+w6k8L2E+Cg==")), bytes("<a>\xc3\xa9</a>\n"));
    krel::KrelContext keyed(Bytes(32, 7));
    EXPECT_THROW(keyless.decrypt(keyed.encrypt(bytes("<a/>"))), std::runtime_error);
    EXPECT_THROW(keyless.decrypt(bytes("eAB5")), std::runtime_error); // "x\0y"
    EXPECT_THROW(keyless.decrypt(bytes("x")), std::runtime_error);
    EXPECT_THROW(krel::KrelContext(Bytes(16, 0)), std::invalid_argument);
    EXPECT_THROW(krel::KrelContext{Bytes()}, std::invalid_argument);
}

} // namespace
