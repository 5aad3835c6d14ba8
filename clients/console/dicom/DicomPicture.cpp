#include "console/dicom/DicomPicture.h"

#include "console/dicom/DicomFile.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmimage/diregist.h>
#include <dcmtk/dcmimgle/dcmimage.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpls/djdecode.h>
#include <png.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace Console {
namespace {

[[noreturn]] void Refuse(const std::string& why) { throw std::runtime_error(why); }

void KnowCompressedPixels() {
    static const bool once = [] {
        DJDecoderRegistration::registerCodecs();
        DJLSDecoderRegistration::registerCodecs();
        DcmRLEDecoderRegistration::registerCodecs();
        return true;
    }();
    static_cast<void>(once);
}

void CheckSize(DcmDataset& dataset) {
    constexpr double mostPixels = 100e6;
    Uint16 rows = 0, columns = 0;
    if (dataset.findAndGetUint16(DCM_Rows, rows).bad() ||
        dataset.findAndGetUint16(DCM_Columns, columns).bad() || !dataset.tagExists(DCM_PixelData))
        Refuse("has no pixels");
    if (static_cast<double>(rows) * columns > mostPixels) Refuse("has more than 100 million pixels");
}

/// The picture, made smaller where a side is too long.
std::unique_ptr<DicomImage> Sized(std::unique_ptr<DicomImage> picture, unsigned longestSide) {
    constexpr int byArea = 1, keepAspect = 1;
    const auto longest = std::max(picture->getWidth(), picture->getHeight());
    if (longest <= longestSide) return picture;
    const bool wide = picture->getWidth() == longest;
    const auto side = static_cast<unsigned long>(longestSide);
    std::unique_ptr<DicomImage> scaled(
        picture->createScaledImage(wide ? side : 0UL, wide ? 0UL : side, byArea, keepAspect));
    if (!scaled) Refuse("its pixels can't be scaled");
    return scaled;
}

void SetWindow(DicomImage& picture) {
    if (!picture.isMonochrome()) return;
    const bool set = picture.getWindowCount() > 0 ? picture.setWindow(0) : picture.setMinMaxWindow();
    if (!set) picture.setMinMaxWindow();
}

std::string PngOf(DicomImage& picture) {
    constexpr int bitsAChannel = 8;
    const void* const pixels = picture.getOutputData(bitsAChannel);
    if (!pixels) Refuse("its pixels can't be read");
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(picture.getWidth());
    png.height = static_cast<png_uint_32>(picture.getHeight());
    png.format = picture.isMonochrome() ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png);
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&png, bytes.data(), &size, 0, pixels, 0, nullptr)) Refuse(png.message);
    bytes.resize(size);
    return bytes;
}

}  // namespace

std::string DicomPictureAsPng(const std::filesystem::path& path, unsigned longestSide) {
    SilenceToolkit();
    KnowCompressedPixels();
    DcmFileFormat file;
    const OFCondition loaded = file.loadFile(path.c_str());
    if (loaded.bad()) Refuse(loaded.text());
    DcmDataset& dataset = *file.getDataset();
    CheckSize(dataset);
    constexpr unsigned long firstFrame = 0, oneFrame = 1;
    auto picture = std::make_unique<DicomImage>(&file, dataset.getOriginalXfer(),
                                                CIF_UsePartialAccessToPixelData, firstFrame, oneFrame);
    if (picture->getStatus() != EIS_Normal) Refuse(DicomImage::getString(picture->getStatus()));
    picture = Sized(std::move(picture), std::max(longestSide, 1U));
    SetWindow(*picture);
    return PngOf(*picture);
}

}  // namespace Console
