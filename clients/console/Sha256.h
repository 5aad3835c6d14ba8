#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace Console {

/// The SHA-256 digest of bytes that arrive in pieces. Used by one thread at a time.
class Sha256 {
public:
    Sha256();
    ~Sha256();
    Sha256(Sha256&&) noexcept;

    void Add(const void* bytes, std::size_t size);

    /// Returns the digest of all bytes as 64 hexadecimal digits in lower case. Nothing can be added afterwards.
    std::string Hex();

private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

/// Returns the digest of a text.
std::string Sha256Of(std::string_view bytes);

}  // namespace Console
