#include "console/Hanging.h"

#include "anatomy/ToothString.h"
#include "console/Chart.h"
#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/WriteTransaction.h"
#include "frame/Statement.h"
#include "images/cImages.h"

#include <algorithm>
#include <fmt/format.h>
#include <tuple>
#include <utility>

namespace Console {
namespace {

using namespace OXClass;

using Hung = std::tuple<Long, String, String, String>;

Hung Placing(const cImage& image) { return {image.FrameNumber, image.Laterality, image.AnaRegion, image.AnaRegionMod}; }

/// Returns the images that belong into a layout of films, in the order in which they were taken. The others are
/// photographs; their frame is cleared.
Ref<Collection> FilmsOf(const cImages& images) {
    std::vector<cImage*> taken;
    for (cImage& image : images) {
        if (image.ImageType == imggTypeVLPhotographic)
            image.FrameNumber = 0;
        else
            taken.push_back(&image);
    }
    const auto order = [](const cImage& image) {
        return std::tie(image.dateTime, image.ImageNumberInSeries, image.instanceUID);
    };
    std::stable_sort(taken.begin(), taken.end(),
                     [&](const cImage* a, const cImage* b) { return order(*a) < order(*b); });
    Ref<Collection> films = New<Collection>();
    for (cImage* image : taken) films->Add(Ref<cImage>(image));
    return films;
}

/// Stores only the columns of an image that hanging has changed. The documented update contains some texts of the image
/// unescaped and fails for a quote in them, and it overwrites the changes of other programs to the row.
void StorePlacing(const Ref<Connection>& con, const cImage& image) {
    con->Execute(sql("UPDATE ImageBild_T SET FrameNumber_INT=", Long{image.FrameNumber}, ", Laterality='",
                     FixSqlString(image.Laterality), "', AnaRegion='", FixSqlString(image.AnaRegion),
                     "', AnaRegionMod='", FixSqlString(image.AnaRegionMod), "' WHERE ImageBildID=", image.ID));
}

/// Stores the layout of a series by a statement of its own: the documented save stores nothing and reports no failure
/// for a series without UID or study.
void StoreLayout(const Ref<Connection>& con, const cSerie& series) {
    con->Execute(sql("UPDATE Series_T SET template_ID=", series.TemplateID, ", NumberOfImages=", series.ImgCount,
                     " WHERE Series_ID=", series.ID));
}

/// Hangs an image with an invalid tooth string as one without teeth, because the string would fail the whole series.
/// Returns true for such an image. The stored text is unchanged.
bool LeftWithoutTeeth(cImage& image) {
    try {
        TeethOf(image.sTeeth);
        return false;
    } catch (const Error&) {
        image.sTeeth.clear();
        return true;
    }
}

void Hang(const Options& options, Long number) {
    const Database database(options);
    HungSeries hung;
    Write(database.Con(), [&] { hung = HangStored(database.Con(), number); });
    if (options.json)
        return PrintJson({{"series", number},
                          {"layout", hung.layout},
                          {"placed", hung.placed},
                          {"changed", hung.changed},
                          {"without_teeth", hung.withoutTeeth}});
    PrintHungSeries(database, number);
    fmt::print("{} images have a frame, {} were changed.\n", hung.placed, hung.changed);
    for (const Long image : hung.withoutTeeth)
        fmt::print("Image {} hangs as one without teeth: its text of teeth isn't like 11,21,48,\n", image);
}

}  // namespace

HungSeries HangStored(const Ref<Connection>& con, Long number) {
    const Ref<cSerie> series = LoadSeries(con, number);
    series->SeriesDescription = Undoubled(series->SeriesDescription);
    const Ref<cImages> images = New<cImages>();
    series->ImgCount = images->LoadReadable(con, iootSeries, number);
    RequireComplete(*images);
    std::vector<Hung> before;
    HungSeries result;
    for (cImage& image : *images) {
        before.push_back(Placing(image));
        if (LeftWithoutTeeth(image)) result.withoutTeeth.push_back(image.ID);
    }
    const Ref<Collection> films = FilmsOf(*images);
    const Long count = std::exchange(series->ImgCount, films->Count());
    series->TemplateID = 0;
    result.layout = series->HangSeries(films, con);
    series->ImgCount = count;
    std::size_t next = 0;
    for (cImage& image : *images) {
        result.placed += image.FrameNumber > 0;
        if (before[next++] == Placing(image)) continue;
        StorePlacing(con, image);
        ++result.changed;
    }
    StoreLayout(con, *series);
    return result;
}

void AddHanging(Program& program) {
    const auto series = std::make_shared<std::string>();
    auto* command = program.app.add_subcommand("hang", "hang a series again and store the places of its images");
    command->add_option("SERIES", *series, "number of a series")->required();
    command->footer("Example: oxclass hang 1");
    command->callback([&program, series] { Hang(program.options, NumberOf(*series, "a series")); });
}

}  // namespace Console
