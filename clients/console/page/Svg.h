#pragma once

#include "console/page/Page.h"

namespace Console {

/// What a drawing shows besides the pictures.
struct DrawingOptions {
    bool numbers = false;  ///< the number of each picture: its frame, or its place on the card
    bool empty = false;    ///< the slots that show no image, outlined, with number and name
    bool within = false;   ///< for a place inside of an HTML page: no XML declaration, no fixed size
};

/// The page as an SVG drawing that needs no other file: the canvas in black, each picture whole in its
/// box, turned and mirrored, with its note at the lower edge. The shape of a picture is that of its
/// proportion, however many pixels it has. A missing picture is an outlined box that says "no picture" and
/// why. What lies beyond the canvas makes the drawing larger, so that nothing is hidden.
std::string SvgOf(const Page& page, const DrawingOptions& options);

/// A text as XML and HTML take it, in content and in quoted attributes; what is no character there, or
/// no UTF-8, becomes U+FFFD.
std::string XmlText(std::string_view text);

/// "data:image/png;base64,...", the address of a picture that stands in the text itself.
std::string DataAddress(const Picture& picture);

}  // namespace Console
