#include "console/page/Picture.h"

#include "console/dicom/DicomPicture.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Console {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view PngHead("\x89PNG\r\n\x1A\n", 8), JpegHead("\xFF\xD8\xFF", 3);

std::ifstream Opened(const fs::path& path) {
    constexpr std::uintmax_t most = 256U << 20;
    std::error_code failure;
    if (!fs::exists(path, failure)) throw std::runtime_error("the file is missing");
    if (!fs::is_regular_file(path, failure)) throw std::runtime_error("is no file");
    if (fs::file_size(path, failure) > most) throw std::runtime_error("is larger than 256 MB");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error(std::string("can't be read: ") + std::strerror(errno));
    return in;
}

}  // namespace

Picture ReadPicture(const fs::path& path, unsigned longestSide) {
    std::ifstream in = Opened(path);
    std::string head(PngHead.size(), '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    const bool png = head == PngHead;
    if (!png && !head.starts_with(JpegHead)) return {"image/png", DicomPictureAsPng(path, longestSide)};
    in.clear();
    in.seekg(0);
    return {png ? "image/png" : "image/jpeg", {std::istreambuf_iterator<char>(in), {}}};
}

}  // namespace Console
