#pragma once

#include "cardlist/cUniCard.h"
#include "console/Database.h"
#include "console/page/Orientation.h"
#include "console/page/Picture.h"

#include <memory>

namespace Console {

/// A rectangle on a page, counted from the top left of its canvas: in fractions of the canvas, or in its units.
struct Box {
    double x = 0, y = 0, width = 0, height = 0;
};

/// One image with its place on a page. The picture is in memory only while it is drawn.
struct PlacedPicture {
    Box box;                    ///< in fractions of the canvas
    Platform::Long number = 0;  ///< the number that `DrawingOptions::numbers` shows: frame of a series, place on a card
    Orientation orientation{1};
    std::string caption{};                     ///< the teeth, or what else is known
    std::string note{};                        ///< what a viewer must know beside: "frame 1 of 3, placed by time only"
    std::filesystem::path file{};              ///< the picture's file
    PixelSpace space{};                        ///< in which the drawing shows the picture, before it is turned
    std::shared_ptr<const Picture> picture{};  ///< set where a picture has no file
    std::string missing{};                     ///< the reason why the picture is missing; known after `PictureOf`
};

/// A slot of the layout that shows no image.
struct EmptySlot {
    Box box;
    Platform::Long number = 0;
    std::string caption;
};

/// A card or a series as a person sees it: a canvas with pictures.
struct Page {
    std::string title;
    Platform::Long width = 0;  ///< of the canvas, in its own units; never 0
    Platform::Long height = 0;
    std::vector<PlacedPicture> pictures{};  ///< in the order in which they are laid down
    std::vector<EmptySlot> empty{};
};

/// Returns the picture of a place, which it reads from its file; null if it is missing. Adds the number of frames to
/// the note, and writes the reason into `missing`. Called once for each place.
std::shared_ptr<const Picture> PictureOf(PlacedPicture& placed);

/// Returns a box in units of the canvas. Limits coordinates far outside of the page, so that every drawing has a size.
Box InUnits(const Page& page, const Box& box);

/// Returns the canvas in its units, enlarged to include all pictures that are outside of its edges.
Box WholeOf(const Page& page);

/// Returns the title of an entry of a patient's list: its name or description, or else its kind.
std::string NameOf(const OXClass::cUniCard& entry);

/// Returns the image that is placed there; null if the entry lacks it.
OXClass::Ref<OXClass::cImage> ImageOf(const OXClass::cUniCard& entry, const OXClass::cImagecardAttribute& placed);

/// Returns the teeth of an image by quadrant, "16,17 46,47"; else its anatomy in words, or its number.
std::string CaptionOf(const OXClass::cImage& image);

/// Returns the teeth of an image by quadrant, "16,17 46,47"; empty where none are known.
std::string TeethText(const OXClass::cImage& image);

/// Returns true for a film with a frame whose teeth and region are both unknown: hanging placed it by its time alone,
/// so its place does not show its anatomy. Returns false for views of the whole head.
bool IsPlacedByTimeOnly(const OXClass::cImage& image);
constexpr const char* PlacedByTimeOnly = "placed by time only";

/// Return the reason why an image has no picture; empty if it has one. `WhyNoPictureQuickly` does not render
/// uncompressed pixels, it only checks their number.
std::string WhyNoPicture(const OXClass::cImage& image);
std::string WhyNoPictureQuickly(const OXClass::cImage& image);

/// Returns the entry with a key such as "IC5" or "SE7". Loads those of its images that can be read; `DamagesOf` returns
/// the others. Throws `UserError` for a key of another form and for an unknown one.
OXClass::Ref<OXClass::cUniCard> OpenEntry(const Database& database, const std::string& key);

/// Returns the page of an opened entry for a drawing of `pixelWidth` pixels, without its pictures: `PictureOf` reads
/// them one by one, reduced to the pixels that the drawing shows. Films of a series that are placed by time only have a
/// note.
Page PageOf(const OXClass::cUniCard& entry, unsigned pixelWidth);

}  // namespace Console
