#include "console/Commands.h"
#include "console/Program.h"
#include "console/schema/SchemaChange.h"
#include "console/schema/SchemaCheck.h"
#include "frame/SchemaVersion.h"

#include <fmt/format.h>

namespace Console {
namespace {

using OXClass::KnownSchemaVersion;
using OXClass::SchemaVersionOf;
using Platform::Long;

std::string NameOf(Engine engine) {
    switch (engine) {
        case Engine::PostgreSQL: return "PostgreSQL";
        case Engine::MariaDB: return "MariaDB";
        default: return "SQLite";
    }
}

void PrintStatus(const Options& options) {
    const Database database(options);
    const Long version = SchemaVersionOf(database.Con());
    PrintFields({{"engine", NameOf(EngineOf(database.Con()))}, {"version", version}, {"newest", KnownSchemaVersion}},
                options.json);
    if (!options.json && version < KnownSchemaVersion)
        fmt::print("Next: oxclass schema upgrade (all programs go on working with version {})\n", version);
}

void PrintStatements(const std::vector<std::string>& statements, bool json) {
    if (json) return PrintJson({{"statements", statements}});
    for (const std::string& statement : statements) fmt::print("{}\n", statement);
}

void Change(const Options& options, Long to, bool dryRun) {
    const Database database(options);
    const Ref<Connection>& con = database.Con();
    if (dryRun) return PrintStatements(ChangeStatements(EngineOf(con), SchemaVersionOf(con), to), options.json);
    const SchemaChange change = ChangeSchema(con, to);
    if (options.json) return PrintJson({{"from", change.from}, {"to", to}, {"copy", change.copy}});
    if (change.from == to) return fmt::print("The tables have version {} already.\n", to);
    fmt::print("The tables are changed from version {} to version {}.\n", change.from, to);
    if (!change.copy.empty()) fmt::print("The database as it was: {}\n", change.copy);
}

void Upgrade(const Options& options, bool dryRun) { Change(options, KnownSchemaVersion, dryRun); }

/// Throws `UserError` for a version that is not below the database's.
Long LowerVersion(const Options& options, const std::string& given) {
    const Long version = SchemaVersionOf(Database(options).Con());
    const Long to = given.empty() ? version - 1 : NumberOf(given, "a version");
    if (to < 1) throw UserError("version 1 is the first; there is no lower one");
    if (to > KnownSchemaVersion)
        throw UserError(fmt::format("this program knows versions up to {}", KnownSchemaVersion));
    if (to > version)
        throw UserError(
            fmt::format("the tables have version {}, which is lower; use: oxclass schema upgrade", version));
    return to;
}

void Check(Program& program) {
    const Database database(program.options);
    const Long version = SchemaVersionOf(database.Con());
    const std::vector<SchemaDifference> differences = CompareSchema(database.Con(), version);
    if (!differences.empty()) program.exitCode = PartlyDone;
    List list({{"table", "Table"}, {"text", "Difference"}});
    for (const SchemaDifference& difference : differences) list.Add({difference.table, difference.text});
    if (program.options.json) return PrintJson({{"version", version}, {"differences", list.Rows()}});
    if (!differences.empty()) list.Print(false, "");
    fmt::print("{} differences from the tables of version {}.\n", differences.size(), version);
}

}  // namespace

void AddSchema(Program& program) {
    struct Arguments {
        std::string version;
        bool dryRun = false;
    };
    const auto given = std::make_shared<Arguments>();
    auto* schema = program.app.add_subcommand("schema", "the version of the tables: show, change and check it");
    schema->require_subcommand(1);
    schema->footer(
        "A newer version of the program may add indexes and tables. Programs of older versions go on working\n"
        "until the tables are upgraded, and refuse the database then.\n"
        "Example: oxclass schema status");

    auto* status = schema->add_subcommand("status", "show the version of the tables and the newest one");
    status->footer("Example: oxclass schema status --json");
    status->callback([&program] { PrintStatus(program.options); });

    auto* upgrade = schema->add_subcommand("upgrade", "change the tables to the newest version");
    upgrade->add_flag("--dry-run", given->dryRun, "print the statements and change nothing");
    upgrade->footer(
        "A database file is copied to FILE.version-N first. Writers wait until the upgrade ends, but not on\n"
        "MariaDB. There an interrupted upgrade is completed by the same command; elsewhere it has no effect.\n"
        "Example: oxclass schema upgrade --dry-run");
    upgrade->callback([&program, given] { Upgrade(program.options, given->dryRun); });

    auto* downgrade = schema->add_subcommand("downgrade", "change the tables to a lower version, for an older program");
    downgrade->add_option("VERSION", given->version, "the version; default: one less than the database's");
    downgrade->add_flag("--dry-run", given->dryRun, "print the statements and change nothing");
    downgrade->footer(
        "A database file is copied to FILE.version-N first.\n"
        "Example: oxclass schema downgrade 1");
    downgrade->callback(
        [&program, given] { Change(program.options, LowerVersion(program.options, given->version), given->dryRun); });

    auto* check = schema->add_subcommand("check", "compare tables, columns, keys and indexes with the version");
    check->footer(
        "Exit code 3: there are differences. Nothing is changed.\n"
        "Example: oxclass schema check --json");
    check->callback([&program] { Check(program); });
}

}  // namespace Console
