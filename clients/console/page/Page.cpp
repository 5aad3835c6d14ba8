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

/// Returns the longer side of a box on a drawing of this width.
unsigned PixelsOf(const Box& box, const Page& page, unsigned pixelWidth) {
    constexpr double least = 64, most = 8000;
    const double height = static_cast<double>(pixelWidth) * page.height / page.width;
    const double side = std::max(box.width * pixelWidth, box.height * height);
    return static_cast<unsigned>(std::clamp(std::ceil(side), least, most));
}

std::filesystem::path FileOf(const cImage& image) {
    std::filesystem::path path = FileBelow(image.Root_RootDirectory, image.URL);
    if (path.empty()) throw std::runtime_error("its stored name means no file");
    return path;
}

void Note(PlacedPicture& placed, const std::string& note) { placed.note += (placed.note.empty() ? "" : ", ") + note; }

void Fill(PlacedPicture& placed, const cImage& image, unsigned longestSide) {
    placed.caption = CaptionOf(image);
    try {
        placed.picture = std::make_shared<Picture>(ReadPicture(FileOf(image), longestSide));
        const int frames = placed.picture->frames;
        if (frames > 1) Note(placed, fmt::format("frame 1 of {}", frames));
    } catch (const std::exception& failure) {
        placed.missing = failure.what();
    }
}

PlacedPicture Placed(const cUniCard& entry, const cImagecardAttribute& attribute, const Page& page,
                     unsigned pixelWidth) {
    PlacedPicture placed{
        .box = BoxOf(attribute), .number = attribute.IASequence, .orientation = Orientation(attribute.IAMirrRotStatus)};
    const Ref<cImage> image = ImageOf(entry, attribute);
    if (!image) {
        placed.caption = fmt::format("image {}", attribute.ImageID);
        placed.missing = WhyNoImage(entry, attribute.ImageID);
        return placed;
    }
    Fill(placed, *image, PixelsOf(placed.box, page, pixelWidth));
    if (!entry.Series) return placed;
    placed.number = image->FrameNumber;
    if (IsPlacedByTimeOnly(*image)) Note(placed, PlacedByTimeOnly);
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

std::string TeethOf(const cImage& image) { return TeethByQuadrant(image.sTeeth); }

std::string CaptionOf(const cImage& image) {
    if (!image.sTeeth.empty()) return TeethOf(image);
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
        page.pictures.push_back(Placed(entry, placed, page, pixelWidth));
    if (entry.Template) page.empty = EmptySlotsOf(*entry.Template, page);
    return page;
}

}  // namespace Console
