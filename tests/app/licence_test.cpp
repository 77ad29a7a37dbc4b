#include "app/licence.h"

#include "app/base64_url.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <memory>

namespace fleetwise::testing {
namespace {

std::string encoded(std::string_view bytes) {
    std::string text(4 * (bytes.size() / 3 + 1), '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                       reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    for (char& digit : text) {
        if (digit == '+') digit = '-';
        if (digit == '/') digit = '_';
    }
    return text.substr(0, text.find('='));
}

/// Who issues licences.
class Issuer {
public:
    std::string publicKey() const {
        std::string bytes(32, '\0');
        std::size_t size = bytes.size();
        EVP_PKEY_get_raw_public_key(key.get(), reinterpret_cast<unsigned char*>(bytes.data()),
                                    &size);
        return bytes;
    }

    std::string signature(const std::string& payload) const {
        const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                              &EVP_MD_CTX_free);
        std::string bytes(64, '\0');
        std::size_t size = bytes.size();
        EXPECT_EQ(EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key.get()), 1);
        EXPECT_EQ(
            EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(bytes.data()), &size,
                           reinterpret_cast<const unsigned char*>(payload.data()), payload.size()),
            1);
        return bytes;
    }

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{
        EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), &EVP_PKEY_free};
};

std::string withBitFlipped(std::string bytes) {
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 4);
    return bytes;
}

TEST(Licence, isValidOnlyAsItWasSigned) {
    const Issuer issuer;
    const std::string payload = R"({"name":"Jürgen","seats":1})";
    const std::string signature = issuer.signature(payload);
    const std::string key = encoded(issuer.publicKey());
    const std::string valid = encoded(payload) + "." + encoded(signature);
    const struct {
        const char* name;
        std::string text;
        std::string key;
        bool isValid;
    } rows[] = {
        {"as signed", valid, key, true},
        {"padded", valid + "==", key + "=", true},
        {"payload changed", encoded(withBitFlipped(payload)) + "." + encoded(signature), key,
         false},
        {"signature changed", encoded(payload) + "." + encoded(withBitFlipped(signature)), key,
         false},
        {"key changed", valid, encoded(withBitFlipped(issuer.publicKey())), false},
        {"another issuer's", valid, encoded(Issuer().publicKey()), false},
        {"built without a key", valid, "", false},
        {"key too short", valid, encoded(issuer.publicKey().substr(1)), false},
        {"truncated", valid.substr(0, valid.size() - 2), key, false},
        {"signature too long", encoded(payload) + "." + encoded(signature + "x"), key, false},
        {"no dot", encoded(payload), key, false},
        {"two dots", valid + ".", key, false},
        {"nothing before the dot", "." + encoded(issuer.signature("")), key, false},
        {"a line's end behind it", valid + "\n", key, false},
        {"empty", "", key, false},
        {"huge", std::string(1'000'000, 'A') + "." + encoded(signature), key, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(isValidLicence(row.text, row.key), row.isValid) << row.name;
    }
}

TEST(Base64Url, takesExactlyWhatEncodingGives) {
    const struct {
        const char* text;
        std::optional<std::string> bytes;
    } rows[] = {
        {"", ""},        {"Zg", "f"},         {"Zg==", "f"}, {"Zm8", "fo"}, {"Zm8=", "fo"},
        {"Zm9v", "foo"}, {"-_8", "\xFB\xFF"}, {"+/8", {}},   {"Z", {}},     {"Zg=", {}},
        {"Zm9v=", {}},   {"Zm9v====", {}},    {"=", {}},     {"Zh", {}},    {"Zm9", {}},
        {"Z g", {}},     {"Zg==Zg==", {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decodeBase64Url(row.text), row.bytes) << row.text;
    }
}

}  // namespace
}  // namespace fleetwise::testing
