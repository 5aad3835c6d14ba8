#include "console/trash/RemovedRows.h"

#include "console/Server.h"
#include "frame/Statement.h"

#include <algorithm>
#include <fmt/format.h>
#include <tuple>

namespace Console {
namespace {

using namespace OXClass;
using Json = nlohmann::ordered_json;
using Keys = std::set<Long>;
using NewKeys = std::map<std::string, std::map<Long, Long>>;

/// A table of rows that can be removed, with its key; in the order in which rows are stored again.
struct RemovedTable {
    const char *name, *key;
    const char* what;
    const char* identity;   ///< the column of what no two rows may have; empty if there is none
    bool optional = false;  ///< an older database may lack the table
};

constexpr RemovedTable Tables[] = {
    {"Patient_T", "patientid", "patient", "personnr_ch"},
    {"PatientIssuer_T", "", "issuer", "", true},
    {"Study_T", "study_id", "study", "studyinstanceuid"},
    {"Series_T", "series_id", "series", "seriesinstanceuid"},
    {"ImageBild_T", "imagebildid", "image", "sopinstanceuid_nvc"},
    {"ImportedImage_T", "", "imported image", "", true},
    {"ImageCard_T", "imagecardid", "card", ""},
    {"ImageAttribute_T", "imageattributeid", "placed image", ""},
    {"ImageManipulation_T", "imagemanipulationid", "manipulation", ""},
    {"Comments_T", "commentid", "comment", ""},
};

/// A column that names a row of another table.
struct Reference {
    const char *table, *column, *owner;
};

constexpr Reference References[] = {
    {"PatientIssuer_T", "patientid", "Patient_T"},
    {"Study_T", "patientid", "Patient_T"},
    {"Series_T", "study_id", "Study_T"},
    {"ImageBild_T", "patientid", "Patient_T"},
    {"ImageBild_T", "study_id", "Study_T"},
    {"ImageBild_T", "series_id", "Series_T"},
    {"ImportedImage_T", "imagebildid", "ImageBild_T"},
    {"ImageCard_T", "patientid", "Patient_T"},
    {"ImageAttribute_T", "imagecardid", "ImageCard_T"},
    {"ImageAttribute_T", "imagebildid", "ImageBild_T"},
    {"ImageManipulation_T", "imageattributeid", "ImageAttribute_T"},
    {"Comments_T", "objectid", "ImageBild_T"},
};

const RemovedTable& TableNamed(std::string_view name) {
    return *std::ranges::find_if(Tables, [&](const RemovedTable& table) { return name == table.name; });
}

/// Adds the keys of the rows whose column names one of `owners`. Returns true if that adds any.
bool AddKeys(const Ref<Connection>& con, Keys& keys, const char* key, const char* table, const char* column,
             const Keys& owners) {
    const std::size_t before = keys.size();
    EachList(owners, [&](const std::string& list) {
        const Ref<Recordset> rows = con->Execute(sql("SELECT ", Clause(key), " FROM ", Clause(table), " WHERE ",
                                                     Clause(column), " IN (", Clause(list), ")"));
        for (; !rows->Eof(); rows->MoveNext()) keys.insert(rows->Fields(0).As<Long>());
    });
    return keys.size() > before;
}

/// Returns the rows of `owner` that the removed rows of `table` name, and of which no other row of `table` is left.
Keys Emptied(const Ref<Connection>& con, const char* table, const char* key, const char* column, const Keys& removed) {
    Keys owners, kept;
    AddKeys(con, owners, column, table, key, removed);
    owners.erase(0);
    EachList(owners, [&](const std::string& list) {
        const Ref<Recordset> rows =
            con->Execute(sql("SELECT ", Clause(column), ", ", Clause(key), " FROM ", Clause(table), " WHERE ",
                             Clause(column), " IN (", Clause(list), ")"));
        for (; !rows->Eof(); rows->MoveNext())
            if (!removed.contains(rows->Fields(1).As<Long>())) kept.insert(rows->Fields(0).As<Long>());
    });
    std::erase_if(owners, [&](Long owner) { return kept.contains(owner); });
    return owners;
}

/// Returns the conditions of the rows that are removed, by tables.
std::vector<std::pair<std::string, std::string>> ConditionsOf(const Ref<Connection>& con, const RemovedKeys& keys) {
    std::vector<std::pair<std::string, std::string>> conditions;
    const auto add = [&](const char* table, const char* column, const Keys& of) {
        if (TableNamed(table).optional && !of.empty() && !HasTable(con, table)) return;
        EachList(of, [&](const std::string& list) {
            conditions.emplace_back(table, fmt::format("{} IN ({})", column, list));
        });
    };
    add("Patient_T", "PatientID", keys.patients);
    add("PatientIssuer_T", "PatientID", keys.patients);
    add("Study_T", "Study_ID", keys.studies);
    add("Series_T", "Series_ID", keys.series);
    add("ImportedImage_T", "ImageBildID", keys.images);
    add("ImageBild_T", "ImageBildID", keys.images);
    add("ImageCard_T", "ImageCardID", keys.cards);
    add("ImageManipulation_T", "ImageAttributeID", keys.placed);
    add("ImageAttribute_T", "ImageAttributeID", keys.placed);
    add("Comments_T", "CommentID", keys.comments);
    return conditions;
}

Json RowAsJson(const Ref<Recordset>& row) {
    Json recorded;
    for (Long i = 0; i < row->FieldCount(); ++i) {
        const ADODB::Field field = row->Fields(i);
        const Variant value = field.Value();
        recorded[LCase(field.Name())] =
            value.Is<Date>() ? Json(FormatDate(value.As<Date>(), "yyyy-mm-dd hh:nn:ss")) : AsJson(value);
    }
    return recorded;
}

std::string SqlOf(const Json& value) {
    if (value.is_null()) return "NULL";
    if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
    if (value.is_string()) return sql("'", FixSqlString(value.get<std::string>()), "'");
    return value.is_number_float() ? fmt::format("{}", value.get<double>()) : value.dump();
}

/// Returns a whole number of a recorded row; 0 for any other value.
Long NumberIn(const Json& row, const char* column) {
    const auto value = row.find(column);
    return value != row.end() && value->is_number_integer() ? value->get<Long>() : 0;
}

Keys Existing(const Ref<Connection>& con, const RemovedTable& table, const Keys& keys) {
    Keys existing;
    AddKeys(con, existing, table.key, table.name, table.key, keys);
    return existing;
}

/// One storing of recorded rows.
class Insertion {
public:
    Insertion(const Ref<Connection>& con, Json& rows, std::vector<std::string>& notes)
        : con_(con), rows_(rows), notes_(notes) {}

    NewKeys Run() {
        for (const RemovedTable& table : Tables) RefuseSame(table);
        for (const Reference& reference : References) RequireOwners(reference);
        RequireSamePatients();
        for (const RemovedTable& table : Tables) ChooseKeys(table);
        for (const Reference& reference : References) Rename(reference);
        ReplaceClaims();
        for (const RemovedTable& table : Tables) Insert(table);
        return std::move(newKeys_);
    }

private:
    Json& Rows(const char* table) { return rows_[table]; }

    /// Throws for a patient, study, series or image that is in the database as another row.
    void RefuseSame(const RemovedTable& table) {
        if (!*table.identity) return;
        for (const Json& row : Rows(table.name)) {
            const auto identity = row.find(table.identity);
            if (identity == row.end() || !identity->is_string() || identity->get<std::string>().empty()) continue;
            const std::string text = identity->get<std::string>();
            if (text == "TOM") continue;  // a study without a UID
            const Ref<Recordset> same =
                con_->Execute(sql("SELECT ", Clause(table.key), " FROM ", Clause(table.name), " WHERE ",
                                  Clause(table.identity), " = '", FixSqlString(text), "'"));
            if (same->Eof()) continue;
            throw UserError(fmt::format("{0} {1} is in the database already, as {0} {2}; nothing was restored",
                                        table.what, text, same->Fields(0).As<Long>()));
        }
    }

    /// Throws for rows whose owner is gone; leaves out placed images and their manipulations.
    void RequireOwners(const Reference& reference) {
        const RemovedTable& owner = TableNamed(reference.owner);
        Keys missing = NumbersIn(rows_, reference.table, reference.column);
        for (const Long key : NumbersIn(rows_, owner.name, owner.key)) missing.erase(key);
        for (const Long key : Existing(con_, owner, missing)) missing.erase(key);
        if (missing.empty()) return;
        const RemovedTable& table = TableNamed(reference.table);
        const bool leftOut = reference.table == std::string_view("ImageAttribute_T") ||
                             reference.table == std::string_view("ImageManipulation_T");
        if (!leftOut)
            throw UserError(
                fmt::format("{} {}, to which the {} belongs, isn't in the database any more; restore it "
                            "first, see: oxclass trash list",
                            owner.what, *missing.begin(), table.what));
        std::erase_if(Rows(table.name).get_ref<Json::array_t&>(), [&](const Json& row) {
            const Long key = NumberIn(row, reference.column);
            if (!missing.contains(key)) return false;
            notes_.push_back(fmt::format("{} {} is left out: {} {} isn't in the database any more", table.what,
                                         NumberIn(row, table.key), owner.what, key));
            return true;
        });
    }

    /// Returns the number in a column of a row, which is among the restored rows or in the database; 0 if neither has
    /// it.
    Long NumberOfRow(const char* table, Long key, const char* column) {
        const RemovedTable& described = TableNamed(table);
        const auto [known, isNew] = numbers_.try_emplace({table, key, column});
        if (!isNew) return known->second;
        for (const Json& row : Rows(table))
            if (NumberIn(row, described.key) == key) return known->second = NumberIn(row, column);
        const Ref<Recordset> row = con_->Execute(
            sql("SELECT ", Clause(column), " FROM ", Clause(table), " WHERE ", Clause(described.key), " = ", key));
        const bool none = row->Eof() || row->Fields(0).IsNull();
        return known->second = none ? 0 : row->Fields(0).As<Long>();
    }

    /// Throws for an image whose study or series was given to another patient or study meanwhile; tells of a placed
    /// image that is another patient's by now.
    void RequireSamePatients() {
        for (const Json& row : Rows("ImageBild_T")) {
            const Long image = NumberIn(row, "imagebildid"), patient = NumberIn(row, "patientid");
            const Long study = NumberIn(row, "study_id"), series = NumberIn(row, "series_id");
            const Long owner = NumberOfRow("Study_T", study, "patientid");
            const Long studyOfSeries = NumberOfRow("Series_T", series, "study_id");
            if (owner != 0 && patient != 0 && owner != patient)
                throw UserError(
                    fmt::format("image {} is of patient #{}, and its study {} belongs to patient #{} by now; "
                                "nothing was restored. Move the study back first",
                                image, patient, study, owner));
            if (studyOfSeries != 0 && study != 0 && studyOfSeries != study)
                throw UserError(
                    fmt::format("image {} is of study {}, and its series {} belongs to study {} by now; "
                                "nothing was restored. Move the series back first",
                                image, study, series, studyOfSeries));
        }
        for (const Json& row : Rows("ImageAttribute_T")) {
            const Long image = NumberIn(row, "imagebildid");
            const Long ofCard = NumberOfRow("ImageCard_T", NumberIn(row, "imagecardid"), "patientid");
            const Long ofImage = NumberOfRow("ImageBild_T", image, "patientid");
            if (ofCard != 0 && ofImage != 0 && ofCard != ofImage)
                notes_.push_back(
                    fmt::format("the card of patient #{} shows image {} of patient #{}", ofCard, image, ofImage));
        }
    }

    void ChooseKeys(const RemovedTable& table) {
        if (!*table.key) return;
        const Keys keys = NumbersIn(rows_, table.name, table.key), taken = Existing(con_, table, keys);
        auto& chosen = newKeys_[table.name];
        Long next = taken.empty() ? 0 : GreatestKey(table, keys);
        for (const Long key : keys) chosen[key] = taken.contains(key) ? ++next : key;
        for (Json& row : Rows(table.name)) row[table.key] = chosen.at(NumberIn(row, table.key));
    }

    Long GreatestKey(const RemovedTable& table, const Keys& keys) const {
        const Long stored =
            con_->Execute(sql("SELECT max(", Clause(table.key), ") FROM ", Clause(table.name)))->Fields(0).As<Long>();
        return std::max(stored, *keys.rbegin());
    }

    void Rename(const Reference& reference) {
        const auto& chosen = newKeys_[reference.owner];
        for (Json& row : Rows(reference.table)) {
            const auto found = chosen.find(NumberIn(row, reference.column));
            if (found != chosen.end()) row[reference.column] = found->second;
        }
    }

    /// Deletes rows without a meaning whose keys the restored rows have: the image or the patient of them is gone.
    void ReplaceClaims() {
        if (!HasTable(con_, "ImportedImage_T")) Rows("ImportedImage_T") = Json::array();
        for (const Json& row : Rows("ImportedImage_T"))
            con_->Execute("DELETE FROM ImportedImage_T WHERE SOPInstanceUID = " + SqlOf(row.at("sopinstanceuid")));
        for (const Json& row : Rows("PatientIssuer_T"))
            con_->Execute("DELETE FROM PatientIssuer_T WHERE PatientID = " + SqlOf(row.at("patientid")));
    }

    void Insert(const RemovedTable& table) {
        for (const Json& row : Rows(table.name)) {
            std::vector<std::string> names, values;
            for (const auto& [name, value] : row.items()) {
                names.push_back(name);
                values.push_back(SqlOf(value));
            }
            con_->Execute(fmt::format("INSERT INTO {} ({}) VALUES ({})", table.name, fmt::join(names, ", "),
                                      fmt::join(values, ", ")));
        }
        if (*table.key && !Rows(table.name).empty()) RaiseCounter(con_, table.name, table.key);
    }

    const Ref<Connection>& con_;
    Json& rows_;
    std::vector<std::string>& notes_;
    NewKeys newKeys_;
    std::map<std::tuple<std::string, Long, std::string>, Long> numbers_;  // of `NumberOfRow`
};

}  // namespace

void AddWhatBelongs(const Ref<Connection>& con, RemovedKeys& keys) {
    AddKeys(con, keys.studies, "Study_ID", "Study_T", "PatientID", keys.patients);
    AddKeys(con, keys.series, "Series_ID", "Series_T", "Study_ID", keys.studies);
    AddKeys(con, keys.images, "ImageBildID", "ImageBild_T", "PatientID", keys.patients);
    AddKeys(con, keys.images, "ImageBildID", "ImageBild_T", "Study_ID", keys.studies);
    AddKeys(con, keys.images, "ImageBildID", "ImageBild_T", "Series_ID", keys.series);
    AddKeys(con, keys.cards, "ImageCardID", "ImageCard_T", "PatientID", keys.patients);
    keys.series.merge(Emptied(con, "ImageBild_T", "ImageBildID", "Series_ID", keys.images));
    Keys studies = Emptied(con, "Series_T", "Series_ID", "Study_ID", keys.series);
    Keys left;
    for (const Long study : studies) {
        Keys images;
        AddKeys(con, images, "ImageBildID", "ImageBild_T", "Study_ID", {study});
        if (!std::ranges::includes(keys.images, images)) left.insert(study);
    }
    for (const Long study : studies)
        if (!left.contains(study)) keys.studies.insert(study);
    AddKeys(con, keys.placed, "ImageAttributeID", "ImageAttribute_T", "ImageCardID", keys.cards);
    EachList(keys.images, [&](const std::string& list) {
        const Ref<Recordset> rows = con->Execute(
            sql("SELECT CommentID FROM Comments_T WHERE tabelID = 1 AND objectID IN (", Clause(list), ")"));
        for (; !rows->Eof(); rows->MoveNext()) keys.comments.insert(rows->Fields(0).As<Long>());
    });
}

std::map<Long, std::set<Long>> CardsThatShow(const Ref<Connection>& con, const RemovedKeys& keys) {
    std::map<Long, std::set<Long>> cards;
    EachList(keys.images, [&](const std::string& list) {
        const Ref<Recordset> rows = con->Execute(sql(
            "SELECT ImageCardID, ImageAttributeID FROM ImageAttribute_T WHERE ImageBildId IN (", Clause(list), ")"));
        for (; !rows->Eof(); rows->MoveNext()) {
            const Long card = rows->Fields(0).As<Long>();
            if (!keys.cards.contains(card)) cards[card].insert(rows->Fields(1).As<Long>());
        }
    });
    return cards;
}

Json RowsOf(const Ref<Connection>& con, const RemovedKeys& keys) {
    Json rows;
    for (const RemovedTable& table : Tables) rows[table.name] = Json::array();
    for (const auto& [table, condition] : ConditionsOf(con, keys)) {
        const Ref<Recordset> read = con->Execute(fmt::format("SELECT * FROM {} WHERE {}", table, condition));
        for (; !read->Eof(); read->MoveNext()) rows[table].push_back(RowAsJson(read));
    }
    return rows;
}

void DeleteRows(const Ref<Connection>& con, const RemovedKeys& keys) {
    for (const auto& [table, condition] : ConditionsOf(con, keys))
        con->Execute(fmt::format("DELETE FROM {} WHERE {}", table, condition));
}

void CountImages(const Ref<Connection>& con, const std::set<Long>& series) {
    EachList(series, [&](const std::string& list) {
        con->Execute(
            sql("UPDATE Series_T SET NumberOfImages = (SELECT count(*) FROM ImageBild_T WHERE "
                "ImageBild_T.Series_ID = Series_T.Series_ID) WHERE Series_ID IN (",
                Clause(list), ")"));
    });
}

std::set<Long> NumbersIn(const Json& rows, const char* table, const char* column) {
    std::set<Long> numbers;
    const auto found = rows.find(table);
    if (found == rows.end()) return numbers;
    for (const Json& row : *found) numbers.insert(NumberIn(row, column));
    numbers.erase(0);
    return numbers;
}

NewKeys InsertRows(const Ref<Connection>& con, Json rows, std::vector<std::string>& notes) {
    return Insertion(con, rows, notes).Run();
}

}  // namespace Console
