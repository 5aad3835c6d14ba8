#include "console/dicom/Jpeg2000.h"

#include "console/dicom/RefuseFile.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <openjpeg.h>
#include <span>
#include <stdexcept>
#include <string>

namespace Console {
namespace {

/// Deletes an object of the decoder by the function `End`: streams and codecs have the same C++ type.
template <auto* End, class T>
struct Release {
    void operator()(T* held) const { End(held); }
};
using Stream = std::unique_ptr<opj_stream_t, Release<&opj_stream_destroy, opj_stream_t>>;
using Codec = std::unique_ptr<opj_codec_t, Release<&opj_destroy_codec, opj_codec_t>>;
using CodedImage = std::unique_ptr<opj_image_t, Release<&opj_image_destroy, opj_image_t>>;

/// The bytes that the decoder has still to read.
struct Source {
    std::string_view bytes;
    std::size_t next = 0;
};

OPJ_SIZE_T Read(void* buffer, OPJ_SIZE_T size, void* data) {
    auto& source = *static_cast<Source*>(data);
    const std::size_t count = std::min<std::size_t>(size, source.bytes.size() - source.next);
    if (count == 0) return static_cast<OPJ_SIZE_T>(-1);
    std::memcpy(buffer, source.bytes.data() + source.next, count);
    source.next += count;
    return count;
}

OPJ_OFF_T Skip(OPJ_OFF_T size, void* data) {
    auto& source = *static_cast<Source*>(data);
    const auto left = static_cast<OPJ_OFF_T>(source.bytes.size() - source.next);
    if (size < 0 || size > left) return -1;
    source.next += static_cast<std::size_t>(size);
    return size;
}

OPJ_BOOL Seek(OPJ_OFF_T position, void* data) {
    auto& source = *static_cast<Source*>(data);
    if (position < 0 || static_cast<std::size_t>(position) > source.bytes.size()) return OPJ_FALSE;
    source.next = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

Stream StreamOf(Source& source) {
    constexpr OPJ_BOOL forReading = OPJ_TRUE;
    Stream stream(opj_stream_default_create(forReading));
    if (!stream) RefuseFile("its JPEG 2000 pixels can't be read");
    opj_stream_set_user_data(stream.get(), &source, nullptr);
    opj_stream_set_user_data_length(stream.get(), source.bytes.size());
    opj_stream_set_read_function(stream.get(), Read);
    opj_stream_set_skip_function(stream.get(), Skip);
    opj_stream_set_seek_function(stream.get(), Seek);
    return stream;
}

/// Stores the first message of the decoder, without its line break. Ignores a message about a marker that the decoder
/// skips: manufacturers may add their own markers.
void Note(const char* message, void* data) {
    auto& first = *static_cast<std::string*>(data);
    if (!first.empty() || std::string_view(message).starts_with("Unknown marker")) return;
    first = message;
    first.erase(first.find_last_not_of("\r\n ") + 1);
}

Codec CodecFor(std::string_view codestream, std::string& complaint) {
    constexpr std::string_view jp2("\0\0\0\x0CjP  ", 8);
    Codec codec(opj_create_decompress(codestream.starts_with(jp2) ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
    if (!codec) RefuseFile("its JPEG 2000 pixels can't be read");
    opj_set_error_handler(codec.get(), Note, &complaint);
    // The decoder only warns of damage inside a codestream, and returns noise.
    opj_set_warning_handler(codec.get(), Note, &complaint);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    if (!opj_setup_decoder(codec.get(), &parameters)) RefuseFile("its JPEG 2000 pixels can't be read");
    return codec;
}

std::span<const opj_image_comp_t> Components(const opj_image_t& image) { return {image.comps, image.numcomps}; }

void CheckForm(const opj_image_t& image, unsigned rows, unsigned columns, unsigned channels) {
    if (image.numcomps != channels) RefuseFile("its JPEG 2000 pixels have another number of channels");
    for (const opj_image_comp_t& component : Components(image)) {
        if (component.w != columns || component.h != rows)
            RefuseFile("its JPEG 2000 pixels are not as many as its rows and columns");
        if (component.prec < 1 || component.prec > 16 || component.prec != image.comps->prec ||
            component.sgnd != image.comps->sgnd)
            RefuseFile("its JPEG 2000 samples have not 1 to 16 bits");
    }
}

std::vector<std::uint16_t> SamplesOf(const opj_image_t& image) {
    const std::size_t pixels = std::size_t{image.comps->w} * image.comps->h;
    const auto mask = static_cast<std::uint16_t>((1U << image.comps->prec) - 1);
    std::vector<std::uint16_t> samples(pixels * image.numcomps);
    std::size_t channel = 0;
    for (const opj_image_comp_t& component : Components(image)) {
        for (std::size_t i = 0; i < pixels; ++i)
            samples[i * image.numcomps + channel] = static_cast<std::uint16_t>(component.data[i]) & mask;
        ++channel;
    }
    return samples;
}

}  // namespace

Jpeg2000Image DecodeJpeg2000(std::string_view codestream, unsigned rows, unsigned columns, unsigned channels) {
    std::string complaint;
    const auto require = [&](bool done) {
        if (done && complaint.empty()) return;
        RefuseFile("its JPEG 2000 pixels are damaged" + (complaint.empty() ? "" : ": " + complaint));
    };
    Source source{codestream};
    const Stream stream = StreamOf(source);
    const Codec codec = CodecFor(codestream, complaint);
    opj_image_t* read = nullptr;
    const bool header = opj_read_header(stream.get(), codec.get(), &read);
    const CodedImage image(read);
    require(header);
    CheckForm(*image, rows, columns, channels);
    require(opj_decode(codec.get(), stream.get(), image.get()));
    require(opj_end_decompress(codec.get(), stream.get()));
    CheckForm(*image, rows, columns, channels);
    for (const opj_image_comp_t& component : Components(*image)) require(component.data != nullptr);
    return {columns, rows, channels, image->comps->prec, image->comps->sgnd != 0, SamplesOf(*image)};
}

}  // namespace Console
