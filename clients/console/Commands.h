#pragma once

#include "console/Database.h"

#include <CLI/CLI.hpp>

/// The commands of the program. Each `Add...` adds its command to the parser of the program, which runs the
/// command when it parses it. They throw `UserError` and the library's `Error`.
namespace Console {

/// The options of the command line, which a command reads, and the exit code, which it sets.
struct Program {
    CLI::App app;
    Options options;
    int exitCode = 0;
};

void AddInit(Program& program);
void AddImport(Program& program);
void AddPatients(Program& program);      ///< patients, patient
void AddRecords(Program& program);       ///< studies, series, images, comment
void AddHanging(Program& program);       ///< hang
void AddCards(Program& program);         ///< cards, series save-as-card
void AddComposing(Program& program);     ///< card new, add, move, remove, show
void AddCorrections(Program& program);   ///< move, merge, correct
void AddDeletions(Program& program);     ///< delete, undelete, trash
void AddDrawing(Program& program);       ///< draw, report
void AddLayouts(Program& program);       ///< layouts, anatomy
void AddCheck(Program& program);         ///< check
void AddBackup(Program& program);        ///< backup, restore
void AddCopy(Program& program);          ///< copy
void AddSchema(Program& program);        ///< schema
void AddStaff(Program& program);         ///< doctors, doctor, clinics, clinic, guid
void AddWorklist(Program& program);      ///< worklist
void AddIdl(Program& program);           ///< idl
void AddRegistration(Program& program);  ///< register, unregister, classes
void AddManual(Program& program);        ///< completion, man
void AddSettings(Program& program);      ///< roots, setting, uid

/// The help of an argument that names a patient.
constexpr const char* PatientHelp =
    "a patient: the ID, # and the number, or parts of the name, the ID or the birth date that fit one patient only";

/// Rejects an empty text, with which a script would otherwise leave an option out by mistake.
CLI::Validator NotEmpty();

/// Adds the options --limit, --sort and --csv to a command that prints a list.
void AddListOptions(Program& program, CLI::App* command);

/// Returns a whole number of the command line, such as "12". Throws `UserError` for any other text, "K12"
/// included.
Platform::Long NumberOf(const std::string& text, const char* what);

}  // namespace Console
