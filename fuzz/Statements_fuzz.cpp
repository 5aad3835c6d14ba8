#include "Check.h"

#include "platform/adodb/Recordset.h"
#include "platform/adodb/providers/sqlite/SqliteOrChains.h"
#include "platform/runtime/Convert.h"

#include <sqlite3.h>

using namespace ADODB;
using namespace Platform;

namespace {

const char* const Tables[] = {
    "CREATE TABLE a (ID INTEGER PRIMARY KEY, Name NVARCHAR(20), Size FLOAT, Day TEXT, Flag INTEGER)",
    "CREATE TABLE b (ID INTEGER PRIMARY KEY, OfA INTEGER, Name TEXT)",
    "INSERT INTO a VALUES (1,'x',1.5,'2001-02-03',-1),(2,'O''Brien',0,'5',0),(3,NULL,NULL,NULL,NULL)",
    "INSERT INTO a VALUES (4,'5',5,'',7),(5,'WHERE',-2.25,'x',1)",
    "INSERT INTO b VALUES (1,1,'x'),(2,1,'y'),(3,4,NULL),(4,9,'')",
};

/// What a statement did: its rows with their column names, or that it failed, and the tables afterwards.
struct Effect {
    bool failed = false;
    String rows;
    String tables;
};

String ValueText(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return std::to_string(sqlite3_column_type(row, column)) + ":" + (text ? text : "") + "|";
}

/// The engine alone, on the text itself.
class Engine {
public:
    Engine() {
        CHECK(sqlite3_open(":memory:", &database_) == SQLITE_OK);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
        for (const char* statement : Tables) Run(statement);
    }

    Effect Try(const String& text) {
        Effect effect;
        sqlite3_exec(database_, "BEGIN", nullptr, nullptr, nullptr);
        effect.failed = !Run(text, &effect.rows);
        effect.tables = Dump();
        sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
        return effect;
    }

    String Dump() {
        String all;
        Run("SELECT * FROM a", &all);
        Run("SELECT * FROM b", &all);
        return all;
    }

private:
    bool Run(const String& text, String* rows = nullptr) {
        sqlite3_stmt* statement = nullptr;
        const char* tail = nullptr;
        if (sqlite3_prepare_v2(database_, text.c_str(), -1, &statement, &tail) != SQLITE_OK || !statement) return false;
        const bool single = String(tail).find_first_not_of(" ;\t\r\n\v\f") == String::npos;
        int code = single ? sqlite3_step(statement) : SQLITE_ERROR;
        for (int i = 0; rows && i < sqlite3_column_count(statement); ++i)
            *rows += String(sqlite3_column_name(statement, i)) + "|";
        for (; code == SQLITE_ROW; code = sqlite3_step(statement))
            for (int i = 0; rows && i < sqlite3_column_count(statement); ++i) *rows += ValueText(statement, i);
        sqlite3_finalize(statement);
        return code == SQLITE_DONE;
    }

    sqlite3* database_ = nullptr;
};

/// The provider, which lifts the literals and keeps the plans.
class Provider {
public:
    Provider() {
        session_ = FindProvider("SQLite")(ConnectionString("Data Source=:memory:"), 0);
        for (const char* statement : Tables) session_->Run(statement);
    }

    Effect Try(const String& text) {
        Effect effect;
        session_->Begin(1);
        try {
            effect.rows = Rows(session_->Run(text));
        } catch (const Error&) {
            effect.failed = true;
        }
        effect.tables = Rows(session_->Run("SELECT * FROM a")) + Rows(session_->Run("SELECT * FROM b"));
        session_->RollBack(1);
        return effect;
    }

private:
    static String CellText(const Cell& cell) {
        switch (cell.kind) {
            case Cell::Kind::Null: return "5:|";
            case Cell::Kind::Whole: return "1:" + std::to_string(cell.whole) + "|";
            case Cell::Kind::Text: return "3:" + String(String(cell.Text()).c_str()) + "|";
            case Cell::Kind::Real: break;
        }
        char digits[64];
        sqlite3_snprintf(sizeof digits, digits, "%!.15g", cell.real);
        return "2:" + String(digits) + "|";
    }

    static String Rows(const Outcome& outcome) {
        String text;
        if (!outcome.columns) return text;
        for (Long i = 0; i < outcome.columns->Count(); ++i) text += outcome.columns->At(i).Name + "|";
        while (outcome.reader->Next())
            for (Long i = 0; i < outcome.columns->Count(); ++i) text += CellText(outcome.reader->At(i));
        return text;
    }

    std::unique_ptr<Session> session_;
};

/// Statements whose effect isn't a matter of their text and the tables alone, or that may run for ever.
bool IsOutOfScope(const String& text) {
    static const char* const words[] = {"random",     "now",       "changes",   "insert_rowid", "recursive", "pragma",
                                        "attach",     "vacuum",    "sqlite_",   "current_",     "blob",      "commit",
                                        "rollback",   "begin",     "savepoint", "release",      "end",       "x'",
                                        "detach",     "julianday", "unixepoch", "create",       "drop",      "alter",
                                        "likelihood", "delete *"};
    if (text.find_first_of("?:@$#") != String::npos || text.find('\0') != String::npos || text.size() > 400)
        return true;
    for (const unsigned char c : text)
        if (c >= 0x80) return true;
    const String lower = LCase(text);
    for (const char* word : words)
        if (Contains(lower, word)) return true;
    return false;
}

}  // namespace

/// A statement has the same effect whether its text is compiled or its shape with the literals bound: both fail, or
/// both return the same rows under the same names and leave the same tables; also the second time, with the cached
/// compiled statement. A chain of ORs has the same result as a tree.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Engine engine;
    static Provider provider;
    const String text(reinterpret_cast<const char*>(data), size);
    if (IsOutOfScope(text)) return 0;
    const Effect expected = engine.Try(text);
    for (int time = 0; time < 2; ++time) {
        const Effect effect = provider.Try(text);
        CHECK(effect.failed == expected.failed);
        CHECK(effect.tables == expected.tables);
        CHECK(effect.failed || effect.rows == expected.rows);
    }
    const Effect balanced = engine.Try(WithBalancedOrChains(text, 1));
    CHECK(balanced.failed == expected.failed);
    CHECK(balanced.tables == expected.tables);
    CHECK(balanced.failed || balanced.rows == expected.rows);
    return 0;
}
