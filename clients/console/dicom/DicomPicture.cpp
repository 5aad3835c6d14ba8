#include "console/dicom/DicomPicture.h"

#include "console/dicom/DecoderComplaints.h"
#include "console/dicom/DicomFile.h"
#include "console/dicom/FirstFrame.h"
#include "console/dicom/GrayTable.h"
#include "console/dicom/RefuseFile.h"
#include "console/dicom/StandardView.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmimage/diregist.h>
#include <dcmtk/dcmimgle/dcmimage.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace Console {
namespace {

/// Returns all values of an element, separated by "\\"; empty if it is missing.
std::string WholeText(DcmItem& set, const DcmTagKey& tag) {
    OFString text;
    set.findAndGetOFStringArray(tag, text);
    return {text.data(), text.size()};
}

void CheckSize(DcmDataset& set) {
    constexpr double mostPixels = 100e6;
    Uint16 rows = 0, columns = 0;
    set.findAndGetUint16(DCM_Rows, rows);
    set.findAndGetUint16(DCM_Columns, columns);
    if (rows == 0 || columns == 0 || !set.tagExists(DCM_PixelData)) RefuseFile("has no pixels");
    if (static_cast<double>(rows) * columns > mostPixels) RefuseFile("has more than 100 million pixels");
}

void Load(DcmFileFormat& file, const std::filesystem::path& path) {
    SilenceToolkit();
    const OFCondition loaded = file.loadFile(path.c_str());
    if (loaded.bad()) RefuseFile(loaded.text());
    // The toolkit reads a file of an unknown transfer syntax as if it were uncompressed.
    const std::string stated = WholeText(*file.getMetaInfo(), DCM_TransferSyntaxUID);
    const std::string undecodable = stated.empty() ? "" : WhyNotDecodable(stated);
    if (!undecodable.empty()) RefuseFile(undecodable);
    CheckSize(*file.getDataset());
}

bool IsGray(DcmItem& set) { return WholeText(set, DCM_PhotometricInterpretation).starts_with("MONOCHROME"); }

bool IsIntraOral(DcmItem& set) {
    return WholeText(set, DCM_Modality) == "IO" ||
           WholeText(set, DCM_SOPClassUID).starts_with(UID_DigitalIntraOralXRayImageStorageForPresentation);
}

/// Returns the height of a pixel divided by its width; 1 if the file does not state it or states an impossible value.
double PixelProportion(DcmItem& set) {
    constexpr double most = 20;
    for (const DcmTagKey& tag :
         {DCM_PixelSpacing, DCM_ImagerPixelSpacing, DCM_NominalScannedPixelSpacing, DCM_PixelAspectRatio}) {
        const std::string text = WholeText(set, tag);
        double height = 0, width = 0;
        if (std::sscanf(text.c_str(), "%lf\\%lf", &height, &width) != 2) continue;
        const double proportion = height / width;
        if (proportion >= 1 / most && proportion <= most) return proportion;
    }
    return 1;
}

// ---- gray pictures ----------------------------------------------------------------------------------

/// Returns the samples of a frame by the table; `Sample` is as wide as the frame's samples.
template <class Sample>
std::vector<Uint8> Grays(DcmItem& set, const std::vector<unsigned char>& frame) {
    std::vector<bool> occurs(std::size_t{1} << (8 * sizeof(Sample)));
    std::vector<Sample> samples(frame.size() / sizeof(Sample));
    std::memcpy(samples.data(), frame.data(), samples.size() * sizeof(Sample));
    for (const Sample sample : samples) occurs[sample] = true;
    const std::vector<unsigned char> table = GrayTable(set, occurs);
    std::vector<Uint8> grays(samples.size());
    std::ranges::transform(samples, grays.begin(), [&](Sample sample) { return table[sample]; });
    return grays;
}

/// Replaces a gray picture by its first frame as it is shown, in 8 bits.
void ShowGrays(DcmDataset& set) {
    const std::vector<unsigned char> frame = FirstFrame(set);
    Uint16 bits = 0, rows = 0, columns = 0;
    set.findAndGetUint16(DCM_BitsAllocated, bits);
    set.findAndGetUint16(DCM_Rows, rows);
    set.findAndGetUint16(DCM_Columns, columns);
    const std::vector<Uint8> grays = bits == 8 ? Grays<Uint8>(set, frame) : Grays<Uint16>(set, frame);
    set.clear();
    set.putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME2");
    set.putAndInsertUint16(DCM_SamplesPerPixel, 1);
    set.putAndInsertUint16(DCM_Rows, rows);
    set.putAndInsertUint16(DCM_Columns, columns);
    set.putAndInsertUint16(DCM_BitsAllocated, 8);
    set.putAndInsertUint16(DCM_BitsStored, 8);
    set.putAndInsertUint16(DCM_HighBit, 7);
    set.putAndInsertUint16(DCM_PixelRepresentation, 0);
    set.putAndInsertUint8Array(DCM_PixelData, grays.data(), grays.size());
}

// ---- pixels to show ---------------------------------------------------------------------------------

using Image = std::unique_ptr<DicomImage>;

Image Checked(Image image) {
    if (image->getStatus() != EIS_Normal) RefuseFile(DicomImage::getString(image->getStatus()));
    return image;
}

/// Returns the first frame with gray or colour values to show. The image uses the data set as long as it lives.
Image FirstFrameShown(DcmDataset& set) {
    constexpr unsigned long firstFrame = 0, oneFrame = 1;
    const DecoderComplaints complaints;
    Image image;
    if (IsGray(set)) {
        ShowGrays(set);
        image = std::make_unique<DicomImage>(&set, EXS_LittleEndianExplicit);
    } else if (IsJpeg2000(set)) {
        ReplaceByFirstFrame(set);
        image = std::make_unique<DicomImage>(&set, EXS_LittleEndianExplicit);
    } else {
        CheckFirstFrameComplete(set);
        image = std::make_unique<DicomImage>(&set, set.getOriginalXfer(), CIF_UsePartialAccessToPixelData, firstFrame,
                                             oneFrame);
    }
    complaints.Check();
    return Checked(std::move(image));
}

/// Returns the picture with no more pixels than that in each direction.
Image Sized(Image image, const PixelSpace& most) {
    constexpr int byArea = 1, asAsked = 0;
    const unsigned long width = std::min<unsigned long>(image->getWidth(), most.width);
    const unsigned long height = std::min<unsigned long>(image->getHeight(), most.height);
    if (width == image->getWidth() && height == image->getHeight()) return image;
    Image scaled(image->createScaledImage(width, height, byArea, asAsked));
    if (!scaled) RefuseFile("its pixels can't be scaled");
    return Checked(std::move(scaled));
}

void Turn(DicomImage& image, const Orientation& form) {
    if (form.Mirrored() && !image.flipImage(1, 0)) RefuseFile("its pixels can't be mirrored");
    if (form.Degrees() != 0 && !image.rotateImage(form.Degrees())) RefuseFile("its pixels can't be turned");
}

void AppendBytes(png_structp png, png_bytep data, std::size_t size) {
    bool appended = false;
    try {
        static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(data), size);
        appended = true;
    } catch (const std::bad_alloc&) {  // must not pass through the library, which is C
    }
    if (!appended) png_error(png, "not enough memory");
}

/// Appends 8-bit pixels to `bytes` as a PNG file; returns false if there is not enough memory.
///
/// Noise makes a radiograph's rows differ from each other everywhere, so that only the filters and the code lengths
/// make the file smaller: a search for repeated texts takes four times as long and gains nothing.
bool WritePng(const png_byte* pixels, png_uint_32 width, png_uint_32 height, bool gray, std::string& bytes) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    // No object with a destructor may be created below: the library reports a failure by a jump to here.
    if (!info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &bytes, AppendBytes, nullptr);
    png_set_IHDR(png, info, width, height, 8, gray ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_ALL_FILTERS);
    png_set_compression_strategy(png, Z_RLE);
    png_write_info(png, info);
    const std::size_t row = std::size_t{width} * (gray ? 1 : 3);
    for (png_uint_32 y = 0; y < height; ++y) png_write_row(png, pixels + y * row);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

std::string PngOf(DicomImage& image) {
    constexpr int bitsAChannel = 8;
    const void* const pixels = image.getOutputData(bitsAChannel);
    if (!pixels) RefuseFile("its pixels can't be read");
    std::string bytes;
    const auto width = static_cast<png_uint_32>(image.getWidth()), height = static_cast<png_uint_32>(image.getHeight());
    if (!WritePng(static_cast<const png_byte*>(pixels), width, height, image.isMonochrome(), bytes))
        RefuseFile("its picture can't be written");
    return bytes;
}

/// Returns true for gray pixels that are stored as they are. Their conversion fails only for what their description and
/// their number tell.
bool IsPlainGray(DcmDataset& set) {
    Uint16 samples = 0;
    set.findAndGetUint16(DCM_SamplesPerPixel, samples);
    return IsGray(set) && samples == 1 && !DcmXfer(set.getOriginalXfer()).isEncapsulated();
}

/// Decodes the first frame and forgets it. Plain gray pixels stay in the file.
void RequirePicture(const std::filesystem::path& path) {
    DcmFileFormat file;
    Load(file, path);
    DcmDataset& set = *file.getDataset();
    if (!IsPlainGray(set)) {
        FirstFrameShown(set);
        return;
    }
    CheckFirstFrameComplete(set);
    RequireGrayForm(set);
}

/// Decodes compressed pixels of the first frame; plain ones are only counted.
void RequirePixels(const std::filesystem::path& path) {
    DcmFileFormat file;
    Load(file, path);
    DcmDataset& set = *file.getDataset();
    if (DcmXfer(set.getOriginalXfer()).isEncapsulated())
        FirstFrameShown(set);
    else
        CheckFirstFrameComplete(set);
}

template <class Work>
std::string FailureOf(const Work& work) {
    try {
        work();
        return {};
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

}  // namespace

PixelSpace PixelSpace::Fitted(double proportion) const {
    const double shown = std::min<double>(width, height * proportion);
    const auto whole = [](double pixels, unsigned most) {
        return static_cast<unsigned>(std::clamp<double>(std::round(pixels), 1, std::max(most, 1U)));
    };
    return {whole(shown, width), whole(shown / proportion, height)};
}

DicomPicture RenderDicom(const std::filesystem::path& path, PixelSpace space) {
    DcmFileFormat file;
    Load(file, path);
    DcmDataset& set = *file.getDataset();
    DicomPicture picture{.png = {}, .proportion = PixelProportion(set), .frames = NumberOfFrames(set)};
    const Orientation form =
        IsGray(set) && !IsIntraOral(set) ? StandardView(WholeText(set, DCM_PatientOrientation)) : Orientation(1);
    Image image = FirstFrameShown(set);
    picture.proportion =
        static_cast<double>(image->getWidth()) / static_cast<double>(image->getHeight()) / picture.proportion;
    const bool exchanged = form.Degrees() % 180 != 0;
    if (exchanged) std::swap(space.width, space.height);
    image = Sized(std::move(image), space.Fitted(picture.proportion));
    Turn(*image, form);
    if (exchanged) picture.proportion = 1 / picture.proportion;
    picture.png = PngOf(*image);
    return picture;
}

std::string WhyNoPicture(const std::filesystem::path& path) {
    return FailureOf([&] { RequirePicture(path); });
}

std::string WhyNoPictureQuickly(const std::filesystem::path& path) {
    return FailureOf([&] { RequirePixels(path); });
}

}  // namespace Console
