#include "foundation/sha256.h"

#include "foundation/regular_file.h"

#include <fmt/format.h>
#include <openssl/evp.h>

#include <array>
#include <memory>

namespace fleetwise {

namespace {

using Digest = std::array<unsigned char, 32>;

std::string hexadecimal(const Digest& digest) {
    return fmt::format("{:02x}", fmt::join(digest, ""));
}

}  // namespace

std::optional<std::string> sha256OfText(std::string_view text) {
    Digest digest{};
    if (EVP_Digest(text.data(), text.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1)
        return {};
    return hexadecimal(digest);
}

std::optional<std::string> sha256OfFile(const std::string& path) {
    const auto file = RegularFile::open(path);
    if (!file) return {};
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                          &EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) return {};
    std::array<char, 65536> block{};
    for (std::uint64_t offset = 0;;) {
        const auto got = file->read(offset, block);
        if (!got || EVP_DigestUpdate(context.get(), block.data(), *got) != 1) return {};
        if (*got == 0) break;
        offset += *got;
    }
    Digest digest{};
    if (EVP_DigestFinal_ex(context.get(), digest.data(), nullptr) != 1) return {};
    return hexadecimal(digest);
}

}  // namespace fleetwise
