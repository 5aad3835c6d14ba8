#include "console/Commands.h"
#include "console/Program.h"
#include "console/maintenance/ClinicCheck.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

void Check(Program& program, bool repair) {
    const Database database(program.options);
    const CheckResult result = CheckClinic(database, repair);
    List list({{"kind", "Kind"}, {"where", "Where"}, {"text", "What"}, {"repaired", "Repaired"}});
    for (const Finding& finding : result.findings)
        list.Add({finding.kind, finding.where, finding.text, finding.repaired});
    const auto open = std::ranges::count_if(result.findings,
                                            [](const Finding& finding) { return !finding.repaired && !finding.note; });
    const auto repaired = std::ranges::count(result.findings, true, &Finding::repaired);
    if (open > 0) program.exitCode = PartlyDone;
    if (program.options.json)
        return PrintJson({{"images", result.images},
                          {"files", result.files},
                          {"without_checksum", result.withoutChecksum},
                          {"open", open},
                          {"findings", list.Rows()}});
    if (!result.findings.empty()) list.Print(false, "");
    fmt::print("{} images and {} files were checked: {} findings, {} repaired.\n", result.images, result.files,
               result.findings.size(), repaired);
    if (result.withoutChecksum > 0)
        fmt::print("{} images {} no checksum{}.\n", result.withoutChecksum, repair ? "had" : "have",
                   repair ? " and got one" : "; oxclass check --repair stores them");
}

}  // namespace

void AddCheck(Program& program) {
    const auto repair = std::make_shared<bool>(false);
    auto* command = program.app.add_subcommand(
        "check", "compare all rows with all files: missing, altered and orphaned ones, and damaged rows");
    command->add_flag("--repair", *repair, "repair what needs no decision (see below)");
    command->footer(
        "Repaired are: leftovers of killed imports and removals, missing checksums, manipulations of placed images "
        "that "
        "are\n"
        "gone. Everything else is listed only. Findings of the kind other-name are notes: a family name was\n"
        "corrected; so are two-names of images that were moved to another patient. Exit code 3: other findings are "
        "left.\n"
        "Example: oxclass check --json");
    command->callback([&program, repair] { Check(program, *repair); });
}

}  // namespace Console
