#include "console/Commands.h"

#include "console/Chart.h"
#include "console/Completeness.h"
#include "console/Program.h"
#include "console/WriteTransaction.h"
#include "console/page/Page.h"
#include "console/patients/PatientSearch.h"
#include "console/patients/TypedDate.h"
#include "console/TypedTeeth.h"
#include "frame/Statement.h"
#include "images/cImages.h"
#include "platform/runtime/Services.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

/// Returns " WHERE Study_T.PatientID = 5" for a named patient.
std::string OfPatient(const Database& database, const std::string& patient) {
    return patient.empty() ? std::string() : sql(" WHERE Study_T.PatientID = ", LoadPatient(database, patient)->ID);
}

void ListStudies(const Options& options, const std::string& patient) {
    const Database database(options);
    database
        .ListOf(
            "SELECT Study_ID AS Study, PersonNr_CH AS Patient, StudyDateTime "
            "AS Date, replace(Studydesc, "
            "'''''', '''') AS "
            "Description, "
            "(SELECT count(*) FROM Series_T WHERE Series_T.Study_ID = "
            "Study_T.Study_ID) AS Series, "
            "StudyInstanceUID AS UID FROM Study_T LEFT JOIN Patient_T ON "
            "Patient_T.PatientID = "
            "Study_T.PatientID" +
            OfPatient(database, patient) + " ORDER BY StudyDateTime, Study_ID")
        .Print(options, "There are no studies.");
}

/// Returns the reason why a row of Series_T can't be read; null if it can.
nlohmann::ordered_json DamageOfSeries(const Ref<Recordset>& row) {
    try {
        New<cSerie>()->ReadRow(row);
        return nullptr;
    } catch (const Error& failure) {
        return DamageOf(failure);
    }
}

void ListSeries(Program& program, const std::string& patient) {
    const Database database(program.options);
    const Ref<Recordset> rows = database.Read(
        "SELECT Series_T.*, PersonNr_CH, replace(SeriesDescription, '''''', "
        "'''') AS Description FROM "
        "Series_T "
        "LEFT JOIN Study_T ON Study_T.Study_ID = Series_T.Study_ID LEFT JOIN "
        "Patient_T ON "
        "Patient_T.PatientID = Study_T.PatientID" +
        OfPatient(database, patient) + " ORDER BY SeriesDateTime, Series_ID");
    List list({{"series", "Series"},
               {"study", "Study"},
               {"patient", "Patient"},
               {"date", "Date"},
               {"modality", "Modality"},
               {"images", "Images"},
               {"layout", "Layout"},
               {"description", "Description"},
               {"damaged", "Damaged", true}});
    for (; !rows->Eof(); rows->MoveNext()) {
        std::vector<nlohmann::ordered_json> row;
        for (const char* const column : {"Series_ID", "Study_ID", "PersonNr_CH", "SeriesDateTime", "Modality",
                                         "NumberOfImages", "template_ID", "Description"})
            row.push_back(AsJson(rows->Fields(column).Value()));
        row.push_back(DamageOfSeries(rows));
        if (!row.back().is_null()) program.exitCode = PartlyDone;
        list.Add(std::move(row));
    }
    list.Print(program.options, "There are no series.");
}

/// The images that the user requests; an empty text requests all.
struct WantedImages {
    std::string patient, series, tooth, date, modality, type;
};

/// The kinds of images by the words that the user writes.
constexpr std::pair<const char*, xigImageTypes> TypeWords[] = {
    {"intraoral", imggTypeDXIntraOral},  {"panoramic", imggTypeDXPanoramic},    {"ceph", imggTypeDXCephalometric},
    {"skull", imggTypeDXSkull},          {"xray", imggTypeDXGeneral},           {"photo", imggTypeVLPhotographic},
    {"endoscopy", imggTypeVLEndoscopic}, {"microscopy", imggTypeVLMicroscopic}, {"other", imggTypeSC},
};

std::string WordsOfTypes() {
    std::string words;
    for (const auto& [word, type] : TypeWords) words += std::string(words.empty() ? "" : ", ") + word;
    return words;
}

xigImageTypes TypeNamed(const std::string& name) {
    for (const auto& [word, type] : TypeWords)
        if (EqualsIgnoringCase(word, name)) return type;
    throw UserError(fmt::format("\"{}\" is not a type of images; the types are {}", name, WordsOfTypes()));
}

/// Returns " and DateCaptured_SD >= '...' ..." for the days that the user typed.
std::string OnDays(const std::string& text) {
    const TypedDays days = DaysTyped(text);
    std::string condition;
    if (days.first.Days != 0) condition += sql(" and DateCaptured_SD >= '", Stamp(days.first), "'");
    if (days.last.Days != 0) condition += sql(" and DateCaptured_SD < '", Stamp(Date{days.last.Days + 1}), "'");
    return condition;
}

/// Returns the condition that a tooth string has one of these teeth.
std::string WithTeeth(const std::string& text) {
    std::string condition;
    for (const int tooth : TeethTyped(text))
        condition += sql(Clause(condition.empty() ? " and (" : " or "), "PriStructure like '", Long{tooth},
                         ",%' or PriStructure like '%,", Long{tooth}, ",%'");
    return condition + ")";
}

/// Returns the condition of the images that the user requests.
std::string ImagesClause(const Database& database, const WantedImages& wanted) {
    std::string clause = "where 1=1";
    if (!wanted.series.empty()) clause += sql(" and Series_ID=", NumberOf(wanted.series, "a series"));
    if (!wanted.patient.empty()) clause += sql(" and PatientID=", LoadPatient(database, wanted.patient)->ID);
    if (!wanted.tooth.empty()) clause += WithTeeth(wanted.tooth);
    if (!wanted.date.empty()) clause += OnDays(wanted.date);
    if (!wanted.type.empty()) clause += sql(" and ImageType=", TypeNamed(wanted.type));
    if (!wanted.modality.empty())
        clause += sql(" and Series_ID in (select Series_ID from Series_T where Modality='",
                      FixSqlString(UCase(wanted.modality)), "')");
    return clause;
}

void ListImages(Program& program, const WantedImages& wanted) {
    const Options& options = program.options;
    const Database database(options);
    const Ref<cImages> images = New<cImages>();
    images->LoadReadable(database.Con(), iootUnknown, 0, ImagesClause(database, wanted));
    List list({{"image", "Image"},
               {"series", "Series"},
               {"frame", "Frame"},
               {"teeth", "Teeth"},
               {"side", "Side"},
               {"region", "Region"},
               {"modifier", "Modifier"},
               {"date", "Date"},
               {"kv", "kV"},
               {"ma", "mA"},
               {"ms", "ms"},
               {"placed", "Placed"},
               {"noPicture", "No picture"},
               {"file", "File"},
               {"damaged", "Damaged", true}});
    for (const cImage& image : *images) {
        if (options.sort.empty() && options.limit > 0 && list.Count() == options.limit) break;
        list.Add({image.ID, image.seriesID, Long{image.FrameNumber}, image.sTeeth, image.Laterality, image.AnaRegion,
                  image.AnaRegionMod, DateText(image.dateTime), image.Voltage_kV, image.Current_mA,
                  image.ExposureTime_ms, IsPlacedByTimeOnly(image) ? "by time only" : "", WhyNoPictureQuickly(image),
                  image.URL, nullptr});
    }
    for (const UnreadRow& row : images->Unread())
        list.Add({row.ID, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                  nullptr, nullptr, nullptr, DamageOf(row.Failure)});
    if (!images->Unread().empty()) program.exitCode = PartlyDone;
    list.Print(options, "There are no images.");
}

void PrintComments(Program& program, const std::vector<StoredComment>& comments) {
    List list({{"date", "Date"},
               {"signature", "Signature"},
               {"comment", "Comment"},
               {"number", "Number"},
               {"damaged", "Damaged", true}});
    for (const StoredComment& comment : comments) {
        const bool sound = comment.damage.empty();
        if (!sound) program.exitCode = PartlyDone;
        list.Add({DateText(comment.date), comment.signature, comment.text, comment.number,
                  sound ? nlohmann::ordered_json() : nlohmann::ordered_json(comment.damage)});
    }
    list.Print(program.options, "The image has no comments.");
}

void RequireComment(const std::string& text, const std::string& signature) {
    constexpr Long width = 150;
    if (Trim(text).empty()) throw UserError("the comment is blank");
    if (Len(text) > width || Len(signature) > width)
        throw UserError(fmt::format("a comment and its signature have at most {} characters each", width));
}

/// Adds a comment without reading the row of the image, so that a damaged image can have a comment.
void RequireImage(const Database& database, Long number) {
    if (database.Number(sql("SELECT count(*) FROM ImageBild_T WHERE ImageBildID=", number)) == 0)
        throw UserError(fmt::format("there is no image {}; see: oxclass images", number));
}

void Comment(Program& program, const std::string& number, const std::string& text, const std::string& signature) {
    const Database database(program.options);
    const Long id = NumberOf(number, "an image");
    if (text.empty()) {
        RequireImage(database, id);
        return PrintComments(program, CommentsOf(database.Con(), id));
    }
    RequireComment(text, signature);
    std::vector<StoredComment> comments;
    Write(database.Con(), [&] {
        RequireImage(database, id);
        const Ref<cImage> image = New<cImage>();
        image->ID = id;
        image->addComment(text, signature, Now(), false);
        image->SaveComments(database.Con());
        comments = CommentsOf(database.Con(), id);
    });
    PrintComments(program, comments);
}

}  // namespace

void AddRecords(Program& program) {
    struct Arguments {
        std::string patient, series, image, text, signature;
        WantedImages wanted;
    };
    const auto given = std::make_shared<Arguments>();
    const auto patientOption = [&](CLI::App* command) {
        command->add_option("--patient", given->patient, "of this patient only, as in: oxclass cards PATIENT")
            ->type_name("PATIENT")
            ->check(NotEmpty());
    };
    auto* studies = program.app.add_subcommand("studies", "list the studies");
    patientOption(studies);
    AddListOptions(program, studies);
    studies->footer("Example: oxclass studies --patient TEST-FMX18");
    studies->callback([&program, given] { ListStudies(program.options, given->patient); });

    auto* series = program.app.add_subcommand("series", "list the series, or draw one as it hangs in its layout");
    series->add_option("SERIES", given->series, "number of a series");
    patientOption(series);
    AddListOptions(program, series);
    series->footer("Example: oxclass series 1");
    series->callback([&program, given, series] {
        if (!series->get_subcommands().empty()) return;
        if (given->series.empty()) return ListSeries(program, given->patient);
        if (!ShowSeries(program.options, NumberOf(given->series, "a series"))) program.exitCode = PartlyDone;
    });

    auto* images = program.app.add_subcommand("images", "list the images with frame, teeth and exposure");
    WantedImages& wanted = given->wanted;
    images->add_option("--patient", wanted.patient, "of this patient only, as in: oxclass cards PATIENT")
        ->type_name("PATIENT");
    images->add_option("--series", wanted.series, "of this series only")->type_name("SERIES");
    images->add_option("--tooth", wanted.tooth, "with one of these teeth, as 16 or 16,17")->type_name("TEETH");
    images->add_option("--date", wanted.date, "taken on this day: 2026-01-31, 2026-01-01..2026-01-31, today")
        ->type_name("DAY");
    images->add_option("--modality", wanted.modality, "of this modality, as IO")->type_name("MODALITY");
    images->add_option("--type", wanted.type, "of this type: " + WordsOfTypes())->type_name("TYPE");
    for (const char* filter : {"--patient", "--series", "--tooth", "--date", "--modality", "--type"})
        images->get_option(filter)->check(NotEmpty());
    AddListOptions(program, images);
    images->footer(
        "Example: oxclass images --series 1\n"
        "Example: oxclass images --patient TEST-FMX18 --tooth 16,26 --date 2020-01-01.. --csv");
    images->callback([&program, given] { ListImages(program, given->wanted); });

    auto* comment = program.app.add_subcommand("comment", "list the comments of an image, or add one");
    comment->add_option("IMAGE", given->image, "number of an image")->required();
    comment->add_option("TEXT", given->text, "the comment to add");
    comment->add_option("--signature", given->signature, "signature of the author")->type_name("NAME");
    AddListOptions(program, comment);
    comment->footer("Example: oxclass comment 3 \"caries distal 15\" --signature AB");
    comment->callback([&program, given] { Comment(program, given->image, given->text, given->signature); });
}

}  // namespace Console
