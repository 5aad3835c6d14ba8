#include "Statements.h"
#include "kit/Database.h"

/// Every statement that the library sends finds its rows through an index, on each engine as its own plan tells, in a
/// clinic of many rows.
namespace OXClass {
namespace {

using namespace TestKit;

/// What the plan of a statement must be; statements.tsv explains the names.
struct Planned {
    std::string kind;
    std::string statement;
};

std::vector<Planned> PlannedStatements() {
    std::vector<Planned> planned;
    std::string_view rest = statements::statements_tsv;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() + 1);
        const std::size_t tab = line.find('\t');
        if (tab != std::string_view::npos && !line.starts_with('#'))
            planned.push_back({std::string(line.substr(0, tab)), std::string(line.substr(tab + 1))});
    }
    return planned;
}

/// A plan, as far as the engine's text tells what the tests ask.
struct Plan {
    bool readsTable = false;  ///< a table is read from its start to its end
    bool sorts = false;       ///< known of SQLite only; servers choose between a sort and an index by their statistics
    bool readsIndexOnly = true;  ///< known of SQLite only
    std::string text;
};

Plan PlanOfSqlite(const Ref<Recordset>& rows) {
    Plan plan;
    for (; !rows->Eof(); rows->MoveNext()) plan.text += rows->Fields("detail").As<String>() + "\n";
    plan.readsTable = Contains(plan.text, "SCAN");
    plan.sorts = Contains(plan.text, "TEMP B-TREE");
    plan.readsIndexOnly = Contains(plan.text, "COVERING INDEX");
    return plan;
}

/// A scan of an index without "Index Cond:" reads the whole index.
Plan PlanOfPostgres(const Ref<Recordset>& rows) {
    Plan plan;
    int scans = 0, conditions = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
        const std::string line = rows->Fields(0).As<String>();
        plan.readsTable |= Contains(line, "Seq Scan") && !Contains(line, "root_t");
        scans += Contains(line, "Index Scan") || Contains(line, "Index Only Scan") ? 1 : 0;
        conditions += Contains(line, "Index Cond:") ? 1 : 0;
        plan.text += line + "\n";
    }
    plan.readsTable |= scans > conditions;
    return plan;
}

Plan PlanOfMariaDb(const Ref<Recordset>& rows) {
    Plan plan;
    for (; !rows->Eof(); rows->MoveNext()) {
        const auto text = [&](const char* column) {
            return rows->Fields(column).IsNull() ? String() : rows->Fields(column).As<String>();
        };
        const String type = text("type"), table = text("table");
        const bool whole = (type == "ALL" || type == "index") && text("select_type") != "INSERT";
        plan.readsTable |= whole && LCase(table) != "root_t";
        plan.text += table + " " + type + " " + text("key") + " " + text("rows") + " " + text("Extra") + "\n";
    }
    return plan;
}

class QueryPlan : public WithDatabase {
protected:
    Plan PlanOf(const String& statement) {
        if (TestedEngine() == Engine::PostgreSQL) return PlanOfPostgres(con->Execute("EXPLAIN " + statement));
        if (TestedEngine() == Engine::MariaDB) return PlanOfMariaDb(con->Execute("EXPLAIN " + statement));
        return PlanOfSqlite(con->Execute("EXPLAIN QUERY PLAN " + statement));
    }

    /// Inserts many rows; each value is an expression of the row's number `i`, from 1.
    void Fill(const String& table, const String& columns, const String& values) {
        if (TestedEngine() == Engine::MariaDB)
            con->Execute("SET SESSION sql_mode = CONCAT(@@sql_mode, ',PIPES_AS_CONCAT')");
        constexpr const char* many = "20000";
        const char* const numbers = TestedEngine() == Engine::PostgreSQL ? "generate_series(1, %) AS numbers(i)"
                                    : TestedEngine() == Engine::MariaDB
                                        ? "(SELECT seq AS i FROM seq_1_to_%) AS numbers"
                                        : "(WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                          "WHERE i < %) SELECT i FROM n) AS numbers";
        con->Execute("INSERT INTO " + table + " (" + columns + ") SELECT " + values + " FROM " +
                     Replace(numbers, "%", many));
        con->Execute((TestedEngine() == Engine::MariaDB ? "ANALYZE TABLE " : "ANALYZE ") + LCase(table));
    }

    /// Fills every table but the storage roots, of which a clinic has few.
    void FillTables() {
        Fill("GlobalList_T", "ListID, ListText", "i / 10, 'text ' || i");
        Fill("Patient_T", "PersonNr_CH, RespDoctor", "'P' || i, i / 100");
        Fill("Doctor_T", "drGUID, DrLastName_NVC", "'{' || i, 'Name ' || i");
        Fill("Clinic_T", "ClinicName", "'Clinic ' || i");
        Fill("ImageBild_T", "PatientID, Series_ID, DateCaptured_SD, GraphicURL_NVC, SOPInstanceUID_NVC",
             "i % 400, i % 1000, '2024-01-31 09:05:07', 'file ' || i, '1.2.' || i");
        Fill("Comments_T", "tabelID, objectID, dates, commentString",
             "1, i / 2, '2024-01-31 09:05:07', 'comment ' || i");
        Fill("Study_T", "StudyInstanceUID, PatientID, StudyDateTime", "'1.3.' || i, i / 10, '2024-01-31 09:05:07'");
        Fill("Series_T", "SeriesInstanceUID, Study_ID", "'1.4.' || i, i / 2");
        Fill("TemplateCard_T", "TCName, TCDicomId", "'layout ' || i, i");
        Fill("TemplateAttribute_T", "TemplateID, TANumberInTemplate, TASequence", "i / 20, i % 20, i % 20");
        Fill("ImageCard_T", "PatientID, ICName, ICDateCreated", "i / 5, 'card ' || i, '2024-01-31 09:05:07'");
        Fill("ImageAttribute_T", "ImageCardID, ImageBildId, IASequence", "i / 20, i, i % 20");
        Fill("ImageManipulation_T", "ImageAttributeID, SequenceNo", "i / 3, i % 3");
        Fill("StandardGroupName", "Name, TGId", "'group ' || i, i");
    }
};

TEST_F(QueryPlan, NoStatementReadsALargeTableWhole) {
    FillTables();
    const std::vector<Planned> planned = PlannedStatements();
    ASSERT_GT(planned.size(), 70U);
    for (const auto& [kind, statement] : planned) {
        const Plan plan = PlanOf(statement);
        if (kind == "small") continue;
        EXPECT_FALSE(plan.readsTable) << statement << "\n" << plan.text;
        if (kind == "ordered") EXPECT_FALSE(plan.sorts) << statement << "\n" << plan.text;
        if (kind == "covered") EXPECT_TRUE(plan.readsIndexOnly) << statement << "\n" << plan.text;
    }
}

}  // namespace
}  // namespace OXClass
