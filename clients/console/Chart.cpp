#include "console/Chart.h"

#include "console/page/Page.h"
#include "images/cImages.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

constexpr int ChartWidth = 100;

/// A sheet of characters, written by column and row. ASCII only: one byte a place.
class Sheet {
public:
    Sheet(int width, int height)
        : lines_(static_cast<std::size_t>(height), std::string(static_cast<std::size_t>(width), ' ')) {}

    void Put(int column, int row, std::string_view text) {
        if (row < 0 || row >= static_cast<int>(lines_.size())) return;
        std::string& line = lines_[static_cast<std::size_t>(row)];
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto at = static_cast<std::size_t>(column) + i;
            if (at < line.size()) line[at] = text[i];
        }
    }

    /// A box with lines of text in its middle, cut to what it has room for.
    void Box(int left, int top, int width, int height, const std::vector<std::string>& texts) {
        const std::string edge =
            "+" + std::string(static_cast<std::size_t>(std::max(width - 2, 0)), '-') + "+";
        Put(left, top, edge);
        Put(left, top + height - 1, edge);
        for (int row = top + 1; row < top + height - 1; ++row) {
            Put(left, row, "|");
            Put(left + width - 1, row, "|");
        }
        int row = top + std::max(1, (height - static_cast<int>(texts.size())) / 2);
        for (const std::string& text : texts) {
            if (row >= top + height - 1) return;
            const std::string shown = text.substr(0, static_cast<std::size_t>(std::max(width - 2, 0)));
            Put(left + (width - static_cast<int>(shown.size())) / 2, row++, shown);
        }
    }

    std::string Text() const {
        std::string text;
        for (std::string line : lines_) {
            line.erase(line.find_last_not_of(' ') + 1);
            text += line + "\n";
        }
        return text;
    }

private:
    std::vector<std::string> lines_;
};

/// The label of a slot broken at its blanks, behind the slot's number.
std::vector<std::string> Lines(Long number, const std::string& label) {
    std::vector<std::string> lines{std::to_string(number)};
    for (const std::string& part : SplitIgnoringCase(label, " ")) lines.push_back(part);
    return lines;
}

Ref<cImages> ImagesOf(const Clinic& clinic, Long series) {
    Ref<cImages> images = New<cImages>();
    images->LoadAll4Object(clinic.Con(), iootSeries, series);
    return images;
}

}  // namespace

Ref<cSerie> LoadSeries(const Ref<Connection>& con, Long number) {
    Ref<cSerie> series = New<cSerie>();
    if (!series->loadSeries(std::to_string(number), con))
        throw Complaint(fmt::format("there is no series {}; see: oxclass series", number));
    return series;
}

std::string ChartOf(const cTemplate& layout, const std::map<Long, std::string>& labels) {
    // A character is about twice as high as wide.
    const double aspect = layout.TCWidth > 0 ? layout.TCHeight / layout.TCWidth : 0.7;
    const int height = std::clamp(static_cast<int>(std::lround(ChartWidth * aspect / 2)), 9, 40);
    Sheet sheet(ChartWidth, height);
    const auto scaled = [](double part, int whole) { return static_cast<int>(std::lround(part * whole)); };
    for (const cTemplateAttribute& slot : Each<cTemplateAttribute>(*layout.TemplateAttributes)) {
        const auto label = labels.find(slot.TANumberInTemplate);
        sheet.Box(scaled(slot.TAPosX, ChartWidth), scaled(slot.TAPosY, height),
                  std::max(scaled(slot.TAWidth, ChartWidth), 4), std::max(scaled(slot.TAHeight, height), 3),
                  Lines(slot.TANumberInTemplate, label == labels.end() ? "-" : label->second));
    }
    return sheet.Text();
}

void PrintHungSeries(const Clinic& clinic, Long number) {
    const Ref<cSerie> series = LoadSeries(clinic.Con(), number);
    const Ref<cTemplate> layout = New<cTemplate>();
    layout->GetTemplate(clinic.Con(), 0, series->TemplateID);
    std::map<Long, std::string> labels;
    std::vector<std::string> unplaced;
    const Ref<cImages> images = ImagesOf(clinic, number);
    for (const cImage& image : *images) {
        if (image.FrameNumber > 0)
            labels[image.FrameNumber] = CaptionOf(image);
        else
            unplaced.push_back(CaptionOf(image));
    }
    fmt::print("Series {}: {}, {} images, layout {} {}\n", number, Undoubled(series->SeriesDescription),
               series->ImgCount, series->TemplateID, layout->TCName);
    fmt::print("{}", ChartOf(*layout, labels));
    if (!unplaced.empty()) fmt::print("Hanging nowhere: {}\n", fmt::join(unplaced, "; "));
}

void ShowSeries(const Options& options, Long number) {
    const Clinic clinic(options);
    if (!options.json) return PrintHungSeries(clinic, number);
    const Ref<cSerie> series = LoadSeries(clinic.Con(), number);
    nlohmann::ordered_json json{{"series", number},
                                {"description", series->SeriesDescription},
                                {"modality", series->Modality},
                                {"layout", series->TemplateID},
                                {"images", nlohmann::ordered_json::array()}};
    const Ref<cImages> images = ImagesOf(clinic, number);
    for (const cImage& image : *images)
        json["images"].push_back({{"image", image.ID},
                                  {"frame", Long{image.FrameNumber}},
                                  {"teeth", image.sTeeth},
                                  {"side", image.Laterality},
                                  {"region", image.AnaRegion},
                                  {"modifier", image.AnaRegionMod}});
    PrintJson(json);
}

}  // namespace Console
