#include "console/dicom/DicomPicture.h"

#include "Check.h"

#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <stdexcept>

/// Any bytes are rendered as a picture or refused with a reason; nothing else may happen.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto path = std::filesystem::temp_directory_path() / ("picture-" + std::to_string(getpid()) + ".dcm");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        const Console::DicomPicture picture = Console::RenderDicom(path, {64, 64});
        CHECK(picture.png.starts_with("\x89PNG") && picture.frames >= 1);
        CHECK(std::isfinite(picture.proportion) && picture.proportion > 0);
        CHECK(Console::WhyNoPictureQuickly(path).empty());
    } catch (const std::runtime_error& refused) {
        CHECK(*refused.what() != '\0');
    }
    return 0;
}
