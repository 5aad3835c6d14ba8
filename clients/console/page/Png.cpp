#include "console/page/Png.h"

#include <algorithm>
#include <cmath>
#include <librsvg/rsvg.h>
#include <memory>
#include <stdexcept>

namespace Console {
namespace {

struct Release {
    void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
    void operator()(GInputStream* stream) const { g_object_unref(stream); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

[[noreturn]] void RefuseDrawing(GError* error) {
    const Held<GError> held(error);
    throw std::runtime_error(std::string("the drawing can't be made: ") + (error ? error->message : "no reason"));
}

Held<RsvgHandle> Parsed(const std::string& svg) {
    const Held<GInputStream> stream(
        g_memory_input_stream_new_from_data(svg.data(), static_cast<gssize>(svg.size()), nullptr));
    GError* error = nullptr;
    // The pictures inside are longer than the parser's usual limit for a text.
    Held<RsvgHandle> handle(
        rsvg_handle_new_from_stream_sync(stream.get(), nullptr, RSVG_HANDLE_FLAG_UNLIMITED, nullptr, &error));
    if (!handle) RefuseDrawing(error);
    return handle;
}

/// Returns the height divided by the width.
double ProportionOf(RsvgHandle& handle) {
    gboolean hasWidth = FALSE, hasHeight = FALSE, hasBox = FALSE;
    RsvgLength width{}, height{};
    RsvgRectangle box{};
    rsvg_handle_get_intrinsic_dimensions(&handle, &hasWidth, &width, &hasHeight, &height, &hasBox, &box);
    if (!hasBox || box.width <= 0) throw std::runtime_error("the drawing can't be made: it has no size");
    return box.height / box.width;
}

cairo_status_t Append(void* bytes, const unsigned char* data, unsigned length) {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

void Require(cairo_status_t status) {
    if (status == CAIRO_STATUS_SUCCESS) return;
    throw std::runtime_error(std::string("the drawing can't be made: ") + cairo_status_to_string(status));
}

}  // namespace

std::string PngOfSvg(const std::string& svg, unsigned width) {
    const Held<RsvgHandle> handle = Parsed(svg);
    constexpr double highest = 32767;
    const double height = std::max(1.0, std::round(width * ProportionOf(*handle)));
    if (!(height <= highest))
        throw std::runtime_error("the drawing would be more than 32767 pixels high; make it less wide with --width");
    const Held<cairo_surface_t> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width), static_cast<int>(height)));
    Require(cairo_surface_status(surface.get()));
    const Held<cairo_t> context(cairo_create(surface.get()));
    const RsvgRectangle viewport{0, 0, static_cast<double>(width), height};
    GError* error = nullptr;
    if (!rsvg_handle_render_document(handle.get(), context.get(), &viewport, &error)) RefuseDrawing(error);
    std::string bytes;
    Require(cairo_surface_write_to_png_stream(surface.get(), Append, &bytes));
    return bytes;
}

}  // namespace Console
