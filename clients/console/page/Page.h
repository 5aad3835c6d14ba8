#pragma once

#include "cardlist/cUniCard.h"
#include "console/Database.h"
#include "console/page/Orientation.h"
#include "console/page/Picture.h"

#include <memory>

namespace Console {

/// A place on a page, in fractions of its canvas, counted from the top left.
struct Box {
    double x = 0, y = 0, width = 0, height = 0;
};

/// One image with its place on a page.
struct PlacedPicture {
    Box box;
    Platform::Long number = 0;  ///< the number that `DrawingOptions::numbers` shows: frame of a series, place on a card
    Orientation orientation{1};
    std::string caption{};  ///< the teeth, or what else is known
    std::string note{};     ///< what a viewer must know beside: "frame 1 of 3, placed by time only"
    std::shared_ptr<const Picture> picture{};
    std::string missing{};  ///< the reason why the picture is missing; empty if it is present
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

/// Returns the title of an entry of a patient's list: its name or description, or else its kind.
std::string NameOf(const OXClass::cUniCard& entry);

/// Returns the image that is placed there; null if the entry lacks it.
OXClass::Ref<OXClass::cImage> ImageOf(const OXClass::cUniCard& entry, const OXClass::cImagecardAttribute& placed);

/// Returns the teeth of an image by quadrant, "16,17 46,47"; else its anatomy in words, or its number.
std::string CaptionOf(const OXClass::cImage& image);

/// Returns the teeth of an image by quadrant, "16,17 46,47"; empty where none are known.
std::string TeethOf(const OXClass::cImage& image);

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

/// Returns the page of an opened entry for a drawing of `pixelWidth` pixels; pictures are reduced to the resolution
/// that it needs. A picture that can't be read is missing, with the reason. Films of a series that are placed by time
/// only have a note.
Page PageOf(const OXClass::cUniCard& entry, unsigned pixelWidth);

}  // namespace Console
