#include "console/Chart.h"

#include "console/Completeness.h"
#include "console/page/Page.h"
#include "images/cImages.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

constexpr int ChartWidth = 100;

/// A sheet of characters, written by column and row.
class Sheet {
public:
    Sheet(int width, int height)
        : lines_(static_cast<std::size_t>(height), std::u16string(static_cast<std::size_t>(width), ' ')) {}

    void Put(int column, int row, std::u16string_view text) {
        if (row < 0 || row >= static_cast<int>(lines_.size())) return;
        std::u16string& line = lines_[static_cast<std::size_t>(row)];
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto at = static_cast<std::size_t>(column) + i;
            if (at < line.size()) line[at] = text[i];
        }
    }

    /// Draws a box with lines of text in its middle. Cuts lines that are wider than the box, and omits lines below it.
    void Box(int left, int top, int width, int height, const std::vector<std::u16string>& texts) {
        const std::u16string edge =
            u"+" + std::u16string(static_cast<std::size_t>(std::max(width - 2, 0)), u'-') + u"+";
        Put(left, top, edge);
        Put(left, top + height - 1, edge);
        for (int row = top + 1; row < top + height - 1; ++row) {
            Put(left, row, u"|");
            Put(left + width - 1, row, u"|");
        }
        int row = top + std::max(1, (height - static_cast<int>(texts.size())) / 2);
        for (const std::u16string& text : texts) {
            if (row >= top + height - 1) return;
            const std::u16string shown = text.substr(0, static_cast<std::size_t>(std::max(width - 2, 0)));
            Put(left + (width - static_cast<int>(shown.size())) / 2, row++, shown);
        }
    }

    std::string Text() const {
        std::string text;
        for (std::u16string line : lines_) {
            line.erase(line.find_last_not_of(u' ') + 1);
            text += FromUtf16(line) + "\n";
        }
        return text;
    }

private:
    std::vector<std::u16string> lines_;
};

/// Returns the lines of a label behind the slot's number: each broken at its blanks where it is longer than `width`.
std::vector<std::u16string> Lines(Long number, const std::string& label, int width) {
    std::vector<std::u16string> lines{ToUtf16(std::to_string(number))};
    for (const std::string& line : SplitIgnoringCase(label, "\n")) {
        lines.emplace_back();
        for (const std::string& word : SplitIgnoringCase(Printable(line), " ")) {
            const std::u16string next = ToUtf16(word);
            std::u16string& last = lines.back();
            const bool fits = last.empty() || last.size() + 1 + next.size() <= static_cast<std::size_t>(width);
            if (fits)
                last += (last.empty() ? u"" : u" ") + next;
            else
                lines.push_back(next);
        }
    }
    return lines;
}

Ref<cImages> ImagesOf(const Database& database, Long series) {
    Ref<cImages> images = New<cImages>();
    images->LoadReadable(database.Con(), iootSeries, series);
    return images;
}

}  // namespace

Ref<cSerie> LoadSeries(const Ref<Connection>& con, Long number) {
    Ref<cSerie> series = New<cSerie>();
    if (!series->loadSeries(std::to_string(number), con))
        throw UserError(fmt::format("there is no series {}; see: oxclass series", number));
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
        const int width = std::max(scaled(slot.TAWidth, ChartWidth), 4);
        sheet.Box(scaled(slot.TAPosX, ChartWidth), scaled(slot.TAPosY, height), width,
                  std::max(scaled(slot.TAHeight, height), 3),
                  Lines(slot.TANumberInTemplate, label == labels.end() ? "-" : label->second, width - 2));
    }
    return sheet.Text();
}

namespace {

/// The remarks on the images of a series that are printed below its chart.
struct Remarks {
    std::vector<std::string> unplaced, byTimeOnly, withoutPicture, damaged;

    void Print() const {
        const auto print = [](const char* what, const std::vector<std::string>& images) {
            if (!images.empty()) fmt::print("{}: {}\n", what, Printable(fmt::format("{}", fmt::join(images, "; "))));
        };
        print("Hanging nowhere", unplaced);
        print("Placed by time only, as nothing of their anatomy is known", byTimeOnly);
        print("No picture", withoutPicture);
        print("Damaged", damaged);
    }
};

/// Returns the label of an image in the chart, and adds its remarks to those below the chart.
std::string Label(const cImage& image, Remarks& remarks) {
    const std::string caption = CaptionOf(image);
    std::string label = caption;
    if (image.FrameNumber <= 0) remarks.unplaced.push_back(caption);
    if (IsPlacedByTimeOnly(image)) {
        label += "\nby time";
        remarks.byTimeOnly.push_back(fmt::format("frame {}", Long{image.FrameNumber}));
    }
    const std::string missing = WhyNoPicture(image);
    if (!missing.empty()) {
        label += "\nno picture";
        remarks.withoutPicture.push_back(caption + ", " + missing);
    }
    return label;
}

}  // namespace

bool PrintHungSeries(const Database& database, Long number) {
    const Ref<cSerie> series = LoadSeries(database.Con(), number);
    const Ref<cTemplate> layout = New<cTemplate>();
    layout->GetTemplate(database.Con(), 0, series->TemplateID);
    std::map<Long, std::string> labels;
    Remarks remarks;
    const Ref<cImages> images = ImagesOf(database, number);
    remarks.damaged = DamagesOf(*images);
    for (const cImage& image : *images) {
        const std::string label = Label(image, remarks);
        if (image.FrameNumber > 0) labels[image.FrameNumber] = label;
    }
    fmt::print("Series {}: {}, {} images, layout {} {}\n", number, Printable(Undoubled(series->SeriesDescription)),
               series->ImgCount, series->TemplateID, Printable(layout->TCName));
    fmt::print("{}", ChartOf(*layout, labels));
    remarks.Print();
    return remarks.damaged.empty();
}

bool ShowSeries(const Options& options, Long number) {
    const Database database(options);
    if (!options.json) return PrintHungSeries(database, number);
    const Ref<cSerie> series = LoadSeries(database.Con(), number);
    nlohmann::ordered_json json{{"series", number},
                                {"description", series->SeriesDescription},
                                {"modality", series->Modality},
                                {"layout", series->TemplateID},
                                {"images", nlohmann::ordered_json::array()}};
    const Ref<cImages> images = ImagesOf(database, number);
    for (const cImage& image : *images)
        json["images"].push_back({{"image", image.ID},
                                  {"frame", Long{image.FrameNumber}},
                                  {"teeth", image.sTeeth},
                                  {"side", image.Laterality},
                                  {"region", image.AnaRegion},
                                  {"modifier", image.AnaRegionMod},
                                  {"byTimeOnly", IsPlacedByTimeOnly(image)},
                                  {"noPicture", WhyNoPicture(image)}});
    json["damaged"] = DamagesOf(*images);
    PrintJson(json);
    return images->Unread().empty();
}

}  // namespace Console
