#include "bench/Boundary.h"
#include "bench/ByHand.h"
#include "bench/Cards.h"
#include "bench/Clinic.h"
#include "bench/CompareImages.h"
#include "bench/Growth.h"
#include "bench/ImportFiles.h"
#include "bench/Python.h"
#include "bench/Report.h"
#include "bench/Servers.h"

#include "images/cImages.h"
#include "platform/adodb/Transaction.h"
#include "series/cSerie.h"

#include <CLI/CLI.hpp>
#include <filesystem>

/// Benchmarks: what the library costs beside the same work written by hand on the engine's C interface,
/// with prepared statements and bound values, in the same run.
namespace {

using namespace Bench;
using namespace OXClass;

/// Hanging alone, in memory.
void Hang(Report& report, const Ref<Connection>& con, std::size_t count) {
    std::vector<Ref<cImages>> series;
    std::vector<Report::Work> works;
    for (int i = 0; i < 400; ++i) {
        series.push_back(NewSeries(count));
        const Ref<cSerie> serie = New<cSerie>();
        serie->ImgCount = static_cast<Long>(count);
        works.emplace_back([images = series.back(), serie, con] { serie->HangSeries(images, con); });
    }
    const std::string size = std::to_string(count);
    if (!report.Measure("hang-" + size, "hang " + size + " images, in memory", "whole", works)) return;
    for (const Ref<cImages>& images : series)
        for (const cImage& image : *images) Require(image.FrameNumber > 0);
}

/// Loading a stored series, hanging it and saving its images, beside loading and updating the same rows.
void HangStored(Report& report, const Ref<Connection>& con, ByHand& hand, std::size_t count) {
    const Ref<cImages> images = NewSeries(count);
    const Long id = 9'000'000 + static_cast<Long>(count);
    for (cImage& image : *images) {
        image.seriesID = id;
        image.Save(con);
    }
    const std::string size = std::to_string(count);
    report.Compare(
        "series-" + size, "load, hang and save a series of " + size, "whole", 1, 400,
        [&] {
            const Ref<cImages> loaded = New<cImages>();
            const Ref<cSerie> serie = New<cSerie>();
            serie->ImgCount = loaded->LoadAll4Object(con, iootSeries, id);
            serie->HangSeries(loaded, con);
            ADODB::Transaction transaction(con);
            for (cImage& image : *loaded) image.Save(con);
            transaction.Commit();
        },
        [&] {
            std::vector<HandImage> loaded = hand.LoadSeries(id);
            Require(loaded.size() == count);
            hand.Execute("BEGIN IMMEDIATE");
            for (const HandImage& image : loaded) hand.Update(image);
            hand.Execute("COMMIT");
        });
    hand.Forget();
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Compares the library with the same work written by hand on the engine's C interface.");
    std::string folder = std::filesystem::temp_directory_path() / "oxclass-bench", only, baseline;
    bool json = false, growth = false;
    int largest = 1'000'000;
    app.add_option("FOLDER", folder, "keeps the database of a million images between runs")->capture_default_str();
    app.add_option("--only", only, "measure only what begins with this key, such as save-");
    app.add_flag("--json", json, "print the results as JSON");
    app.add_option("--check", baseline,
                   "compare the ratios with this file, a result of --json; exit code 3 if one is slower");
    app.add_flag("--growth", growth,
                 "instead measure the library alone in clinics of 1,000 images, 10,000 and so on, and print the "
                 "figures as JSON");
    app.add_option("--largest", largest, "the number of images in the largest clinic of --growth")
        ->capture_default_str();
    std::string server;
    app.add_option(
        "--server", server,
        "measure on a new server instead, PostgreSQL or MariaDB, which this connection string describes; with "
        "--growth too");
    CLI11_PARSE(app, argc, argv);

    std::filesystem::create_directories(folder);
    if (growth) {
        std::puts(Growth(folder, largest, server).c_str());
        return 0;
    }
    if (!server.empty()) {
        Report report(only, json);
        BenchServer(report, server);
        if (json) std::puts(report.Json().c_str());
        return baseline.empty() || report.NoSlowerThan(baseline) ? 0 : 3;
    }
    const std::string path = ClinicIn(folder, "clinic.db", {Images, Patients}, {ShortList, LongList});
    const Ref<Connection> con = Connect(path);
    ByHand hand(path);
    hand.Forget();
    Report report(only, json);
    ImageComparison(report, con, hand, {"", "", Images, "a million", 20'000, "20,000", 5'000, "5,000"}).Run();
    for (const std::size_t count : {4, 18, 20}) HangStored(report, con, hand, count);
    for (const std::size_t count : {4, 18, 20}) Hang(report, con, count);
    BenchCards(report, con, path, hand);
    BenchBoundary(report);
    BenchImport(report, folder);
    BenchPython(report, path);
    if (json) std::puts(report.Json().c_str());
    return baseline.empty() || report.NoSlowerThan(baseline) ? 0 : 3;
}
