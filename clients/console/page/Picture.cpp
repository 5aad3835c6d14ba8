#include "console/page/Picture.h"

#include "console/dicom/DicomPicture.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace Console {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view PngHead("\x89PNG\r\n\x1A\n", 8), JpegHead("\xFF\xD8\xFF", 3), JpegEnd("\xFF\xD9", 2);

std::ifstream Opened(const fs::path& path) {
    constexpr std::uintmax_t most = 256U << 20;
    std::error_code failure;
    if (!fs::exists(path, failure)) throw std::runtime_error("the file is missing");
    if (!fs::is_regular_file(path, failure)) throw std::runtime_error("is not a regular file");
    if (fs::file_size(path, failure) > most) throw std::runtime_error("is larger than 256 MB");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error(std::string("can't be read: ") + std::strerror(errno));
    return in;
}

struct ReleasePixels {
    void operator()(GdkPixbuf* pixels) const { g_object_unref(pixels); }
    void operator()(GError* error) const { g_error_free(error); }
};
using Pixels = std::unique_ptr<GdkPixbuf, ReleasePixels>;

[[noreturn]] void RefusePicture(GError* error) {
    const std::unique_ptr<GError, ReleasePixels> held(error);
    throw std::runtime_error(std::string("is damaged: ") + (error ? error->message : "no reason"));
}

/// Reads all pixels, so that a damaged file is detected here and not in the drawing.
Pixels Decoded(const fs::path& path) {
    constexpr std::int64_t mostPixels = 100'000'000;
    int width = 0, height = 0;
    if (!gdk_pixbuf_get_file_info(path.c_str(), &width, &height)) throw std::runtime_error("is damaged");
    if (std::int64_t{width} * height > mostPixels) throw std::runtime_error("has more than 100 million pixels");
    GError* error = nullptr;
    Pixels pixels(gdk_pixbuf_new_from_file(path.c_str(), &error));
    if (!pixels) RefusePicture(error);
    return pixels;
}

bool SaysToTurn(GdkPixbuf& pixels) {
    const char* const orientation = gdk_pixbuf_get_option(&pixels, "orientation");
    return orientation && std::string_view(orientation) != "1";
}

/// Returns a picture turned as its file specifies, because not all viewers turn it.
Picture Turned(GdkPixbuf& pixels) {
    const Pixels turned(gdk_pixbuf_apply_embedded_orientation(&pixels));
    gchar* bytes = nullptr;
    gsize size = 0;
    GError* error = nullptr;
    if (!gdk_pixbuf_save_to_buffer(turned.get(), &bytes, &size, "png", &error, nullptr)) RefusePicture(error);
    const std::unique_ptr<gchar, decltype(&g_free)> held(bytes, &g_free);
    return {"image/png", std::string(bytes, size)};
}

/// Throws for a JPEG file that is cut short. The decoder reports no error for it and fills the missing part with gray.
void RequireEnd(const std::string& jpeg) {
    const auto end = jpeg.rfind(JpegEnd);
    if (end == std::string::npos || end < jpeg.size() / 2) throw std::runtime_error("is cut short");
}

/// The type of a file, from its first bytes.
enum class Kind { Dicom, Jpeg, Png };

Kind KindOf(std::istream& in) {
    std::string head(PngHead.size(), '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    if (head == PngHead) return Kind::Png;
    return head.starts_with(JpegHead) ? Kind::Jpeg : Kind::Dicom;
}

Picture ReadDicom(const fs::path& path, unsigned longestSide) {
    DicomPicture rendered = RenderDicom(path, longestSide);
    return {"image/png", std::move(rendered.png), rendered.proportion, rendered.frames};
}

}  // namespace

Picture ReadPicture(const fs::path& path, unsigned longestSide) {
    std::ifstream in = Opened(path);
    const Kind kind = KindOf(in);
    if (kind == Kind::Dicom) return ReadDicom(path, longestSide);
    in.clear();
    in.seekg(0);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    const Pixels pixels = Decoded(path);
    if (kind == Kind::Jpeg) RequireEnd(bytes);
    if (SaysToTurn(*pixels)) return Turned(*pixels);
    return {kind == Kind::Png ? "image/png" : "image/jpeg", std::move(bytes)};
}

std::string WhyNotReadable(const fs::path& path) {
    constexpr unsigned smallest = 1;
    try {
        ReadPicture(path, smallest);
        return {};
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

std::string WhyNotReadableQuickly(const fs::path& path) {
    try {
        std::ifstream in = Opened(path);
        return KindOf(in) == Kind::Dicom ? WhyNoPictureQuickly(path) : std::string();
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

}  // namespace Console
