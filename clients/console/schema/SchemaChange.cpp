#include "console/schema/SchemaChange.h"

#include "SchemaChanges.h"
#include "console/DatabaseName.h"
#include "console/NewDatabase.h"
#include "console/WriteTransaction.h"
#include "frame/SchemaVersion.h"
#include "frame/Statement.h"

#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

/// The scripts between a version and the one below it, each for SQLite, PostgreSQL and MariaDB.
struct Step {
    std::array<std::string_view, 3> up, down;
};

/// The steps to version 2 and higher.
constexpr std::array<Step, 1> Steps{{
    {{schema::upgrade_2_sqlite_sql, schema::upgrade_2_postgresql_sql, schema::upgrade_2_mariadb_sql},
     {schema::downgrade_2_sqlite_sql, schema::downgrade_2_postgresql_sql, schema::downgrade_2_mariadb_sql}},
}};
static_assert(Steps.size() + 1 == KnownSchemaVersion);

const Step& StepTo(Long version) { return Steps.at(static_cast<std::size_t>(version - 2)); }

/// Copies an open database file, whose writers wait, and returns the name of the copy.
std::string CopyOf(const Ref<Connection>& con, Long version) {
    const fs::path file = std::string(ADODB::ConnectionString(con->ConnectionString()).Value("Data Source"));
    fs::path copy = fmt::format("{}.version-{}", file.string(), version);
    for (int n = 2; fs::exists(copy); ++n) copy = fmt::format("{}.version-{}.{}", file.string(), version, n);
    NewDatabase made(copy);
    const Ref<Connection> reader = Platform::New<Connection>();
    reader->Open(ConnectionStringOf(file.string(), "Read"));
    reader->Execute(sql("VACUUM INTO '", FixSqlString(made.Made().string()), "'"));
    reader->Close();
    made.Finish();
    return copy.string();
}

void Run(const Ref<Connection>& con, Engine engine, Long from, Long to) {
    for (const std::string& statement : ChangeStatements(engine, from, to))
        con->Execute(statement, nullptr, ADODB::adExecuteNoRecords);
}

SchemaChange ChangeInTransaction(const Ref<Connection>& con, Engine engine, Long to) {
    WriteTransaction transaction(con);
    SchemaChange change{SchemaVersionOf(con), {}};
    if (change.from == to) return change;
    if (engine == Engine::SQLite) change.copy = CopyOf(con, change.from);
    Run(con, engine, change.from, to);
    transaction.Commit();
    return change;
}

/// While this object lives, no other program has one for the same database of a MariaDB server.
class NamedLock {
public:
    explicit NamedLock(Ref<Connection> con) : con_(std::move(con)) {
        const Ref<Recordset> answer = con_->Execute("SELECT get_lock(concat('oxclass ', database()), 600)");
        if (answer->Fields(0).IsNull() || answer->Fields(0).As<Long>() != 1)
            throw UserError("another program changes the tables; run the command again when it has ended");
    }
    ~NamedLock() {
        try {
            con_->Execute("DO release_lock(concat('oxclass ', database()))");
        } catch (const Platform::Error&) {  // the server releases it with the connection
        }
    }
    NamedLock(const NamedLock&) = delete;

private:
    Ref<Connection> con_;
};

SchemaChange ChangeStepByStep(const Ref<Connection>& con, Long to) {
    const NamedLock lock(con);
    SchemaChange change{SchemaVersionOf(con), {}};
    // The statements of a downgrade can be repeated, so that an interrupted one is completed.
    Run(con, Engine::MariaDB, to <= change.from ? KnownSchemaVersion : change.from, to);
    return change;
}

}  // namespace

std::vector<std::string> ChangeStatements(Engine engine, Long from, Long to) {
    const auto of = static_cast<std::size_t>(engine);
    std::vector<std::string> statements;
    const auto add = [&](std::string_view script) {
        for (std::string& statement : StatementsOf(script)) statements.push_back(std::move(statement));
    };
    for (Long version = from + 1; version <= to; ++version) add(StepTo(version).up.at(of));
    for (Long version = from; version > to; --version) add(StepTo(version).down.at(of));
    return statements;
}

SchemaChange ChangeSchema(const Ref<Connection>& con, Long to) {
    const Engine engine = EngineOf(con);
    return engine == Engine::MariaDB ? ChangeStepByStep(con, to) : ChangeInTransaction(con, engine, to);
}

}  // namespace Console
