#include "console/dicom/FirstFrame.h"

#include "console/dicom/DicomValues.h"
#include "console/dicom/Jpeg2000.h"
#include "console/dicom/RefuseFile.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dccodec.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dcrledec.h>
#include <dcmtk/dcmdata/dcrledrg.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmjpeg/djdecode.h>
#include <dcmtk/dcmjpls/djdecode.h>

#include <cstring>
#include <stdexcept>

namespace Console {
namespace {

void RegisterDecoders() {
    static const bool once = [] {
        DJDecoderRegistration::registerCodecs();
        DJLSDecoderRegistration::registerCodecs();
        DcmRLEDecoderRegistration::registerCodecs();
        return true;
    }();
    static_cast<void>(once);
}

Uint16 Number(DcmDataset& set, const DcmTagKey& tag) {
    Uint16 number = 0;
    set.findAndGetUint16(tag, number);
    return number;
}

bool IsJpeg2000(E_TransferSyntax syntax) { return syntax == EXS_JPEG2000LosslessOnly || syntax == EXS_JPEG2000; }

DcmPixelData& PixelsOf(DcmDataset& set) {
    DcmElement* element = nullptr;
    set.findAndGetElement(DCM_PixelData, element);
    auto* pixels = dynamic_cast<DcmPixelData*>(element);
    if (!pixels) RefuseFile("has no pixels");
    return *pixels;
}

/// Returns the bytes of a frame without compression.
std::size_t FrameSize(DcmDataset& set) {
    const std::string form = FirstText(set, DCM_PhotometricInterpretation);
    const std::size_t pixels = std::size_t{Number(set, DCM_Rows)} * Number(set, DCM_Columns);
    const std::size_t bits = pixels * Number(set, DCM_SamplesPerPixel) * Number(set, DCM_BitsAllocated);
    const bool sharedColour = form == "YBR_FULL_422" || form == "YBR_PARTIAL_422";
    return (sharedColour ? bits / 3 * 2 : bits) / 8;
}

// ---- fragments of compressed pixels -----------------------------------------------------------------

/// Returns true for bytes that end a codestream, with or without the padding to an even length. In front of the
/// end no such bytes can occur in its pixels.
bool EndsCodestream(std::string_view bytes) {
    constexpr std::string_view end("\xFF\xD9", 2), padded("\xFF\xD9\0", 3);
    return bytes.ends_with(end) || bytes.ends_with(padded);
}

std::string_view BytesOf(DcmPixelItem& fragment) {
    Uint8* bytes = nullptr;
    if (fragment.getUint8Array(bytes).bad() || !bytes) return {};
    return {reinterpret_cast<const char*>(bytes), fragment.getLength()};
}

DcmPixelSequence& FragmentsOf(DcmDataset& set) {
    DcmPixelSequence* fragments = nullptr;
    PixelsOf(set).getEncapsulatedRepresentation(set.getOriginalXfer(), nullptr, fragments);
    if (!fragments) RefuseFile("its compressed pixels can't be found");
    return *fragments;
}

/// Returns the codestream of the first frame: all fragments of a single frame, else those up to its end. The first
/// item of the sequence is the table of the frames' offsets.
std::string FirstCodestream(DcmDataset& set) {
    DcmPixelSequence& fragments = FragmentsOf(set);
    const bool single = NumberOfFrames(set) == 1;
    std::string codestream;
    for (unsigned long i = 1; i < fragments.card(); ++i) {
        DcmPixelItem* fragment = nullptr;
        if (fragments.getItem(fragment, i).bad()) break;
        codestream += BytesOf(*fragment);
        if (!single && EndsCodestream(codestream)) break;
    }
    return codestream;
}

/// Returns the 32 bits at a place of an RLE header, the lowest byte first.
std::size_t RleNumber(std::string_view frame, std::size_t place) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number |= std::size_t{static_cast<unsigned char>(frame[place * 4 + i])} << (8 * i);
    return number;
}

/// Returns the bytes of a segment after decoding, at most `most`.
std::size_t RleSize(std::string segment, std::size_t most) {
    DcmRLEDecoder decoder(most);
    decoder.decompress(segment.data(), segment.size());
    return decoder.size();
}

/// Throws if a segment of the first frame has fewer bytes than the frame has pixels. The toolkit's decoder reports no
/// error for the missing pixels.
void CheckRleComplete(DcmDataset& set) {
    constexpr std::size_t header = 64, most = 15;
    DcmPixelItem* fragment = nullptr;
    FragmentsOf(set).getItem(fragment, 1);
    const std::string_view frame = fragment ? BytesOf(*fragment) : std::string_view();
    const std::size_t pixels = std::size_t{Number(set, DCM_Rows)} * Number(set, DCM_Columns);
    const auto require = [](bool good) {
        if (!good) RefuseFile("its pixels are damaged: an RLE segment is cut short");
    };
    require(frame.size() >= header);
    const std::size_t segments = RleNumber(frame, 0);
    require(segments >= 1 && segments <= most);
    for (std::size_t i = 1; i <= segments; ++i) {
        const std::size_t from = RleNumber(frame, i);
        const std::size_t to = i == segments ? frame.size() : RleNumber(frame, i + 1);
        require(from >= header && from <= to && to <= frame.size());
        require(RleSize(std::string(frame.substr(from, to - from)), pixels) == pixels);
    }
}

// ---- JPEG 2000 --------------------------------------------------------------------------------------

/// Sets the attributes of the samples to those of the decoded ones. Some files have an unsigned codestream that
/// contains the bits of signed samples.
void Describe(DcmDataset& set, const Jpeg2000Image& image) {
    const bool isSigned = image.isSigned || Number(set, DCM_PixelRepresentation) == 1;
    set.putAndInsertUint16(DCM_BitsAllocated, image.bits > 8 ? 16 : 8);
    set.putAndInsertUint16(DCM_BitsStored, static_cast<Uint16>(image.bits));
    set.putAndInsertUint16(DCM_HighBit, static_cast<Uint16>(image.bits - 1));
    set.putAndInsertUint16(DCM_PixelRepresentation, isSigned ? 1 : 0);
    if (image.channels == 1) return;
    set.putAndInsertUint16(DCM_PlanarConfiguration, 0);
    const std::string form = FirstText(set, DCM_PhotometricInterpretation);
    if (form == "YBR_ICT" || form == "YBR_RCT") set.putAndInsertString(DCM_PhotometricInterpretation, "RGB");
}

std::vector<unsigned char> FirstJpeg2000Frame(DcmDataset& set) {
    const Jpeg2000Image image = DecodeJpeg2000(FirstCodestream(set), Number(set, DCM_Rows), Number(set, DCM_Columns),
                                               Number(set, DCM_SamplesPerPixel));
    Describe(set, image);
    if (image.bits <= 8) return {image.samples.begin(), image.samples.end()};
    std::vector<unsigned char> bytes(image.samples.size() * 2);
    std::memcpy(bytes.data(), image.samples.data(), bytes.size());
    return bytes;
}

}  // namespace

std::string WhyNotDecodable(const std::string& transferSyntax) {
    const DcmXfer syntax(transferSyntax.c_str());
    if (syntax.getXfer() == EXS_Unknown) return "its transfer syntax " + transferSyntax + " is unknown";
    if (!syntax.isEncapsulated() || IsJpeg2000(syntax.getXfer())) return {};
    RegisterDecoders();
    if (DcmCodecList::canChangeCoding(syntax.getXfer(), EXS_LittleEndianExplicit)) return {};
    return "its transfer syntax " + transferSyntax + " (" + syntax.getXferName() + ") can't be decoded";
}

int NumberOfFrames(DcmDataset& set) {
    Sint32 frames = 1;
    set.findAndGetSint32(DCM_NumberOfFrames, frames);
    return std::max(frames, 1);
}

bool IsJpeg2000(const DcmDataset& set) { return IsJpeg2000(set.getOriginalXfer()); }

void CheckFirstFrameComplete(DcmDataset& set) {
    const DcmXfer syntax(set.getOriginalXfer());
    if (syntax.getXfer() == EXS_RLELossless) return CheckRleComplete(set);
    if (!syntax.isEncapsulated() && PixelsOf(set).getLength() < FrameSize(set))
        RefuseFile("its pixels are cut short: fewer than its rows and columns need");
}

std::vector<unsigned char> FirstFrame(DcmDataset& set) {
    if (IsJpeg2000(set)) return FirstJpeg2000Frame(set);
    RegisterDecoders();
    CheckFirstFrameComplete(set);
    const std::size_t size = FrameSize(set);
    std::vector<unsigned char> bytes(size + size % 2);  // the toolkit pads to an even length
    Uint32 fragment = 0;
    OFString colours;
    const OFCondition read = PixelsOf(set).getUncompressedFrame(&set, 0, fragment, bytes.data(),
                                                                static_cast<Uint32>(bytes.size()), colours, nullptr);
    if (read.bad()) RefuseFile(std::string("its pixels are damaged: ") + read.text());
    bytes.resize(size);
    return bytes;
}

void ReplaceByFirstFrame(DcmDataset& set) {
    const std::vector<unsigned char> bytes = FirstFrame(set);
    delete set.remove(DCM_PixelData);
    set.putAndInsertString(DCM_NumberOfFrames, "1");
    if (Number(set, DCM_BitsAllocated) == 8) {
        set.putAndInsertUint8Array(DCM_PixelData, bytes.data(), bytes.size());
        return;
    }
    std::vector<Uint16> words(bytes.size() / 2);
    std::memcpy(words.data(), bytes.data(), words.size() * 2);
    set.putAndInsertUint16Array(DCM_PixelData, words.data(), words.size());
}

}  // namespace Console
