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

/// One image as it lies on a page.
struct PlacedPicture {
    Box box;
    Platform::Long number = 0;  ///< what is written at it on demand: frame of a series, place on a card
    Orientation orientation{1};
    std::string caption{};  ///< the teeth, or what else is known
    std::string note{};     ///< what a viewer must know beside: "frame 1 of 3, placed by time only"
    std::shared_ptr<const Picture> picture{};
    std::string missing{};  ///< why there is no picture; empty where there is one
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

/// What an entry of a patient's list is called: its name or description, else its kind.
std::string NameOf(const OXClass::cUniCard& entry);

/// The image that is placed there; nothing where the entry lacks it.
OXClass::Ref<OXClass::cImage> ImageOf(const OXClass::cUniCard& entry, const OXClass::cImagecardAttribute& placed);

/// The teeth of an image by quadrant, "16,17 46,47"; else its anatomy in words, or its number.
std::string CaptionOf(const OXClass::cImage& image);

/// The teeth of an image by quadrant, "16,17 46,47"; empty where none are known.
std::string TeethOf(const OXClass::cImage& image);

/// Returns true for a film that has a frame though neither teeth nor region of it are known: hanging then placed it
/// by its time alone, and its place says nothing of what it shows. Views of the whole head are none.
bool IsPlacedByTimeOnly(const OXClass::cImage& image);
constexpr const char* PlacedByTimeOnly = "placed by time only";

/// Why there is no picture of an image; empty where there is one. `Quickly` renders no plain pixels and
/// counts them only.
std::string WhyNoPicture(const OXClass::cImage& image);
std::string WhyNoPictureQuickly(const OXClass::cImage& image);

/// An entry by its key, "IC5" or "SE7", with those of its images loaded that can be read (`DamagesOf` tells
/// the others). Throws `UserError` for any other key and for one that isn't in the database.
OXClass::Ref<OXClass::cUniCard> OpenEntry(const Database& database, const std::string& key);

/// The page of an opened entry, for a drawing that is `pixelWidth` wide: pictures are no finer than that
/// needs. A picture that can't be read is missing, with its reason. Films of a series that are placed by
/// time only have a note.
Page PageOf(const OXClass::cUniCard& entry, unsigned pixelWidth);

}  // namespace Console
