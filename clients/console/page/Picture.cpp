#include "console/page/Picture.h"

#include "console/dicom/DicomPicture.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

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

/// The type of a file, from its first bytes.
enum class Kind { Dicom, Jpeg, Png };

/// The options of a picture file: names and values, each list with a null at its end.
struct FileOptions {
    std::vector<const char*> names, values;

    FileOptions() : names{nullptr}, values{nullptr} {}
    void Add(const char* name, const char* value) {
        names.insert(names.end() - 1, name);
        values.insert(values.end() - 1, value);
    }
};

/// Returns the bytes of a JPEG or PNG file of these pixels, with the colour profile of `original`.
Picture Encoded(GdkPixbuf& pixels, GdkPixbuf& original, Kind kind) {
    FileOptions options;
    if (const char* const profile = gdk_pixbuf_get_option(&original, "icc-profile"))
        options.Add("icc-profile", profile);
    if (kind == Kind::Jpeg) options.Add("quality", "90");
    gchar* bytes = nullptr;
    gsize size = 0;
    GError* error = nullptr;
    if (!gdk_pixbuf_save_to_bufferv(&pixels, &bytes, &size, kind == Kind::Jpeg ? "jpeg" : "png",
                                    const_cast<char**>(options.names.data()), const_cast<char**>(options.values.data()),
                                    &error))
        RefusePicture(error);
    const std::unique_ptr<gchar, decltype(&g_free)> held(bytes, &g_free);
    return {kind == Kind::Jpeg ? "image/jpeg" : "image/png", std::string(bytes, size)};
}

PixelSpace SizeOf(GdkPixbuf& pixels) {
    return {static_cast<unsigned>(gdk_pixbuf_get_width(&pixels)),
            static_cast<unsigned>(gdk_pixbuf_get_height(&pixels))};
}

/// Returns the pixels reduced to this size. The scaler's memory grows with the square of the factor, and its weights
/// become coarse, so that a picture is reduced by a large factor in several steps.
Pixels Reduced(Pixels pixels, const PixelSpace& size) {
    constexpr GdkInterpType meansOfAreas = GDK_INTERP_TILES;
    constexpr unsigned largestFactor = 16;
    for (PixelSpace now = SizeOf(*pixels); now.width > size.width || now.height > size.height;) {
        now.width = std::max(size.width, now.width / largestFactor);
        now.height = std::max(size.height, now.height / largestFactor);
        pixels.reset(gdk_pixbuf_scale_simple(pixels.get(), static_cast<int>(now.width), static_cast<int>(now.height),
                                             meansOfAreas));
        if (!pixels) throw std::runtime_error("its pixels can't be scaled");
    }
    return pixels;
}

/// Returns a picture that is turned as its file specifies, because not all viewers turn it, and that has no more pixels
/// than it is shown with; nothing for a picture that is so already.
std::optional<Picture> TurnedAndReduced(GdkPixbuf& pixels, Kind kind, const PixelSpace& space) {
    Pixels turned(gdk_pixbuf_apply_embedded_orientation(&pixels));
    const PixelSpace size = SizeOf(*turned);
    const PixelSpace shown = space.Fitted(static_cast<double>(size.width) / size.height);
    if (shown.width < size.width || shown.height < size.height) {
        const PixelSpace reduced{std::min(shown.width, size.width), std::min(shown.height, size.height)};
        return Encoded(*Reduced(std::move(turned), reduced), pixels, kind);
    }
    if (SaysToTurn(pixels)) return Encoded(*turned, pixels, Kind::Png);
    return std::nullopt;
}

/// Throws for a JPEG file that is cut short. The decoder reports no error for it and fills the missing part with gray.
void RequireEnd(const std::string& jpeg) {
    const auto end = jpeg.rfind(JpegEnd);
    if (end == std::string::npos || end < jpeg.size() / 2) throw std::runtime_error("is cut short");
}

Kind KindOf(std::istream& in) {
    std::string head(PngHead.size(), '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    if (head == PngHead) return Kind::Png;
    return head.starts_with(JpegHead) ? Kind::Jpeg : Kind::Dicom;
}

Picture ReadDicom(const fs::path& path, const PixelSpace& space) {
    DicomPicture rendered = RenderDicom(path, space);
    return {"image/png", std::move(rendered.png), rendered.proportion, rendered.frames};
}

}  // namespace

Picture ReadPicture(const fs::path& path, const PixelSpace& space) {
    std::ifstream in = Opened(path);
    const Kind kind = KindOf(in);
    if (kind == Kind::Dicom) return ReadDicom(path, space);
    in.clear();
    in.seekg(0);
    std::string bytes(fs::file_size(path), '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    const Pixels pixels = Decoded(path);
    if (kind == Kind::Jpeg) RequireEnd(bytes);
    if (auto changed = TurnedAndReduced(*pixels, kind, space)) return std::move(*changed);
    return {kind == Kind::Png ? "image/png" : "image/jpeg", std::move(bytes)};
}

std::string WhyNotReadable(const fs::path& path) {
    constexpr PixelSpace smallest{1, 1};
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
