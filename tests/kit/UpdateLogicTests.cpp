#include "UpdateLogic.hpp"

#include "UpdaterWorld.hpp"

namespace vantrel {
namespace {

using UpdateLogic::isNewer;
using UpdateLogic::systemSupports;
using UpdateLogic::verify;

std::string fromHex(std::string_view hex) {
    std::string out(hex.size() / 2, '\0');
    sodium_hex2bin(reinterpret_cast<unsigned char*>(out.data()), out.size(), hex.data(), hex.size(),
                   nullptr, nullptr, nullptr);
    return out;
}

std::string base64(std::string_view raw) {
    return fakes::base64(reinterpret_cast<const unsigned char*>(raw.data()), raw.size());
}

TEST(UpdateLogic, IsNewerComparesDigitRunsAsNumbersAndTheRestAsText) {
    EXPECT_TRUE(isNewer("1.10", "1.9"));
    EXPECT_FALSE(isNewer("1.9", "1.10"));
    EXPECT_TRUE(isNewer("2.0", "1.99.99"));
    EXPECT_TRUE(isNewer("1.0.1", "1.0"));
    EXPECT_TRUE(isNewer("123456789012345678901234567890", "123456789012345678901234567889"));
    for (const char* version : {"1.0", "", "2.0 beta"}) {
        EXPECT_FALSE(isNewer(version, version)) << version;
    }
    // Leading zeros do not count; suffixes only make a text longer; where one side has a
    // digit and the other not, the characters decide.
    EXPECT_FALSE(isNewer("1.01", "1.1"));
    EXPECT_FALSE(isNewer("1.1", "1.01"));
    EXPECT_TRUE(isNewer("1.0b2", "1.0"));
    EXPECT_TRUE(isNewer("1.0b10", "1.0b9"));
    EXPECT_TRUE(isNewer("1.a", "1.1"));
}

TEST(UpdateLogic, SystemSupportsComparesUpToThreeNumbers) {
    const OperatingSystemVersion ventura{13, 6, 1};
    EXPECT_TRUE(systemSupports(std::nullopt, ventura));
    EXPECT_TRUE(systemSupports("", ventura));
    EXPECT_TRUE(systemSupports("14", {14, 0, 0}));
    EXPECT_FALSE(systemSupports("14", ventura));
    EXPECT_TRUE(systemSupports("13.6.1.9", ventura));
    EXPECT_FALSE(systemSupports("13.6.2", ventura));
    // Empty parts are dropped and parts that are not numbers left out.
    EXPECT_TRUE(systemSupports("13..6", ventura));
    EXPECT_FALSE(systemSupports("13.beta.7", ventura));
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
        EXPECT_TRUE(verify(fromHex(message), base64(fromHex(signature)), base64(fromHex(key))));
        EXPECT_FALSE(
            verify(fromHex(message) + "x", base64(fromHex(signature)), base64(fromHex(key))));
    }
    EXPECT_FALSE(
        verify(fromHex("72"), base64(fromHex(vectors[1][2])), base64(fromHex(vectors[2][0]))));
}

TEST(UpdateLogic, VerifyOwnSignatureAndEveryMalformedInput) {
    const fakes::SigningKey signer;
    std::string archive(5000, '\0');
    for (std::size_t i = 0; i < archive.size(); ++i) {
        archive[i] = static_cast<char>(i * 7);
    }
    const std::string key = signer.publicBase64();
    const std::string signature = signer.sign(archive);
    EXPECT_TRUE(verify(archive, signature, key));

    for (const std::size_t at : {std::size_t{0}, std::size_t{2500}, std::size_t{4999}}) {
        std::string flipped = archive;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x80);
        EXPECT_FALSE(verify(flipped, signature, key)) << at;
    }
    std::string rawSignature(64, '\0');
    sodium_base642bin(reinterpret_cast<unsigned char*>(rawSignature.data()), 64, signature.data(),
                      signature.size(), nullptr, nullptr, nullptr, sodium_base64_VARIANT_ORIGINAL);
    const std::string rawKey(reinterpret_cast<const char*>(signer.publicKey), 32);
    const std::string unpadded = signature.substr(0, signature.find('='));
    std::string spaced = signature;
    spaced.insert(8, " ");
    // Valid Base64 of the wrong length, raw bytes, loose or broken Base64: false, no error.
    for (const auto& [badSignature, badKey] : std::vector<std::pair<std::string, std::string>>{
             {base64(rawSignature.substr(0, 63)), key},
             {base64(rawSignature + '\0'), key},
             {"", key},
             {unpadded, key},
             {spaced, key},
             {"not base64!", key},
             {rawSignature, key},
             {signature, base64(rawKey.substr(0, 31))},
             {signature, base64(rawKey + '!')},
             {signature, ""},
             {signature, rawKey},
             {signature, key + "="},
         }) {
        EXPECT_FALSE(verify(archive, badSignature, badKey)) << badSignature << " " << badKey;
    }
}

} // namespace
} // namespace vantrel
