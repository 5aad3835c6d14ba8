#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/Program.h"
#include "console/Report.h"
#include "console/WholeFile.h"
#include "console/page/Png.h"
#include "console/page/Svg.h"

#include <fmt/format.h>

namespace Console {
namespace {

bool EndsIn(const std::string& file, const char* ending) {
    return Platform::EqualsIgnoringCase(std::filesystem::path(file).extension().string(), ending);
}

/// Reports each picture that a page lacks; returns their number.
std::size_t TellMissing(const Page& page) {
    std::size_t missing = 0;
    for (const PlacedPicture& placed : page.pictures) {
        if (placed.missing.empty()) continue;
        fmt::print(stderr, "oxclass: no picture for {}: {}\n", Printable(placed.caption), Printable(placed.missing));
        ++missing;
    }
    return missing;
}

void Draw(Program& program, const std::string& key, const std::string& file, unsigned width,
          const DrawingOptions& drawing) {
    const bool png = EndsIn(file, ".png");
    if (!png && !EndsIn(file, ".svg"))
        throw UserError(fmt::format("\"{}\" is not the name of a drawing; end it with .svg or .png", Printable(file)));
    const Database database(program.options);
    const auto entry = OpenEntry(database, key);
    // The placed images after one that can't be read are unknown: the drawing would look complete.
    RequireComplete(*entry->Imagecard, fmt::format("a placed image of card {}", Platform::UCase(key)));
    Page page = PageOf(*entry, width);
    WholeFile out(file);
    const auto write = [&](std::string_view part) { out.Write(part); };
    if (png)
        WritePng(page, drawing, width, write);
    else
        WriteSvg(page, drawing, write);
    out.Commit();
    const std::size_t missing = TellMissing(page);
    const std::vector<std::string> damages = DamagesOf(*entry);
    for (const std::string& damage : damages) fmt::print(stderr, "oxclass: {}\n", Printable(damage));
    if (missing > 0 || !damages.empty()) program.exitCode = PartlyDone;
    if (program.options.json)
        return PrintJson(
            {{"file", file}, {"images", page.pictures.size()}, {"missing", missing}, {"damaged", damages}});
    fmt::print("{}: {} images drawn.\n", Printable(file), page.pictures.size() - missing);
}

void Report(Program& program, const std::string& patient, const std::string& file) {
    if (!EndsIn(file, ".html") && !EndsIn(file, ".htm"))
        throw UserError(fmt::format("\"{}\" is not the name of a report; end it with .html", Printable(file)));
    const Database database(program.options);
    const ReportTally tally = WriteReport(database, patient, file);
    if (tally.missing > 0 || tally.damaged > 0) program.exitCode = PartlyDone;
    if (program.options.json)
        return PrintJson({{"file", file},
                          {"entries", tally.entries},
                          {"images", tally.images},
                          {"missing", tally.missing},
                          {"damaged", tally.damaged}});
    fmt::print("{}: {} entries with {} images.\n", Printable(file), tally.entries, tally.images);
    if (tally.missing > 0) fmt::print("{} pictures are missing; the report shows the reasons.\n", tally.missing);
    if (tally.damaged > 0) fmt::print("{} rows can't be read; the report names them.\n", tally.damaged);
}

}  // namespace

void AddDrawing(Program& program) {
    struct Arguments {
        std::string key, file;
        unsigned width = 2000;
        DrawingOptions drawing;
    };
    const auto given = std::make_shared<Arguments>();
    constexpr unsigned narrowest = 16, widest = 20000;

    auto* draw = program.app.add_subcommand("draw", "draw a card or a series as a picture, SVG or PNG");
    draw->add_option("CARD-OR-SERIES", given->key, "its key, as listed by oxclass cards: IC5, SE7")->required();
    draw->add_option("-o,--output", given->file, "file to write, by its ending .svg or .png")
        ->required()
        ->type_name("FILE");
    draw->add_option("--width", given->width, "width of the picture in pixels; default 2000")
        ->check(CLI::Range(narrowest, widest))
        ->type_name("PIXELS");
    draw->add_flag("--numbers", given->drawing.numbers, "write each image's frame or place at it");
    draw->add_flag("--empty", given->drawing.empty, "outline the slots that show no image");
    draw->footer(
        "Pictures are scaled down to the pixels of --width.\nExit code 3: some pictures are missing.\nExample: oxclass "
        "draw SE18 -o mouth.png --numbers");
    draw->callback([&program, given] { Draw(program, given->key, given->file, given->width, given->drawing); });

    auto* report = program.app.add_subcommand(
        "report", "write a page on a patient with all cards and series, for a browser or for paper");
    report->add_option("PATIENT", given->key, PatientHelp)->required();
    report->add_option("-o,--output", given->file, "file to write")->required()->type_name("FILE.html");
    report->footer(
        "Pictures are scaled down to two pixels for each CSS pixel that they are shown with.\nExit code 3: some "
        "pictures are missing.\nExample: oxclass report TEST-FMX18 -o report.html");
    report->callback([&program, given] { Report(program, given->key, given->file); });
}

}  // namespace Console
