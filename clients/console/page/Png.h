#pragma once

#include "console/page/Svg.h"

#include <cairo.h>
#include <memory>

namespace Console {

/// A picture that SVG drawings of one size are drawn on, one over the other. Used by one thread.
class Canvas {
public:
    /// Creates a black picture `width` pixels wide, with its height in proportion to the size of the drawings. Throws
    /// `std::runtime_error` for a picture too large for the file format or for the memory.
    Canvas(unsigned width, const Box& drawing);

    /// Draws an SVG drawing over the whole picture. Throws `std::runtime_error` for a text that is not one.
    void Draw(std::string_view svg);

    /// Calls `write` with the bytes of a PNG file of the picture, part by part.
    void WritePng(const TextSink& write) const;

private:
    struct Release {
        void operator()(cairo_surface_t* surface) const;
    };
    double width_, height_;
    std::unique_ptr<cairo_surface_t, Release> surface_;
};

/// Writes a page as a PNG file, `width` pixels wide, with its height in proportion. Reads the pictures as `WriteSvg`
/// does. Throws as `Canvas`.
void WritePng(Page& page, const DrawingOptions& options, unsigned width, const TextSink& write);

}  // namespace Console
