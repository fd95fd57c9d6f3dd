#include "UpdateLogic.hpp"

#include "UpdaterWorld.hpp"

namespace vantrel {
namespace {

using fakes::base64;
using UpdateLogic::verify;

std::string fromHex(std::string_view hex) {
    std::string out(hex.size() / 2, '\0');
    sodium_hex2bin(reinterpret_cast<unsigned char*>(out.data()), out.size(), hex.data(), hex.size(),
                   nullptr, nullptr, nullptr);
    return out;
}

TEST(UpdateLogic, IsNewerComparesDigitRunsAsNumbersAndTheRestAsText) {
    using Pair = std::pair<const char*, const char*>;
    // Where one side has a digit and the other not, the characters decide.
    for (const auto& [a, than] :
         {Pair{"1.10", "1.9"}, Pair{"2.0", "1.99.99"}, Pair{"1.0.1", "1.0"},
          Pair{"1.0b10", "1.0b9"}, Pair{"1.a", "1.1"},
          Pair{"123456789012345678901234567890", "123456789012345678901234567889"}}) {
        EXPECT_TRUE(UpdateLogic::isNewer(a, than)) << a << " than " << than;
        EXPECT_FALSE(UpdateLogic::isNewer(than, a)) << than << " than " << a;
    }
    // Leading zeros do not count.
    for (const auto& [a, b] :
         {Pair{"1.0", "1.0"}, Pair{"", ""}, Pair{"2.0 beta", "2.0 beta"}, Pair{"1.01", "1.1"}}) {
        EXPECT_FALSE(UpdateLogic::isNewer(a, b) || UpdateLogic::isNewer(b, a)) << a << " " << b;
    }
}

TEST(UpdateLogic, SystemSupportsComparesUpToThreeNumbers) {
    const OperatingSystemVersion ventura{13, 6, 1};
    EXPECT_TRUE(UpdateLogic::systemSupports(std::nullopt, ventura));
    EXPECT_TRUE(UpdateLogic::systemSupports("14", {14, 0, 0}));
    // Empty parts are dropped and parts that are not numbers left out.
    const std::pair<const char*, bool> cases[] = {{"", true},         {"14", false},
                                                  {"13.6.1.9", true}, {"13.6.2", false},
                                                  {"13..6", true},    {"13.beta.7", false}};
    for (const auto& [minimum, supported] : cases) {
        EXPECT_EQ(UpdateLogic::systemSupports(minimum, ventura), supported) << minimum;
    }
}

TEST(UpdateLogic, VerifyAcceptsTheRfc8032Vectors) {
    // Tests 1 to 3 of RFC 8032, section 7.1: public key, message, signature.
    const char* vectors[][3] = {
        {"d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a", "",
         "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33bacc61e"
         "39701cf9b46bd25bf5f0595bbe24655141438e7a100b"},
        {"3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c", "72",
         "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da085ac1e43e15996e458f"
         "3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00"},
        {"fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025", "af82",
         "6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac18ff9b538d16f290ae67"
         "f760984dc6594a7c15e9716ed28dc027beceea1ec40a"},
    };
    for (const auto& [key, message, signature] : vectors) {
        const std::string sig = base64(fromHex(signature));
        EXPECT_TRUE(verify(fromHex(message), sig, base64(fromHex(key))));
        EXPECT_FALSE(verify(fromHex(message) + "x", sig, base64(fromHex(key))));
    }
    // Another key's signature.
    EXPECT_FALSE(
        verify(fromHex("72"), base64(fromHex(vectors[1][2])), base64(fromHex(vectors[2][0]))));
}

TEST(UpdateLogic, VerifyOwnSignatureAndEveryMalformedInput) {
    const fakes::SigningKey signer;
    const std::string archive = fakes::Archive{.padding = 5000}.bytes();
    const std::string key = base64(signer.publicKey);
    const std::string rawSignature = signer.sign(archive);
    const std::string signature = base64(rawSignature);
    EXPECT_TRUE(verify(archive, signature, key));
    for (const std::size_t at : {std::size_t{0}, archive.size() / 2, archive.size() - 1}) {
        std::string flipped = archive;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x01);
        EXPECT_FALSE(verify(flipped, signature, key)) << at;
    }
    // Base64 of the wrong length, raw bytes, loose or broken Base64: false, never an error.
    for (const std::string& bad :
         {base64(rawSignature.substr(0, 63)), base64(rawSignature + '\0'), rawSignature,
          signature.substr(0, signature.find('=')), std::string("not base64!")}) {
        EXPECT_FALSE(verify(archive, bad, key)) << bad;
    }
    for (const std::string& bad : {base64(signer.publicKey.substr(0, 31)),
                                   base64(signer.publicKey + '!'), signer.publicKey, key + "="}) {
        EXPECT_FALSE(verify(archive, signature, bad)) << bad;
    }
}

} // namespace
} // namespace vantrel
