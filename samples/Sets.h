#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace Samples {

/// One file of the samples.
struct SampleFile {
    std::string path;  ///< below the folder of the samples, "fmx18/fmx18-01.dcm"

    /// Draws and writes the file's content to the given place, which may be another than `path`. Throws
    /// `std::runtime_error` when it cannot be written.
    std::function<void(const std::filesystem::path& file)> write;
};

/// All samples, set by set. Nothing is drawn before `write` is called; each call writes the same bytes.
std::vector<SampleFile> AllSamples();

}  // namespace Samples
