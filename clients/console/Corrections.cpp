#include "console/Commands.h"
#include "console/records/ImageCorrection.h"
#include "console/records/PatientMerge.h"
#include "console/records/RecordMove.h"

#include <fmt/format.h>

namespace Console {
namespace {

using Texts = std::vector<std::string>;

/// The arguments of the commands that correct.
struct CorrectionArguments {
    ChangeOptions change;
    Texts numbers;
    std::string patient, to, teeth, side, region, date;
};

void AddChangeOptions(CLI::App* command, ChangeOptions& change) {
    command->add_option("--by", change.by, "who signs the change; default: the user of the system")
        ->type_name("NAME")
        ->check(NotEmpty());
    command->add_flag("--dry-run", change.dryRun, "show what would change, and change nothing");
}

std::set<Platform::Long> KeysOf(const Texts& texts, const char* what) {
    std::set<Platform::Long> keys;
    for (const std::string& text : texts) keys.insert(NumberOf(text, what));
    return keys;
}

void AddMove(Program& program, const std::shared_ptr<CorrectionArguments>& given) {
    auto* move = program.app.add_subcommand("move", "move images, series or studies to another patient");
    move->require_subcommand(1);
    move->footer(
        "A signed comment on each image records the change.\nExample: oxclass move series 18 --to TEST-FMX20 --by AB");
    struct Kind {
        const char *name, *what, *example;
        std::set<Platform::Long> MovedRecords::*keys;
    };
    for (const Kind& kind : {Kind{"image", "an image", "image 12 13", &MovedRecords::images},
                             Kind{"series", "a series", "series 18", &MovedRecords::series},
                             Kind{"study", "a study", "study 4", &MovedRecords::studies}}) {
        auto* command = move->add_subcommand(kind.name, fmt::format("move {} with all that belongs to it", kind.what));
        command->add_option("NUMBER", given->numbers, fmt::format("number of {}", kind.what))->required();
        command->add_option("--to", given->to, PatientHelp)->required()->type_name("PATIENT");
        command->add_flag("--force", given->change.force, "take moved images off cards that show other images too");
        AddChangeOptions(command, given->change);
        command->footer(fmt::format(
            "What is not a whole study gets a new study of the patient, with the same date and description.\n"
            "Example: oxclass move {} --to TEST-FMX20 --dry-run",
            kind.example));
        command->callback([&program, given, kind] {
            MovedRecords moved;
            moved.*kind.keys = KeysOf(given->numbers, kind.what);
            ChangeRecords(program.options, given->change,
                          [&](RecordChange& change) { MoveRecords(change, moved, given->to, given->change.force); });
        });
    }
}

void AddMerge(Program& program, const std::shared_ptr<CorrectionArguments>& given) {
    auto* merge =
        program.app.add_subcommand("merge", "move all that a patient has to another one, and remove the first");
    merge->add_option("PATIENT", given->patient, PatientHelp)->required();
    merge->add_option("--into", given->to, "the patient who stays")->required()->type_name("PATIENT");
    merge->add_flag("--force", given->change.force, "also if name, birth date or sex contradict each other");
    AddChangeOptions(merge, given->change);
    merge->footer(
        "The ID of the removed patient becomes another ID of the one who stays. A signed comment on each image and\n"
        "in the comments of the patient records the change.\n"
        "Example: oxclass merge '#18' --into '#19' --dry-run --force");
    merge->callback([&program, given] {
        ChangeRecords(program.options, given->change, [&](RecordChange& change) {
            MergePatients(change, given->patient, given->to, given->change.force);
        });
    });
}

void AddCorrectPatient(Program& program, CLI::App* correct, const std::shared_ptr<CorrectionArguments>& given) {
    auto* patient = correct->add_subcommand("patient", "replace a wrong identifier of a patient");
    patient->add_option("PATIENT", given->patient, PatientHelp)->required();
    patient->add_option("--id", given->to, "the right identifier")->required()->type_name("ID");
    AddChangeOptions(patient, given->change);
    patient->footer(
        "If another patient has the right ID already: oxclass merge.\n"
        "Example: oxclass correct patient TEST-FMX18 --id 19800131-1234 --dry-run");
    patient->callback([&program, given] {
        ChangeRecords(program.options, given->change,
                      [&](RecordChange& change) { CorrectPatientID(change, given->patient, given->to); });
    });
}

void AddCorrectImage(Program& program, CLI::App* correct, const std::shared_ptr<CorrectionArguments>& given) {
    auto* image = correct->add_subcommand("image", "correct teeth, side, region or date of images");
    image->add_option("IMAGE", given->numbers, "numbers of images")->required();
    auto* teeth = image->add_option("--teeth", given->teeth, "the teeth, as 16,17; side and region follow from them");
    auto* side = image->add_option("--side", given->side, "R, L or B (both)");
    auto* region = image->add_option("--region", given->region, "upper, lower, both or skull");
    auto* date = image->add_option("--date", given->date, "when it was taken, as 2026-01-31 or \"2026-01-31 10:30\"");
    for (auto* value : {teeth, side, region, date}) value->type_name("VALUE");
    AddChangeOptions(image, given->change);
    image->footer(
        "An empty text removes teeth, side or region. The series is hung again. The file stays as it is.\n"
        "Example: oxclass correct image 12 --teeth 26,27 --by AB --dry-run");
    image->callback([&program, given, teeth, side, region, date] {
        const auto typed = [](const CLI::Option* option, const std::string& text) {
            return option->count() > 0 ? std::optional(text) : std::nullopt;
        };
        const ImageCorrection correction{typed(teeth, given->teeth), typed(side, given->side),
                                         typed(region, given->region), typed(date, given->date)};
        const auto images = KeysOf(given->numbers, "an image");
        ChangeRecords(program.options, given->change,
                      [&](RecordChange& change) { CorrectImages(change, images, correction); });
    });
}

}  // namespace

void AddCorrections(Program& program) {
    const auto given = std::make_shared<CorrectionArguments>();
    AddMove(program, given);
    AddMerge(program, given);
    auto* correct =
        program.app.add_subcommand("correct", "correct a patient's identifier, or what is known of an image");
    correct->require_subcommand(1);
    correct->footer("Example: oxclass correct image 12 --teeth 26,27 --by AB --dry-run");
    AddCorrectPatient(program, correct, given);
    AddCorrectImage(program, correct, given);
}

}  // namespace Console
