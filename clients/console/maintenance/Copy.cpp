#include "console/Commands.h"
#include "console/DatabaseName.h"
#include "console/DatabaseFile.h"
#include "console/Server.h"
#include "console/maintenance/ClinicCopy.h"

#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;

std::vector<CopiedTable> CopyToServer(const Database& source, const std::string& target) {
    const std::string name = ShownName(target);
    const Ref<Connection> con = Platform::New<Connection>();
    try {
        OpenServer(con, target);
    } catch (const Platform::Error& failure) {
        throw UserError(fmt::format("{} can't be opened: {}", name, ExplanationOf(failure)));
    }
    if (!MayBecomeClinic(con)) RequireServerClinic(con, name);
    return CopyClinic(source, con);
}

std::vector<CopiedTable> CopyTo(const Database& source, const std::string& target) {
    if (NamesServer(target)) return CopyToServer(source, target);
    if (!IsConnectionString(target) && !fs::exists(target)) return CopyClinicToNewFile(source, fs::absolute(target));
    Options options;
    options.database = target;
    return CopyClinic(source, Database(options).Con());
}

void Copy(const Options& options, const std::string& target) {
    const Database source(options);
    List list({{"table", "Table"}, {"rows", "Rows"}, {"sha256", "SHA-256"}});
    for (const CopiedTable& table : CopyTo(source, target)) list.Add({table.name, table.rows, table.sha256});
    list.Print(options.json, "");
    if (!options.json)
        fmt::print("The clinic is copied to {}. Its images stay in their storage roots.\n", ShownName(target));
}

}  // namespace

void AddCopy(Program& program) {
    const auto target = std::make_shared<std::string>();
    auto* command = program.app.add_subcommand("copy", "copy the clinic into another database of any engine");
    command->add_option("--to", *target, "a new file, or the connection string of an empty database")
        ->type_name("DATABASE")
        ->required();
    command->footer(
        "Every value is compared after the copy. Image files are not copied.\n"
        "Example: oxclass --db clinic.db copy --to \"Provider=PostgreSQL;Server=db;Database=clinic;User ID=ann\"");
    command->callback([&program, target] { Copy(program.options, *target); });
}

}  // namespace Console
