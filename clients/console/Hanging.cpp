#include "console/Hanging.h"

#include "anatomy/ToothString.h"
#include "console/Chart.h"
#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/HandHanging.h"
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

void HangByHand(const Options& options, Long number, const HandHanging& hanging) {
    const Database database(options);
    std::size_t changed = 0;
    Write(database.Con(), [&] { changed = HangByHand(database.Con(), number, hanging); });
    if (options.json)
        return PrintJson(
            {{"series", number}, {"layout", LoadSeries(database.Con(), number)->TemplateID}, {"changed", changed}});
    PrintHungSeries(database, number);
    fmt::print("{} images were changed.\n", changed);
}

void Explain(const Options& options, Long number) {
    const Database database(options);
    const Ref<cSerie> series = LoadSeries(database.Con(), number);
    if (!options.json && !options.csv)
        fmt::print("Series {}: {} images, layout {}\n", number, series->ImgCount, series->TemplateID);
    ExplainHanging(database.Con(), number).Print(options, "The series has no images.");
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
    struct Arguments {
        std::string series, layout;
        HandHanging hand;
        bool explain = false;
    };
    const auto given = std::make_shared<Arguments>();
    auto* command = program.app.add_subcommand(
        "hang", "hang a series again by its teeth, or by hand, and store the places of its images");
    command->add_option("SERIES", given->series, "number of a series")->required();
    auto* layout = command->add_option("--layout", given->layout, "hang in this layout")->type_name("LAYOUT");
    command->add_option("--place", given->hand.places, "put an image into a frame; 0: into none")
        ->type_name("IMAGE=FRAME")
        ->allow_extra_args(false);
    command->add_option("--swap", given->hand.swaps, "exchange the frames of two images")
        ->type_name("IMAGE,IMAGE")
        ->allow_extra_args(false);
    command->add_option("--turn", given->hand.turns, "turn an image clockwise")
        ->type_name("IMAGE=DEGREES")
        ->allow_extra_args(false);
    command->add_option("--mirror", given->hand.mirrors, "mirror an image left to right")
        ->type_name("IMAGE")
        ->allow_extra_args(false);
    command->add_flag("--explain", given->explain, "change nothing; list the images with the reasons of their places");
    AddListOptions(program, command);
    command->footer(
        "Without options the rules decide about all places again. What is hung by hand stays until then, and until an\n"
        "image of the series is imported, moved or corrected.\n"
        "Example: oxclass hang 1\n"
        "Example: oxclass hang 18 --swap 30,31 --turn 30=90");
    command->callback([&program, given, layout] {
        const Long series = NumberOf(given->series, "a series");
        if (layout->count() > 0) given->hand.layout = given->layout;
        if (given->explain) return Explain(program.options, series);
        given->hand.IsEmpty() ? Hang(program.options, series) : HangByHand(program.options, series, given->hand);
    });
}

}  // namespace Console
