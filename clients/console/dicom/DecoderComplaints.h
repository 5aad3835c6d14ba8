#pragma once

#include <string>

namespace Console {

/// Collects the complaints of the toolkit's decoders on this thread, which decode damaged pixels to noise
/// and only log that they did.
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
