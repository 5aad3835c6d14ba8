#include "console/Commands.h"

#include "console/DatabaseName.h"
#include "console/DatabaseFile.h"
#include "console/NewDatabase.h"
#include "console/Server.h"
#include "console/import/StorageRoot.h"
#include "frame/Statement.h"
#include "platform/adodb/Transaction.h"

#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using OXClass::FixSqlString;
using OXClass::sql;

/// Returns the clinic of a database that is replaced, so that the new database can use its storage root; empty for any
/// other file.
std::string ClinicOf(const fs::path& file) {
    if (!fs::exists(file)) return {};
    const Ref<Connection> con = Platform::New<Connection>();
    try {
        con->Open(ConnectionStringOf(file.string(), "Read"));
        return StorageRoots(con).StoredIdentity();
    } catch (const Platform::Error&) {
        return {};
    }
}

/// Makes a folder the only storage root of a new database.
void AddFirstRoot(const Ref<Connection>& con, const fs::path& root) {
    StorageRoots(con).Create(root);
    con->Execute(
        sql("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '", FixSqlString(root.string()), "', 1);"));
    AlignCounters(con);
}

void Fill(const fs::path& file, const fs::path& root, const std::string& database) {
    const Ref<Connection> con = Platform::New<Connection>();
    con->Open(ConnectionStringOf(file.string(), "Create"));
    ADODB::Transaction transaction(con);
    CreateClinicTables(con);
    if (!database.empty())
        con->Execute(sql("INSERT INTO ClinicIdentity_T (Identity) VALUES ('", FixSqlString(database), "')"));
    AddFirstRoot(con, root);
    transaction.Commit();
    con->Close();
}

/// Throws `UserError` for a database on a server that can't store all texts, or compares them in another way.
void RequireUnicode(const Ref<Connection>& con) {
    const bool postgres = EngineOf(con) == Engine::PostgreSQL;
    const char* const question = postgres ? "SELECT getdatabaseencoding()" : "SELECT @@collation_database";
    const char* const answer = postgres ? "UTF8" : "utf8mb4_nopad_bin";
    const std::string found = con->Execute(question)->Fields(0).As<Platform::String>();
    if (found == answer) return;
    throw UserError(fmt::format("the database has {} {} in place of {}; make it as docs/engines.md shows",
                                postgres ? "the encoding" : "the collation", found, answer));
}

/// Makes the tables in an empty database on a server.
void InitOnServer(const std::string& database, const std::string& root, bool replace) {
    const std::string name = ShownName(database);
    if (replace) throw UserError("--replace renames a database file; on a server, name an empty database");
    if (root.empty()) throw UserError("name the folder for the image files with --root; all workstations must see it");
    const Ref<Connection> con = Platform::New<Connection>();
    try {
        OpenServer(con, database);
    } catch (const Platform::Error& failure) {
        throw UserError(fmt::format("{} can't be opened: {}", name, ExplanationOf(failure)));
    }
    RequireUnicode(con);
    ADODB::Transaction transaction(con);
    if (!MayBecomeClinic(con))
        throw UserError(
            fmt::format("{} has tables of a clinic already and is not changed; name an empty database", name));
    CreateClinicTables(con);
    AddFirstRoot(con, fs::absolute(root));
    transaction.Commit();
    fmt::print("{} is ready; images go to {}\nNext: oxclass --db \"{}\" import FOLDER\n", name,
               fs::absolute(root).string(), name);
}

/// Writes the content of an SQLite database's log into the file itself. The log stays while another program has the
/// database open.
void Settle(const fs::path& file) {
    const Ref<Connection> con = Platform::New<Connection>();
    try {
        con->Open(ConnectionStringOf(file.string()));
        con->Close();
    } catch (const Platform::Error&) {
        return;  // no database, or none that may be written: it has no log of ours
    }
}

/// Renames an existing database, so that its content is kept.
void RenameExisting(const fs::path& file, bool replace) {
    const fs::path aside = file.string() + ".old", log = file.string() + "-wal";
    if (fs::exists(file)) {
        if (!replace)
            throw UserError(
                fmt::format("{} exists already and is not changed; name another file, or use --replace to "
                            "rename it to {}",
                            file.string(), aside.string()));
        if (fs::exists(aside)) throw UserError(fmt::format("{} exists already; move it away first", aside.string()));
        Settle(file);
    }
    if (fs::exists(log))
        throw UserError(fmt::format("{} belongs to a database in use; close the programs that use it, or move it away",
                                    log.string()));
    if (fs::exists(file)) fs::rename(file, aside);
}

void Init(const std::string& name, const std::string& rootName, bool replace) {
    if (NamesServer(name)) return InitOnServer(name, rootName, replace);
    const fs::path file = fs::absolute(name);
    const fs::path root = fs::absolute(rootName.empty() ? file.parent_path() / "images" : fs::path(rootName));
    if (!fs::is_directory(file.parent_path()))
        throw UserError(fmt::format("there is no folder {}; make it first", file.parent_path().string()));
    if (!replace) RenameExisting(file, false);
    NewDatabase made(file);
    Fill(made.Made(), root, replace ? ClinicOf(file) : std::string());
    RenameExisting(file, replace);
    made.Finish();
    fmt::print("{} is ready; images go to {}\nNext: oxclass --db {} import FOLDER\n", file.string(), root.string(),
               name);
}

}  // namespace

void AddInit(Program& program) {
    struct Arguments {
        std::string file, root;
        bool replace = false;
    };
    const auto given = std::make_shared<Arguments>();
    auto* command = program.app.add_subcommand("init", "make a database with the standard layouts and a storage root");
    command->add_option("FILE", given->file, "the database to make; or the connection string of an empty one")
        ->required();
    command->add_option("--root", given->root, "folder for the image files; default: images beside the file")
        ->type_name("DIR");
    command->add_flag("--replace", given->replace, "rename an existing database to FILE.old first");
    command->footer(
        "Example: oxclass init clinic.db --root /srv/images\n"
        "On a server: oxclass init \"Provider=PostgreSQL;Server=db;Database=clinic;User ID=ann\" --root /srv/images");
    command->callback([given] { Init(given->file, given->root, given->replace); });
}

}  // namespace Console
