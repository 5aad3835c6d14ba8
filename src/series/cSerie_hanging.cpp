#include "anatomy/RegionCodes.h"
#include "anatomy/ToothString.h"
#include "cards/cTemplate.h"
#include "images/cImage.h"
#include "series/cSerie.h"

#include <algorithm>
#include <array>
#include <optional>

namespace OXClass {

using namespace Platform;

namespace {

using RegionCode::BothJaws;
using RegionCode::BothJawsOld;
using RegionCode::LateralIncisor;
using RegionCode::LowerJaw;
using RegionCode::Skull;
using RegionCode::UpperJaw;

/// The numbers of the standard layouts: the `TCDicomID` of their templates.
namespace Layout {
constexpr Long None = 0;
constexpr Long Panoramic = 1;
constexpr Long LateralHead = 2;
constexpr Long TwentyFilms = 5;
constexpr Long EighteenFilms = 6;
constexpr Long FourBitewings = 7;
constexpr Long TwoBitewings = 8;
constexpr Long OneImage = 9;
constexpr Long UpToThreeImages = 10;
constexpr Long FourOrFiveImages = 11;
constexpr Long UpToNineImages = 12;
constexpr Long FrontalHead = 14;
}  // namespace Layout

/// Returns the last character of a region modifier, by which the tables below name it: the modifiers of teeth differ in
/// nothing else.
constexpr char LastOf(std::string_view modifier) { return modifier.back(); }

/// Returns the region modifier with this last character: 'C' denotes "T-5100C".
String ModifierOf(char last) {
    String modifier = RegionCode::ThirdMolar;
    modifier.back() = last;
    return modifier;
}

// ---- which modifiers an image's teeth fit ---------------------------------------------------------

using Teeth = std::initializer_list<Integer>;

std::size_t Selected(const ToothSet& teeth, Teeth wanted) {
    return static_cast<std::size_t>(std::count_if(
        wanted.begin(), wanted.end(), [&](Integer tooth) { return teeth.test(static_cast<std::size_t>(tooth)); }));
}

bool Some(const ToothSet& teeth, Teeth wanted) { return Selected(teeth, wanted) > 0; }

bool FitsBackOfJaw(const ToothSet& teeth) {
    const auto two = [&](Teeth molars) { return Selected(teeth, molars) >= 2; };
    return two({16, 17, 18}) || two({26, 27, 28}) || two({36, 37, 38}) ||
           (two({46, 47, 48}) && !Some(teeth, {13, 23, 33, 43}));
}

/// Returns true if the teeth fit a modifier, whatever modifier their image has. "T-5100B", "T-5100A" and
/// "T-51008" are matched by their code alone, so no teeth fit them.
bool TeethFitMod(const ToothSet& teeth, char modifier) {
    switch (modifier) {
        case LastOf(RegionCode::ThirdMolar): return FitsBackOfJaw(teeth);
        case LastOf(RegionCode::SecondPremolar):
            return Some(teeth, {14, 15, 16, 24, 25, 26, 34, 35, 36, 44, 45, 46}) &&
                   !Some(teeth, {12, 22, 32, 42, 18, 28, 38, 48});
        case LastOf(RegionCode::Canine):
            return Some(teeth, {13, 23, 33, 43}) && !Some(teeth, {11, 21, 31, 41, 15, 25, 35, 45});
        case LastOf(RegionCode::LateralIncisor): return Some(teeth, {12, 22, 32, 42}) && !Some(teeth, {15, 25, 35, 45});
        case LastOf(RegionCode::CentralIncisor): return Some(teeth, {11, 21, 31, 41}) && !Some(teeth, {14, 24, 34, 44});
        default: return false;
    }
}

// ---- layouts ----------------------------------------------------------------------------------------

/// One frame of a layout and the anatomy of the image that belongs there. `modifiers` are last characters, C to A for
/// the molars, 9 and 8 for the premolars, 7 for the canine, 6 and 5 for the incisors; earlier ones are preferred.
struct Frame {
    Long number;
    const char* laterality;
    const char* region;
    const char* modifiers;
    Long behind = 0;  ///< if not 0, filled only if this frame was, whose image decides the modifiers
};

constexpr std::array TwentyFrames{
    Frame{1, "R", UpperJaw, "CBA"},   Frame{2, "R", UpperJaw, "98"},   Frame{3, "R", UpperJaw, "765"},
    Frame{4, "R", UpperJaw, "65", 3}, Frame{5, "B", UpperJaw, "765"},  Frame{7, "L", UpperJaw, "765"},
    Frame{6, "L", UpperJaw, "65", 7}, Frame{8, "L", UpperJaw, "98"},   Frame{9, "L", UpperJaw, "CBA"},
    Frame{11, "R", BothJaws, "98"},   Frame{10, "R", BothJaws, "CBA"}, Frame{12, "L", BothJaws, "98"},
    Frame{13, "L", BothJaws, "CBA"},  Frame{14, "R", LowerJaw, "CBA"}, Frame{15, "R", LowerJaw, "98"},
    Frame{16, "R", LowerJaw, "765"},  Frame{17, "B", LowerJaw, "567"}, Frame{18, "L", LowerJaw, "765"},
    Frame{19, "L", LowerJaw, "98"},   Frame{20, "L", LowerJaw, "CBA"},
};

constexpr std::array EighteenFrames{
    Frame{1, "R", UpperJaw, "CBA"},  Frame{2, "R", UpperJaw, "98"},   Frame{3, "R", UpperJaw, "765"},
    Frame{4, "B", UpperJaw, "567"},  Frame{5, "L", UpperJaw, "765"},  Frame{6, "L", UpperJaw, "98"},
    Frame{7, "L", UpperJaw, "CBA"},  Frame{8, "R", BothJaws, "CBA"},  Frame{9, "R", BothJaws, "98"},
    Frame{10, "L", BothJaws, "98"},  Frame{11, "L", BothJaws, "CBA"}, Frame{12, "R", LowerJaw, "CBA"},
    Frame{13, "R", LowerJaw, "98"},  Frame{14, "R", LowerJaw, "765"}, Frame{15, "B", LowerJaw, "567"},
    Frame{16, "L", LowerJaw, "765"}, Frame{17, "L", LowerJaw, "98"},  Frame{18, "L", LowerJaw, "CBA"},
};

/// One frame of the layout of four bitewings: the modifiers of the first pass, and those of the second pass,
/// which fills the frames that are still free.
struct BitewingFrame {
    Long number;
    const char* laterality;
    const char* first;
    const char* then;
};

constexpr std::array FourBitewings{
    BitewingFrame{1, "R", "BC", "ABC9"},
    BitewingFrame{2, "R", "89", "89A"},
    BitewingFrame{3, "L", "89", "89A"},
    BitewingFrame{4, "L", "BC", "ABC9"},
};

// ---- one call of HangSeries -------------------------------------------------------------------------

/// The images of one call, and their placing. Stores the teeth of an image once they are read, because a
/// search looks at each image many times.
class Hanging {
public:
    explicit Hanging(const Enumerable& images) {
        for (cImage& image : Each<cImage>(images)) {
            const bool teeth = !image.sTeeth.empty();
            if (image.Laterality.empty() && teeth) image.DeriveLaterality();
            if (image.AnaRegion.empty() && teeth) image.DeriveAnaRegion();
            if (image.AnaRegionMod.empty() && teeth) image.DeriveAnaRegionMod();
            images_.push_back({Ref<cImage>(&image), std::nullopt});
        }
    }

    Long ChooseLayout(Integer count, const cSerie& series) const;
    void Place(Long layout, const Ref<Connection>& conn);

private:
    struct Hung {
        Ref<cImage> image;
        std::optional<ToothSet> teeth;
    };

    template <std::size_t N>
    void PlaceByTable(const std::array<Frame, N>& frames);
    void PlaceBitewings();
    void PlaceTwoBitewings();
    void PlaceByTime();
    void PlaceByTemplate(Long layout, const Ref<Connection>& conn);
    void RemoveDoublePlacements();
    cImage* FindForFrame(const Frame& frame, const char* modifiers);
    bool Belongs(Hung& hung, const Frame& frame, char modifier);
    Integer FrameSum() const;
    Integer ImageCount() const { return CInt(static_cast<std::int64_t>(images_.size())); }
    std::vector<cImage*> OldestFirst() const;

    std::vector<Hung> images_;
};

/// The anatomy that the images of a series of up to four images show together.
struct View {
    bool bothJaws = false;
    bool panoramic = false;
    bool lateralHead = false;
    bool frontalHead = false;
};

void LookAtHead(View& view, const cImage& image, bool described) {
    const bool skull = image.AnaRegion == Skull;
    const bool frontal = image.Laterality == "B";
    const bool sided = image.Laterality == "L" || image.Laterality == "R";
    if ((skull && frontal) || (described && frontal)) view.frontalHead = true;
    if ((skull && sided) || (described && !frontal)) view.lateralHead = true;
    if ((skull && (frontal || sided)) || described) view.bothJaws = false;
}

Long LayoutOfOne(const View& view) {
    if (view.frontalHead) return Layout::FrontalHead;
    if (view.lateralHead) return Layout::LateralHead;
    return view.panoramic ? Layout::Panoramic : Layout::OneImage;
}

Long LayoutOf(Integer count, const View& view) {
    if (view.bothJaws && count >= 1) return count <= 2 ? Layout::TwoBitewings : Layout::FourBitewings;
    if (count == 1) return LayoutOfOne(view);
    if (count < 4) return Layout::UpToThreeImages;
    if (count <= 5) return Layout::FourOrFiveImages;
    if (count <= 9) return Layout::UpToNineImages;
    if (count <= 18) return Layout::EighteenFilms;
    return count <= 20 ? Layout::TwentyFilms : Layout::None;
}

Long Hanging::ChooseLayout(Integer count, const cSerie& series) const {
    View view;
    if (count >= 5) return LayoutOf(count, view);
    const bool described = Contains(UCase(series.SeriesDescription), "CEPH");
    view.bothJaws = true;
    for (const Hung& hung : images_) {
        const cImage& image = *hung.image;
        if (image.AnaRegion != BothJaws && image.AnaRegion != BothJawsOld) view.bothJaws = false;
        if (image.Laterality == "B") view.bothJaws = false;
        if (series.Modality == "PX") {
            view.bothJaws = false;
            view.panoramic = true;
            break;
        }
        if (series.Modality == "DX") LookAtHead(view, image, described);
    }
    return LayoutOf(count, view);
}

void Hanging::Place(Long layout, const Ref<Connection>& conn) {
    for (const Hung& hung : images_) {
        if (hung.image->AnaRegion == BothJawsOld) hung.image->AnaRegion = BothJaws;
        hung.image->FrameNumber = 0;
    }
    switch (layout) {
        case Layout::TwentyFilms: PlaceByTable(TwentyFrames); break;
        case Layout::EighteenFilms: PlaceByTable(EighteenFrames); break;
        case Layout::FourBitewings: PlaceBitewings(); break;
        case Layout::TwoBitewings: PlaceTwoBitewings(); break;
        default: PlaceByTime(); break;
    }
    if (FrameSum() == 0 && layout > Layout::None) PlaceByTemplate(layout, conn);
    RemoveDoublePlacements();
}

bool Hanging::Belongs(Hung& hung, const Frame& frame, char modifier) {
    const cImage& image = *hung.image;
    if (image.FrameNumber != 0 || image.Laterality != frame.laterality || image.AnaRegion != frame.region) return false;
    if (image.AnaRegionMod == ModifierOf(modifier)) return true;
    if (!hung.teeth) hung.teeth = TeethOf(image.sTeeth);
    return TeethFitMod(*hung.teeth, modifier);
}

cImage* Hanging::FindForFrame(const Frame& frame, const char* modifiers) {
    for (; *modifiers; ++modifiers)
        for (Hung& hung : images_)
            if (Belongs(hung, frame, *modifiers)) return hung.image.Get();
    return nullptr;
}

template <std::size_t N>
void Hanging::PlaceByTable(const std::array<Frame, N>& frames) {
    std::array<const cImage*, N + 1> filled{};
    for (const Frame& frame : frames) {
        const char* modifiers = frame.modifiers;
        if (frame.behind != 0) {
            const cImage* neighbour = filled[static_cast<std::size_t>(frame.behind)];
            if (!neighbour) continue;
            if (neighbour->AnaRegionMod == LateralIncisor) modifiers = "5";
        }
        cImage* found = FindForFrame(frame, modifiers);
        filled[static_cast<std::size_t>(frame.number)] = found;
        if (found) found->FrameNumber = frame.number;
    }
}

void Hanging::PlaceBitewings() {
    std::array<bool, FourBitewings.size() + 1> done{};
    const auto pass = [&](const char* BitewingFrame::*modifiers, bool unplacedOnly) {
        for (const BitewingFrame& frame : FourBitewings) {
            const auto number = static_cast<std::size_t>(frame.number);
            for (std::size_t i = 0; i < images_.size() && !done[number]; ++i) {
                cImage& image = *images_[i].image;
                if (image.AnaRegion != BothJaws || image.Laterality != frame.laterality) continue;
                if (unplacedOnly && image.FrameNumber != 0) continue;
                const String wanted = frame.*modifiers;
                done[number] = std::any_of(wanted.begin(), wanted.end(),
                                           [&](char last) { return image.AnaRegionMod == ModifierOf(last); });
                if (done[number]) image.FrameNumber = frame.number;
            }
        }
    };
    pass(&BitewingFrame::first, false);
    pass(&BitewingFrame::then, true);
}

void Hanging::PlaceTwoBitewings() {
    for (const auto& [frame, laterality] : {std::pair{1, "R"}, std::pair{2, "L"}})
        for (const Hung& hung : images_) {
            if (hung.image->AnaRegion != BothJaws || hung.image->Laterality != laterality) continue;
            hung.image->FrameNumber = frame;
            break;
        }
}

/// Returns the images that can be placed by capture time, oldest first, those of equal time in their order. A
/// date at the end of the calendar doesn't count as a time.
std::vector<cImage*> Hanging::OldestFirst() const {
    const Date limit = DateFrom({9999, 12, 31, 23, 59, 0});
    std::vector<cImage*> images;
    for (const Hung& hung : images_)
        if (hung.image->dateTime < limit) images.push_back(hung.image.Get());
    std::stable_sort(images.begin(), images.end(),
                     [](const cImage* a, const cImage* b) { return a->dateTime < b->dateTime; });
    return images;
}

void Hanging::PlaceByTime() {
    ImageCount();
    Long frame = 0;
    for (cImage* image : OldestFirst())
        if (image->FrameNumber == 0) image->FrameNumber = ++frame;  // one listed twice is placed once
}

/// Places by the template's own order, if no image found a frame: the slot of sequence i takes the oldest
/// image that is still without a frame.
void Hanging::PlaceByTemplate(Long layout, const Ref<Connection>& conn) {
    const Ref<cTemplate> card = New<cTemplate>();
    card->GetTemplate(conn, 0, layout);
    card->LoadTemplateAttributes(conn);
    std::unordered_map<Long, Long> numberOfSequence;
    for (const cTemplateAttribute& slot : Each<cTemplateAttribute>(*card->TemplateAttributes))
        numberOfSequence.try_emplace(slot.TASequence, slot.TANumberInTemplate);
    const std::vector<cImage*> images = OldestFirst();
    auto next = images.begin();
    for (Long i = 1; i <= ImageCount() && next != images.end(); ++i) {
        const auto slot = numberOfSequence.find(i);
        if (slot == numberOfSequence.end()) continue;
        (*next)->FrameNumber = slot->second;
        while (next != images.end() && (*next)->FrameNumber != 0) ++next;
    }
}

Integer Hanging::FrameSum() const {
    std::int64_t sum = 0;
    for (const Hung& hung : images_) sum = CInt(sum + hung.image->FrameNumber);
    return static_cast<Integer>(sum);
}

/// If a frame has several images, every image from the second one of them to the end of the list loses its
/// frame, whatever its number.
void Hanging::RemoveDoublePlacements() {
    std::vector<Long> holders(static_cast<std::size_t>(ImageCount()) + 1);
    const auto counted = [&](Long frame) { return frame >= 1 && frame < static_cast<Long>(holders.size()); };
    for (const Hung& hung : images_)
        if (counted(hung.image->FrameNumber)) ++holders[static_cast<std::size_t>(hung.image->FrameNumber)];
    for (std::size_t frame = 1; frame < holders.size(); ++frame) {
        if (holders[frame] < 2) continue;
        int met = 0;
        for (const Hung& hung : images_) {
            const Long number = hung.image->FrameNumber;
            if (number == static_cast<Long>(frame)) ++met;
            if (met < 2) continue;
            if (counted(number)) --holders[static_cast<std::size_t>(number)];
            hung.image->FrameNumber = 0;
        }
    }
}

}  // namespace

Long cSerie::HangSeries(const Ref<Enumerable>& colImgs, const Ref<Connection>& conn) {
    const Integer count = CInt(ImgCount);
    if (count == 0) return 0;
    Hanging hanging(*colImgs);
    TemplateID = hanging.ChooseLayout(count, *this);
    hanging.Place(TemplateID, conn);
    return TemplateID;
}

}  // namespace OXClass
