#include "console/Commands.h"

#include "console/Chart.h"
#include "console/Completeness.h"
#include "console/Program.h"
#include "console/WriteTransaction.h"
#include "console/page/Page.h"
#include "console/patients/PatientStore.h"
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
        .Print(options.json, "There are no studies.");
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
    list.Print(program.options.json, "There are no series.");
}

/// Returns the condition of the images that the user requests.
std::string ImagesClause(const Database& database, const std::string& patient, const std::string& series) {
    if (!series.empty()) return sql("where Series_ID=", NumberOf(series, "a series"));
    if (patient.empty()) return "where 1=1";
    return sql("where PatientID=", LoadPatient(database, patient)->ID);
}

void ListImages(Program& program, const std::string& patient, const std::string& series) {
    const Options& options = program.options;
    const Database database(options);
    const Ref<cImages> images = New<cImages>();
    images->LoadReadable(database.Con(), iootUnknown, 0, ImagesClause(database, patient, series));
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
    for (const cImage& image : *images)
        list.Add({image.ID, image.seriesID, Long{image.FrameNumber}, image.sTeeth, image.Laterality, image.AnaRegion,
                  image.AnaRegionMod, DateText(image.dateTime), image.Voltage_kV, image.Current_mA,
                  image.ExposureTime_ms, IsPlacedByTimeOnly(image) ? "by time only" : "", WhyNoPictureQuickly(image),
                  image.URL, nullptr});
    for (const UnreadRow& row : images->Unread())
        list.Add({row.ID, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                  nullptr, nullptr, nullptr, DamageOf(row.Failure)});
    if (!images->Unread().empty()) program.exitCode = PartlyDone;
    list.Print(options.json, "There are no images.");
}

void PrintComments(Program& program, const std::vector<StoredComment>& comments) {
    List list({{"date", "Date"}, {"signature", "Signature"}, {"comment", "Comment"}, {"damaged", "Damaged", true}});
    for (const StoredComment& comment : comments) {
        const bool sound = comment.damage.empty();
        if (!sound) program.exitCode = PartlyDone;
        list.Add({DateText(comment.date), comment.signature, comment.text,
                  sound ? nlohmann::ordered_json() : nlohmann::ordered_json(comment.damage)});
    }
    list.Print(program.options.json, "The image has no comments.");
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
    };
    const auto given = std::make_shared<Arguments>();
    const auto patientOption = [&](CLI::App* command) {
        command->add_option("--patient", given->patient, "of this patient only: an ID, or # and the number")
            ->type_name("PATIENT");
    };
    auto* studies = program.app.add_subcommand("studies", "list the studies");
    patientOption(studies);
    studies->footer("Example: oxclass studies --patient TEST-FMX18");
    studies->callback([&program, given] { ListStudies(program.options, given->patient); });

    auto* series = program.app.add_subcommand("series", "list the series, or draw one as it hangs in its layout");
    series->add_option("SERIES", given->series, "number of a series");
    patientOption(series);
    series->footer("Example: oxclass series 1");
    series->callback([&program, given, series] {
        if (!series->get_subcommands().empty()) return;
        if (given->series.empty()) return ListSeries(program, given->patient);
        if (!ShowSeries(program.options, NumberOf(given->series, "a series"))) program.exitCode = PartlyDone;
    });

    auto* images = program.app.add_subcommand("images", "list the images with frame, teeth and exposure");
    patientOption(images);
    images->add_option("--series", given->series, "of this series only")->type_name("SERIES");
    images->footer("Example: oxclass images --series 1");
    images->callback([&program, given] { ListImages(program, given->patient, given->series); });

    auto* comment = program.app.add_subcommand("comment", "list the comments of an image, or add one");
    comment->add_option("IMAGE", given->image, "number of an image")->required();
    comment->add_option("TEXT", given->text, "the comment to add");
    comment->add_option("--signature", given->signature, "signature of the author")->type_name("NAME");
    comment->footer("Example: oxclass comment 3 \"caries distal 15\" --signature AB");
    comment->callback([&program, given] { Comment(program, given->image, given->text, given->signature); });
}

}  // namespace Console
