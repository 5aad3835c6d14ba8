#pragma once

#include <string>

namespace Console {

/// Collects the warnings of the toolkit's decoders on this thread. The decoders turn damaged pixels into noise and
/// report this only in their log.
class DecoderComplaints {
public:
    DecoderComplaints();
    ~DecoderComplaints();
    DecoderComplaints(const DecoderComplaints&) = delete;

    /// Throws `std::runtime_error` with the first complaint since this object was created, if there is one.
    void Check() const;

private:
    std::string first_;
};

}  // namespace Console
