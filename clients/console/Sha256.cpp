#include "console/Sha256.h"

#include <fmt/format.h>
#include <openssl/evp.h>
#include <stdexcept>

namespace Console {
namespace {

void Require(int result) {
    if (result != 1) throw std::runtime_error("the system's cryptographic library can't make checksums");
}

}  // namespace

void Sha256::Free::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

Sha256::Sha256() : context_(EVP_MD_CTX_new()) { Require(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr)); }
Sha256::~Sha256() = default;
Sha256::Sha256(Sha256&&) noexcept = default;

void Sha256::Add(const void* bytes, std::size_t size) { Require(EVP_DigestUpdate(context_.get(), bytes, size)); }

std::string Sha256::Hex() {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    Require(EVP_DigestFinal_ex(context_.get(), digest, &size));
    std::string hex;
    for (unsigned i = 0; i < size; ++i) hex += fmt::format("{:02x}", digest[i]);
    return hex;
}

std::string Sha256Of(std::string_view bytes) {
    Sha256 digest;
    digest.Add(bytes.data(), bytes.size());
    return digest.Hex();
}

}  // namespace Console
