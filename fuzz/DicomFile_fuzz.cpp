#include "console/dicom/DicomFile.h"

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

/// Any bytes are read as a radiograph or refused with a reason; nothing else may happen.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto path =
        std::filesystem::temp_directory_path() / ("radiograph-" + std::to_string(getpid()) + ".dcm");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        const auto read = Console::ReadRadiograph(path);
        if (read.sopInstanceUID.empty() || read.teeth.size() % 3 != 0) std::abort();
    } catch (const std::runtime_error& refused) {
        if (*refused.what() == '\0') std::abort();
    }
    return 0;
}
