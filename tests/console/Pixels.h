#pragma once

#include "console/page/Picture.h"

#include <gtest/gtest.h>
#include <png.h>

/// Pixels of pictures, for the tests of what is drawn.
namespace ProgramTest {

using Console::Picture;

struct Pixel {
    int red, green, blue;
    friend bool operator==(const Pixel&, const Pixel&) = default;
};
inline void PrintTo(const Pixel& p, std::ostream* out) { *out << p.red << "," << p.green << "," << p.blue; }
inline constexpr Pixel Black{0, 0, 0}, White{255, 255, 255}, Red{255, 0, 0}, Green{0, 255, 0}, Blue{0, 0, 255};

/// The pixels of a PNG file.
class Pixels {
public:
    explicit Pixels(const std::string& file) {
        png_.version = PNG_IMAGE_VERSION;
        if (!png_image_begin_read_from_memory(&png_, file.data(), file.size())) throw std::runtime_error(png_.message);
        gray = (png_.format & PNG_FORMAT_FLAG_COLOR) == 0;
        png_.format = PNG_FORMAT_RGB;
        bytes_.resize(PNG_IMAGE_SIZE(png_));
        if (!png_image_finish_read(&png_, nullptr, bytes_.data(), 0, nullptr)) throw std::runtime_error(png_.message);
    }
    int Width() const { return static_cast<int>(png_.width); }
    int Height() const { return static_cast<int>(png_.height); }
    Pixel At(int x, int y) const {
        const auto* p = &bytes_[static_cast<std::size_t>(y * Width() + x) * 3];
        return {p[0], p[1], p[2]};
    }
    int Gray(int x, int y) const { return At(x, y).red; }

    bool gray = false;

private:
    png_image png_{};
    std::vector<png_byte> bytes_;
};

/// A PNG picture of these pixels, in rows of `width`.
inline Picture PictureOf(int width, const std::vector<Pixel>& pixels) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(width);
    png.height = static_cast<png_uint_32>(pixels.size()) / png.width;
    png.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes;
    for (const Pixel& p : pixels)
        for (const int channel : {p.red, p.green, p.blue}) bytes.push_back(static_cast<png_byte>(channel));
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png);
    std::string file(size, '\0');
    EXPECT_TRUE(png_image_write_to_memory(&png, file.data(), &size, 0, bytes.data(), 0, nullptr));
    file.resize(size);
    return {"image/png", file};
}

}  // namespace ProgramTest
