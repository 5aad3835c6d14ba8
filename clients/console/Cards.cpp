#include "console/CardList.h"
#include "console/Chart.h"
#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/Program.h"
#include "console/WriteTransaction.h"
#include "console/page/Page.h"
#include "frame/Statement.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

const char* PlaceOf(const cUniCard& entry) {
    if (!entry.Series) return "here";
    switch (entry.Series->location) {
        case gdcmObjectLocUnknown: return "under capture";
        case gdcmObjectLocBoth: return "here and on the server";
        case gdcmObjectLocServer: return "on the server";
        default: return "here";
    }
}

void ShowCards(Program& program, const std::string& patient) {
    const Options& options = program.options;
    const Database database(options);
    const CardList list = ListCards(database, patient);
    const auto cards = ImagesOfCards(database, list.patient->ID);
    List shown({{"key", "Key"},
                {"kind", "Kind"},
                {"date", "Date"},
                {"name", "Name"},
                {"images", "Images"},
                {"approved", "Approved"},
                {"place", "Where"},
                {"damaged", "Damaged", true}});
    for (const cUniCard& entry : *list.entries) {
        ImagesOfEntry images;
        if (entry.Series)
            images = {entry.Series->ImgCount, entry.Series->Approved};
        else if (const auto card = cards.find(entry.Imagecard->ICID); card != cards.end())
            images = card->second;
        shown.Add({entry.Key, entry.Series ? "series" : "card", DateText(entry.SortDate()), NameOf(entry), images.count,
                   images.approved, PlaceOf(entry), nullptr});
    }
    for (const UnreadEntry& entry : list.damaged)
        shown.Add({entry.Key, entry.Key.starts_with("SE") ? "series" : "card", nullptr, nullptr, nullptr, nullptr,
                   nullptr, DamageOf(entry.Failure)});
    if (!list.damaged.empty()) program.exitCode = PartlyDone;
    shown.Arrange(options);
    if (options.csv) return shown.Print(options, {});
    if (options.json)
        return PrintJson({{"patient", list.patient->PatientID},
                          {"orphans_removed", list.orphansRemoved},
                          {"orphans_kept", list.orphansKept},
                          {"entries", shown.Rows()}});
    shown.Print(false, "The patient has no cards and no series.");
    if (list.orphansRemoved > 0) fmt::print("{} series without images were removed.\n", list.orphansRemoved);
    if (list.orphansKept > 0)
        fmt::print("{} series without images stay: the database can't be written.\n", list.orphansKept);
}

void SaveSeriesAsCard(const Options& options, Long number, const std::string& name) {
    const Database database(options);
    Long card = 0, count = 0;
    Write(database.Con(), [&] {
        const Ref<cSerie> series = LoadSeries(database.Con(), number);
        const Ref<cImages> images = New<cImages>();
        count = images->LoadReadable(database.Con(), iootSeries, number);
        RequireComplete(*images);
        if (count == 0) throw UserError(fmt::format("series {} has no images, so there is nothing to store", number));
        series->SeriesName = name.empty() ? Undoubled(series->SeriesDescription) : name;
        series->SaveAsIC(database.Con(), images);
        card =
            database.Number(sql("SELECT max(ImageCardID) FROM ImageCard_T WHERE PatientID = ", images->Item(1)->PatID));
    });
    if (options.json) return PrintJson({{"card", fmt::format("IC{}", card)}, {"images", count}});
    fmt::print("Series {} is stored as card IC{}, with {} images.\n", number, card, count);
}

void AddSaveAsCard(Program& program) {
    struct Arguments {
        std::string series, name;
    };
    const auto given = std::make_shared<Arguments>();
    auto* command = program.app.get_subcommand("series")->add_subcommand(
        "save-as-card", "store a series as an image card, as it hangs");
    command->add_option("SERIES", given->series, "number of a series")->required();
    command->add_option("--name", given->name, "name of the card; default: the series' description")->type_name("NAME");
    command->footer("Example: oxclass series save-as-card 18 --name \"Full mouth 2024\"");
    command->callback(
        [&program, given] { SaveSeriesAsCard(program.options, NumberOf(given->series, "a series"), given->name); });
}

}  // namespace

void AddCards(Program& program) {
    const auto patient = std::make_shared<std::string>();
    auto* cards = program.app.add_subcommand("cards", "list a patient's image cards and series, newest first");
    cards->add_option("PATIENT", *patient, PatientHelp)->required();
    AddListOptions(program, cards);
    cards->footer(
        "Series without images that nobody captures any more are removed on the way. Cards and series that "
        "can't\n"
        "be read are listed with the column that is damaged. Exit code 3: some are damaged.\n"
        "Example: oxclass cards TEST-FMX18");
    cards->callback([&program, patient] { ShowCards(program, *patient); });
    AddSaveAsCard(program);
}

}  // namespace Console
