#include "console/page/Page.h"

#include "anatomy/ToothString.h"
#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/dicom/DicomCodes.h"
#include "frame/StoredName.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <set>

namespace Console {
namespace {

using namespace OXClass;

constexpr Long UsualWidth = 1000, UsualHeight = 700;

Box BoxOf(const cImagecardAttribute& placed) { return {placed.IAPosX, placed.IAPosY, placed.IAWidth, placed.IAHeight}; }

Box BoxOf(const cTemplateAttribute& slot) { return {slot.TAPosX, slot.TAPosY, slot.TAWidth, slot.TAHeight}; }

/// Returns the space of a box on a drawing in which `scale` pixels show a unit of the canvas, before the picture in it
/// is turned.
PixelSpace SpaceOf(const PlacedPicture& placed, const Page& page, double scale) {
    constexpr double least = 64, most = 8000;
    const auto pixels = [&](double part, Long side) {
        return static_cast<unsigned>(std::clamp(std::ceil(part * static_cast<double>(side) * scale), least, most));
    };
    PixelSpace space{pixels(placed.box.width, page.width), pixels(placed.box.height, page.height)};
    if (placed.orientation.Degrees() % 180 != 0) std::swap(space.width, space.height);
    return space;
}

std::filesystem::path FileOf(const cImage& image) {
    std::filesystem::path path = FileBelow(image.Root_RootDirectory, image.URL);
    if (path.empty()) throw std::runtime_error("its stored name means no file");
    return path;
}

PlacedPicture Placed(const cUniCard& entry, const cImagecardAttribute& attribute) {
    PlacedPicture placed{
        .box = BoxOf(attribute), .number = attribute.IASequence, .orientation = Orientation(attribute.IAMirrRotStatus)};
    const Ref<cImage> image = ImageOf(entry, attribute);
    if (!image) {
        placed.caption = fmt::format("image {}", attribute.ImageID);
        placed.missing = WhyNoImage(entry, attribute.ImageID);
        return placed;
    }
    placed.caption = CaptionOf(*image);
    try {
        placed.file = FileOf(*image);
    } catch (const std::exception& failure) {
        placed.missing = failure.what();
    }
    if (!entry.Series) return placed;
    placed.number = image->FrameNumber;
    if (IsPlacedByTimeOnly(*image)) placed.note = PlacedByTimeOnly;
    return placed;
}

std::vector<EmptySlot> EmptySlotsOf(const cTemplate& layout, const Page& page) {
    std::set<Long> shown;
    for (const PlacedPicture& picture : page.pictures) shown.insert(picture.number);
    std::vector<EmptySlot> empty;
    for (const auto& slot : Each<cTemplateAttribute>(*layout.TemplateAttributes))
        if (!shown.contains(slot.TANumberInTemplate))
            empty.push_back({BoxOf(slot), slot.TANumberInTemplate, slot.TAADName});
    return empty;
}

/// Returns the teeth of a tooth string, a blank between those of different quadrants.
std::string TeethByQuadrant(const std::string& teeth) {
    std::string text;
    char quadrant = 0;
    for (const std::string& tooth : SplitIgnoringCase(teeth, ",")) {
        if (tooth.empty()) continue;
        if (quadrant != 0) text += tooth[0] == quadrant ? "," : " ";
        text += tooth;
        quadrant = tooth[0];
    }
    return text;
}

/// Returns false for an image without teeth or with an invalid tooth string, which hangs as one without teeth.
bool HasTeeth(const cImage& image) {
    try {
        return OXClass::TeethOf(image.sTeeth).any();
    } catch (const Error&) {
        return false;
    }
}

Ref<cUniCard> OpenCard(const Database& database, Long number) {
    Ref<cUniCard> entry = New<cUniCard>();
    entry->Imagecard = New<cImagecard>();
    WithoutTextBoxes([&] { entry->Imagecard->GetImageCard(database.Con(), number); });
    if (number == 0 || entry->Imagecard->ICID == 0)
        throw UserError(fmt::format("there is no image card IC{}; see: oxclass cards PATIENT", number));
    LoadReadable(database.Con(), *entry);
    return entry;
}

Ref<cUniCard> OpenSeries(const Database& database, Long number) {
    Ref<cUniCard> entry = New<cUniCard>();
    entry->Series = New<cSerie>();
    if (!entry->Series->loadSeries(CStr(number), database.Con()))
        throw UserError(fmt::format("there is no series SE{}; see: oxclass series", number));
    LoadReadable(database.Con(), *entry);
    return entry;
}

}  // namespace

std::shared_ptr<const Picture> PictureOf(PlacedPicture& placed) {
    if (placed.picture || !placed.missing.empty()) return placed.picture;
    try {
        auto picture = std::make_shared<const Picture>(ReadPicture(placed.file, placed.space));
        if (picture->frames > 1)
            placed.note =
                fmt::format("frame 1 of {}{}{}", picture->frames, placed.note.empty() ? "" : ", ", placed.note);
        return picture;
    } catch (const std::exception& failure) {
        placed.missing = failure.what();
        return nullptr;
    }
}

Box InUnits(const Page& page, const Box& box) {
    const auto limited = [](double part) { return std::clamp(part, -100.0, 100.0); };
    const auto width = static_cast<double>(page.width), height = static_cast<double>(page.height);
    return {limited(box.x) * width, limited(box.y) * height, limited(box.width) * width, limited(box.height) * height};
}

Box WholeOf(const Page& page) {
    double left = 0, top = 0, right = page.width, bottom = page.height;
    for (const PlacedPicture& placed : page.pictures) {
        const Box r = InUnits(page, placed.box);
        left = std::min(left, r.x);
        top = std::min(top, r.y);
        right = std::max(right, r.x + r.width);
        bottom = std::max(bottom, r.y + r.height);
    }
    return {left, top, right - left, bottom - top};
}

std::string TeethText(const cImage& image) { return TeethByQuadrant(image.sTeeth); }

std::string CaptionOf(const cImage& image) {
    if (!image.sTeeth.empty()) return TeethText(image);
    if (image.AnaRegion.empty() && image.AnaRegionMod.empty()) return fmt::format("image {}", image.ID);
    return AnatomyInWords(image.AnaRegion, image.AnaRegionMod, image.Laterality);
}

bool IsPlacedByTimeOnly(const cImage& image) {
    const bool head = image.ImageType == imggTypeDXPanoramic || image.ImageType == imggTypeDXCephalometric ||
                      image.ImageType == imggTypeDXSkull;
    const bool known = HasTeeth(image) || !image.AnaRegion.empty() || !image.AnaRegionMod.empty();
    return image.FrameNumber > 0 && !known && !head;
}

std::string WhyNoPicture(const cImage& image) {
    try {
        return WhyNotReadable(FileOf(image));
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

std::string WhyNoPictureQuickly(const cImage& image) {
    try {
        return WhyNotReadableQuickly(FileOf(image));
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

Ref<cImage> ImageOf(const cUniCard& entry, const cImagecardAttribute& placed) {
    return entry.colImages->Item("K" + CStr(placed.ImageID));
}

std::string NameOf(const cUniCard& entry) {
    std::string name = entry.Series ? Undoubled(entry.Series->SeriesDescription) : entry.Imagecard->ICName;
    if (!name.empty()) return name;
    return entry.Series ? "Series" : "Image card";
}

Ref<cUniCard> OpenEntry(const Database& database, const std::string& key) {
    const std::string kind = UCase(key.substr(0, 2));
    if (kind != "IC" && kind != "SE")
        throw UserError(fmt::format("\"{}\" names no card and no series; write IC5 for image card 5, SE7 for series 7",
                                    Printable(key)));
    const Long number = NumberOf(key.substr(2), kind == "IC" ? "an image card" : "a series");
    return kind == "IC" ? OpenCard(database, number) : OpenSeries(database, number);
}

Page PageOf(const cUniCard& entry, unsigned pixelWidth) {
    const cImagecard& card = *entry.Imagecard;
    Page page{.title = NameOf(entry), .width = card.ICWidth, .height = card.ICHeight};
    if (page.width <= 0 || page.height <= 0) {
        page.width = UsualWidth;
        page.height = UsualHeight;
    }
    for (const auto& placed : Each<cImagecardAttribute>(*card.ImagecardAttributes))
        page.pictures.push_back(Placed(entry, placed));
    const double scale = pixelWidth / WholeOf(page).width;
    for (PlacedPicture& placed : page.pictures) placed.space = SpaceOf(placed, page, scale);
    if (entry.Template) page.empty = EmptySlotsOf(*entry.Template, page);
    return page;
}

}  // namespace Console
