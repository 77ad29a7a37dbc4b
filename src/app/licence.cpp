#include "app/licence.h"

#include "app/base64_url.h"

#include <openssl/evp.h>

#include <memory>
#include <optional>
#include <string>

namespace fleetwise {

namespace {

constexpr std::size_t maximumBytes = 64 << 10;
constexpr std::size_t keyBytes = 32;
constexpr std::size_t signatureBytes = 64;

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

bool isSignedBy(const std::string& key, const std::string& payload, const std::string& signature) {
    const Key publicKey(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(key), key.size()),
        &EVP_PKEY_free);
    const Context context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    return publicKey && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytesOf(signature), signature.size(), bytesOf(payload),
                            payload.size()) == 1;
}

}  // namespace

std::string_view licencePublicKey() {
    return FLEETWISE_LICENCE_KEY;
}

bool isValidLicence(std::string_view text, std::string_view publicKey) {
    const std::size_t dot = text.find('.');
    if (text.size() > maximumBytes || dot == std::string_view::npos) return false;
    const auto key = decodeBase64Url(publicKey);
    const auto payload = decodeBase64Url(text.substr(0, dot));
    const auto signature = decodeBase64Url(text.substr(dot + 1));
    return key && key->size() == keyBytes && payload && !payload->empty() && signature &&
           signature->size() == signatureBytes && isSignedBy(*key, *payload, *signature);
}

}  // namespace fleetwise
