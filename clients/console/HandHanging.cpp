#include "console/HandHanging.h"

#include "cards/cTemplate.h"
#include "console/Chart.h"
#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/dicom/DicomCodes.h"
#include "console/page/Page.h"
#include "frame/Statement.h"
#include "images/cImages.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

Ref<cTemplate> LayoutNumbered(const Ref<Connection>& con, Long number) {
    Ref<cTemplate> layout = New<cTemplate>();
    layout->GetTemplate(con, 0, number);
    if (number == 0 || layout->TCID == 0)
        throw UserError(fmt::format("there is no layout {}; see: oxclass layouts", number));
    return layout;
}

std::set<Long> FramesIn(const cTemplate& layout) {
    std::set<Long> frames;
    for (const auto& slot : Each<cTemplateAttribute>(*layout.TemplateAttributes))
        frames.insert(slot.TANumberInTemplate);
    return frames;
}

/// Returns the two numbers of "12=3" or "12,13".
std::pair<Long, Long> PairTyped(const std::string& text, char separator, const char* form) {
    const auto at = text.find(separator);
    if (at == std::string::npos) throw UserError(fmt::format("\"{}\" is not {}", text, form));
    return {NumberOf(text.substr(0, at), "an image"), NumberOf(text.substr(at + 1), form)};
}

/// Frame and orientation of an image.
struct HandHung {
    Long frame = 0, orientation = 1;
    bool operator==(const HandHung&) const = default;
};

/// One hanging by hand.
class ByHand {
public:
    ByHand(const Ref<Connection>& con, Long series) : con_(con), number_(series), series_(LoadSeries(con, series)) {
        const Ref<cImages> images = New<cImages>();
        images->LoadReadable(con, iootSeries, series);
        RequireComplete(*images);
        for (const cImage& image : *images)
            before_[image.ID] = {image.FrameNumber, Orientation(image.MirrRotStatus).Number()};
        hung_ = before_;
        layout_ = series_->TemplateID;
    }

    std::size_t Run(const HandHanging& hanging) {
        if (hanging.layout) layout_ = NumberOf(*hanging.layout, "a layout");
        const std::set<Long> frames = FramesIn(*LayoutNumbered(con_, layout_));
        for (auto& [image, hung] : hung_)
            if (!frames.contains(hung.frame)) hung.frame = 0;
        for (const std::string& place : hanging.places) Place(place, frames);
        for (const std::string& swap : hanging.swaps) Swap(swap);
        for (const std::string& turn : hanging.turns) Turn(turn);
        for (const std::string& mirror : hanging.mirrors) {
            HandHung& hung = HungOf(NumberOf(mirror, "an image"));
            hung.orientation = Orientation(hung.orientation).MirroredAsSeen().Number();
        }
        RequireOneEach();
        return Store();
    }

private:
    HandHung& HungOf(Long image) {
        const auto found = hung_.find(image);
        if (found == hung_.end())
            throw UserError(
                fmt::format("series {0} has no image {1}; see: oxclass images --series {0}", number_, image));
        return found->second;
    }

    void Place(const std::string& text, const std::set<Long>& frames) {
        const auto [image, frame] = PairTyped(text, '=', "a place (write IMAGE=FRAME, as 12=3)");
        if (frame != 0 && !frames.contains(frame))
            throw UserError(fmt::format("layout {0} has no frame {1}; see: oxclass layouts {0}", layout_, frame));
        HungOf(image).frame = frame;
    }

    void Swap(const std::string& text) {
        const auto [one, other] = PairTyped(text, ',', "a pair of images (write IMAGE,IMAGE, as 12,13)");
        std::swap(HungOf(one).frame, HungOf(other).frame);
    }

    void Turn(const std::string& text) {
        constexpr int quarter = 90;
        const auto [image, degrees] = PairTyped(text, '=', "a turn (write IMAGE=DEGREES, as 12=90)");
        if (degrees % quarter != 0) throw UserError("an image turns by 90, 180 or 270 degrees, clockwise");
        HandHung& hung = HungOf(image);
        hung.orientation = Orientation(hung.orientation).Turned(degrees % 360).Number();
    }

    void RequireOneEach() const {
        std::map<Long, Long> shown;
        for (const auto& [image, hung] : hung_) {
            if (hung.frame == 0) continue;
            const auto [other, isFirst] = shown.try_emplace(hung.frame, image);
            if (!isFirst)
                throw UserError(
                    fmt::format("frame {0} would show the images {1} and {2}, and nothing was changed; exchange "
                                "two images with --swap {1},{2}, or place one of them elsewhere",
                                hung.frame, other->second, image));
        }
    }

    std::size_t Store() const {
        std::size_t changed = 0;
        for (const auto& [image, hung] : hung_) {
            if (hung == before_.at(image)) continue;
            con_->Execute(sql("UPDATE ImageBild_T SET FrameNumber_INT = ", hung.frame,
                              ", MirrRotStatus = ", hung.orientation, " WHERE ImageBildID = ", image));
            ++changed;
        }
        if (layout_ != series_->TemplateID)
            con_->Execute(sql("UPDATE Series_T SET template_ID = ", layout_, " WHERE Series_ID = ", number_));
        return changed;
    }

    Ref<Connection> con_;
    Long number_;
    Ref<cSerie> series_;
    std::map<Long, HandHung> before_, hung_;
    Long layout_ = 0;
};

std::string WhyThere(const cImage& image, Long layout) {
    if (image.ImageType == imggTypeVLPhotographic) return "a photograph hangs in no layout of films";
    const std::string anatomy = AnatomyInWords(image.AnaRegion, image.AnaRegionMod, image.Laterality);
    std::string known = anatomy.empty() ? "nothing of its anatomy is known" : anatomy;
    if (image.FrameNumber <= 0) return fmt::format("no free frame of layout {} fits: {}", layout, known);
    if (IsPlacedByTimeOnly(image)) return "placed by its time only: " + known;
    return known;
}

}  // namespace

std::size_t HangByHand(const Ref<Connection>& con, Long series, const HandHanging& hanging) {
    return ByHand(con, series).Run(hanging);
}

List ExplainHanging(const Ref<Connection>& con, Long number) {
    const Ref<cSerie> series = LoadSeries(con, number);
    const Ref<cImages> images = New<cImages>();
    images->LoadReadable(con, iootSeries, number);
    RequireComplete(*images);
    List list({{"image", "Image"},
               {"frame", "Frame"},
               {"date", "Date"},
               {"teeth", "Teeth"},
               {"turned", "Turned"},
               {"mirrored", "Mirrored"},
               {"why", "Why"}});
    for (const cImage& image : *images) {
        const Orientation form(image.MirrRotStatus);
        list.Add({image.ID, Long{image.FrameNumber}, DateText(image.dateTime), TeethText(image), form.Degrees(),
                  form.Mirrored(), WhyThere(image, series->TemplateID)});
    }
    return list;
}

}  // namespace Console
