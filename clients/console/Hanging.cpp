#include "console/Hanging.h"

#include "console/Chart.h"
#include "console/Commands.h"
#include "images/cImages.h"

#include <fmt/format.h>
#include <tuple>
#include <utility>

namespace Console {
namespace {

using namespace OXClass;

using Hung = std::tuple<Long, String, String, String>;

Hung Placing(const cImage& image) {
    return {image.FrameNumber, image.Laterality, image.AnaRegion, image.AnaRegionMod};
}

/// The images that belong into a layout of films. The others are photographs; their frame is cleared.
Ref<Collection> FilmsOf(const cImages& images) {
    Ref<Collection> films = New<Collection>();
    for (cImage& image : images) {
        if (image.ImageType == imggTypeVLPhotographic)
            image.FrameNumber = 0;
        else
            films->Add(Ref<cImage>(&image));
    }
    return films;
}

void Hang(const Options& options, Long number) {
    const Clinic clinic(options);
    clinic.Con()->BeginTrans();
    const HungSeries hung = HangStored(clinic.Con(), number);
    clinic.Con()->CommitTrans();
    if (options.json)
        return PrintJson({{"series", number},
                          {"layout", hung.layout},
                          {"placed", hung.placed},
                          {"changed", hung.changed}});
    PrintHungSeries(clinic, number);
    fmt::print("{} images have a frame, {} were changed.\n", hung.placed, hung.changed);
}

}  // namespace

HungSeries HangStored(const Ref<Connection>& con, Long number) {
    const Ref<cSerie> series = LoadSeries(con, number);
    series->SeriesDescription = Undoubled(series->SeriesDescription);
    const Ref<cImages> images = New<cImages>();
    series->ImgCount = images->LoadAll4Object(con, iootSeries, number);
    std::vector<Hung> before;
    for (const cImage& image : *images) before.push_back(Placing(image));
    HungSeries result;
    const Ref<Collection> films = FilmsOf(*images);
    const Long count = std::exchange(series->ImgCount, films->Count());
    series->TemplateID = 0;
    result.layout = series->HangSeries(films, con);
    series->ImgCount = count;
    std::size_t next = 0;
    for (cImage& image : *images) {
        result.placed += image.FrameNumber > 0;
        if (before[next++] == Placing(image)) continue;
        image.Save(con);
        ++result.changed;
    }
    series->SaveSeries(true, con);
    return result;
}

void AddHanging(Program& program) {
    const auto series = std::make_shared<std::string>();
    auto* command =
        program.app.add_subcommand("hang", "lay a series out anew and store where its images hang");
    command->add_option("SERIES", *series, "number of a series")->required();
    command->footer("Example: oxclass hang 1");
    command->callback([&program, series] { Hang(program.options, NumberOf(*series, "a series")); });
}

}  // namespace Console
