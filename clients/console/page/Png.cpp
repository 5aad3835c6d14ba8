#include "console/page/Png.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <librsvg/rsvg.h>
#include <memory>
#include <stdexcept>

namespace Console {
namespace {

struct Release {
    void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
    void operator()(GInputStream* stream) const { g_object_unref(stream); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

[[noreturn]] void RefuseDrawing(GError* error) {
    const Held<GError> held(error);
    throw std::runtime_error(std::string("the drawing can't be made: ") + (error ? error->message : "no reason"));
}

Held<RsvgHandle> Parsed(std::string_view svg) {
    const Held<GInputStream> stream(
        g_memory_input_stream_new_from_data(svg.data(), static_cast<gssize>(svg.size()), nullptr));
    GError* error = nullptr;
    // The pictures inside are longer than the parser's usual limit for a text.
    Held<RsvgHandle> handle(
        rsvg_handle_new_from_stream_sync(stream.get(), nullptr, RSVG_HANDLE_FLAG_UNLIMITED, nullptr, &error));
    if (!handle) RefuseDrawing(error);
    return handle;
}

/// Takes the bytes of a file. An exception must not pass through the library that calls this, so it is kept.
struct Output {
    const TextSink& write;
    std::exception_ptr failure{};
};

cairo_status_t Append(void* output, const unsigned char* data, unsigned length) {
    auto& to = *static_cast<Output*>(output);
    try {
        to.write({reinterpret_cast<const char*>(data), length});
        return CAIRO_STATUS_SUCCESS;
    } catch (...) {
        to.failure = std::current_exception();
        return CAIRO_STATUS_WRITE_ERROR;
    }
}

void Require(cairo_status_t status) {
    if (status == CAIRO_STATUS_SUCCESS) return;
    throw std::runtime_error(std::string("the drawing can't be made: ") + cairo_status_to_string(status));
}

double HeightOf(const Box& drawing, unsigned width) {
    constexpr double highest = 32767;
    const double height = std::max(1.0, std::round(width * drawing.height / drawing.width));
    if (!(height <= highest))
        throw std::runtime_error("the drawing would be more than 32767 pixels high; make it less wide with --width");
    return height;
}

}  // namespace

void Canvas::Release::operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }

Canvas::Canvas(unsigned width, const Box& drawing)
    : width_(width),
      height_(HeightOf(drawing, width)),
      surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width), static_cast<int>(height_))) {
    Require(cairo_surface_status(surface_.get()));
}

void Canvas::Draw(std::string_view svg) {
    const Held<RsvgHandle> handle = Parsed(svg);
    const Held<cairo_t> context(cairo_create(surface_.get()));
    const RsvgRectangle viewport{0, 0, width_, height_};
    GError* error = nullptr;
    if (!rsvg_handle_render_document(handle.get(), context.get(), &viewport, &error)) RefuseDrawing(error);
}

void Canvas::WritePng(const TextSink& write) const {
    Output output{write};
    const cairo_status_t status = cairo_surface_write_to_png_stream(surface_.get(), Append, &output);
    if (output.failure) std::rethrow_exception(output.failure);
    Require(status);
}

void WritePng(Page& page, const DrawingOptions& options, unsigned width, const TextSink& write) {
    Canvas canvas(width, WholeOf(page));
    EachLayer(page, options, [&](std::string_view svg) { canvas.Draw(svg); });
    canvas.WritePng(write);
}

}  // namespace Console
