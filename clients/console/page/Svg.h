#pragma once

#include "console/page/Page.h"

#include <functional>

namespace Console {

/// The parts that a drawing shows besides the pictures.
struct DrawingOptions {
    bool numbers = false;  ///< the number of each picture: its frame, or its place on the card
    bool empty = false;    ///< the slots that show no image, outlined, with number and name
    bool within = false;   ///< for a place inside of an HTML page: no XML declaration, no fixed size
};

/// Takes the next part of a text.
using TextSink = std::function<void(std::string_view)>;

/// Writes the page as an SVG drawing that needs no other file: the canvas in black, each picture completely visible in
/// its box, turned and mirrored, with its note at the lower edge. A picture has the shape of its proportion,
/// independent of its number of pixels. A missing picture is an outlined box with "no picture" and the reason. A
/// picture or slot outside of the canvas enlarges the drawing, so that nothing is hidden.
///
/// Reads each picture when it is written, and forgets it before the next one, so that memory is bounded by one picture.
/// Afterwards `missing` of each place is known.
void WriteSvg(Page& page, const DrawingOptions& options, const TextSink& write);

/// Calls `draw` with one complete SVG drawing for each element of the page, in the order in which they lie on each
/// other: drawn into one place, they show what `WriteSvg` writes. Reads the pictures as `WriteSvg` does.
void EachLayer(Page& page, const DrawingOptions& options, const TextSink& draw);

/// Returns a text escaped for XML and HTML, for content and for quoted attributes. Characters that XML forbids and
/// invalid UTF-8 become U+FFFD.
std::string XmlText(std::string_view text);

/// Returns a data URL that contains the picture: "data:image/png;base64,...".
std::string DataAddress(const Picture& picture);

}  // namespace Console
