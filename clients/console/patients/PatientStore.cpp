#include "console/patients/PatientStore.h"

#include "Schema.h"
#include "console/Commands.h"
#include "console/Server.h"
#include "frame/Statement.h"
#include "people/cDoctors.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

constexpr Long IdentifierWidth = 64, OtherIDsWidth = 255;

/// Returns the one letter of a sex that programs of the suite agree on; empty for any other text.
std::string SexLetter(const std::string& text) {
    const std::string letter = UCase(Left(Trim(text), 1));
    return letter == "M" || letter == "F" || letter == "O" ? letter : "";
}

std::vector<NameWriting> WritingsOf(const std::string& name) {
    std::vector<NameWriting> writings;
    for (const String& writing : SplitIgnoringCase(name, "=")) {
        const PersonName parts = SplitPersonName(writing);
        if (!parts.family.empty() || !parts.given.empty()) writings.push_back({parts.family, parts.given});
    }
    return writings;
}

/// Rows of a table that an older database may lack count as none.
Ref<Recordset> RowsIfAny(const Ref<Connection>& con, const String& statement) {
    try {
        Ref<Recordset> rows = con->Execute(statement);
        return rows->Eof() ? nullptr : rows;
    } catch (const Error& failure) {
        if (failure.Number == ADODB::NoTable) return nullptr;
        throw;
    }
}

std::string IssuerOf(const Ref<Connection>& con, Long patient) {
    const auto rows = RowsIfAny(con, sql("SELECT Issuer FROM PatientIssuer_T WHERE PatientID = ", patient));
    if (!rows || rows->Fields(0).IsNull()) return {};
    return rows->Fields(0).As<String>();
}

Long RowsWithID(const Ref<Connection>& con, const std::string& id) {
    return con->Execute(sql("SELECT count(*) FROM Patient_T WHERE PersonNr_CH = '", UCase(FixSqlString(id)), "'"))
        ->Fields(0)
        .As<Long>();
}

void SetIdentifier(const Ref<Connection>& con, Long number, const std::string& id) {
    con->Execute(sql("UPDATE Patient_T SET PersonNr_CH = '", FixSqlString(id), "' WHERE PatientID = ", number));
}

/// Inserts a patient even if others have the same identifier; `cPatient::Save` would update those.
void InsertBesideOthers(const Ref<Connection>& con, cPatient& patient) {
    const std::string id = patient.PatientID;
    patient.PatientID = New<cDoctors>()->GetGUID();
    patient.Save(con);
    patient.PatientID = id;
    SetIdentifier(con, patient.ID, UCase(id));
}

bool HasOtherID(const cPatient& patient, const std::string& identifier) {
    for (const cStringItem& item : *patient.OtherIDs)
        if (EqualsIgnoringCase(item.str, identifier)) return true;
    return false;
}

/// A text column of Patient_T and its member.
struct TextColumn {
    const char* name;
    String cPatient::*text;
};

constexpr TextColumn TextColumns[] = {
    {"FirstName_NVC", &cPatient::FirstName},
    {"LastName_NVC", &cPatient::LastName},
    {"Sex_CH", &cPatient::Sex},
    {"Address_NVC", &cPatient::Address},
    {"TelOne_NVC", &cPatient::TelOne},
    {"TelTwo_NVC", &cPatient::TelTwo},
    {"TelMobile_NVC", &cPatient::TelMobile},
    {"Email_adress", &cPatient::EMail},
    {"Comments_NVC", &cPatient::Comments},
    {"IDImg", &cPatient::IDImg},
};

String DateColumn(Date date) { return date.Days == 0 ? String() : FormatDate(date, "yyyy-mm-dd"); }

/// "Sex_CH = 'F', ..." with the columns whose values differ.
std::string Changes(const cPatient& stored, const cPatient& wanted) {
    std::vector<std::string> changes;
    const auto text = [&](const char* column, const String& before, const String& after) {
        if (before != after) changes.push_back(sql(Clause(column), " = '", FixSqlString(after), "'"));
    };
    for (const TextColumn& column : TextColumns) text(column.name, stored.*column.text, wanted.*column.text);
    text("Birthdate_CH", DateColumn(stored.BirthDate), DateColumn(wanted.BirthDate));
    text("PrevXrayDate_CH", DateColumn(stored.PrevXrayDate), DateColumn(wanted.PrevXrayDate));
    text("OtherIDs", stored.OtherIDs->GetAllAsString(), wanted.OtherIDs->GetAllAsString());
    if (stored.RespDoctor != wanted.RespDoctor) changes.push_back(sql("RespDoctor = ", wanted.RespDoctor));
    return fmt::format("{}", fmt::join(changes, ", "));
}

void UpdateRow(const Ref<Connection>& con, const cPatient& patient) {
    const Ref<cPatient> stored = PatientOfRow(con, patient.ID);
    if (!stored) throw UserError(fmt::format("patient #{} was removed by another program meanwhile", patient.ID));
    const std::string changes = Changes(*stored, patient);
    if (!changes.empty())
        con->Execute(sql("UPDATE Patient_T SET ", Clause(changes), " WHERE PatientID = ", patient.ID));
}

/// Writes a column that is null or blank. Returns false and changes nothing for any other.
bool FillColumn(const Ref<Connection>& con, Long patient, const char* column, const std::string& text) {
    Long affected = 0;
    con->Execute(sql("UPDATE Patient_T SET ", Clause(column), " = '", FixSqlString(text),
                     "' WHERE PatientID = ", patient, " AND trim(coalesce(", Clause(column), ", '')) = ''"),
                 &affected);
    return affected > 0;
}

/// Stores one property of an identity where the row lacks it. Returns what was stored, "sex F", or an empty text.
std::string FillField(const Ref<Connection>& con, const PatientIdentity& person, IdentityField field) {
    const auto patient = static_cast<Long>(person.number);
    const auto fill = [&](const char* column, const std::string& text, const std::string& stored) {
        return FillColumn(con, patient, column, text) ? stored : std::string();
    };
    switch (field) {
        case IdentityField::Issuer: StoreIssuer(con, patient, person.issuer); return "issuer " + person.issuer;
        case IdentityField::Name:
            FillColumn(con, patient, "LastName_NVC", person.names.front().family);
            FillColumn(con, patient, "FirstName_NVC", person.names.front().given);
            return "name " + person.Name();
        case IdentityField::BirthDate:
            return fill("Birthdate_CH", DateColumn(person.birthDate), "birth date " + DateText(person.birthDate));
        default: return fill("Sex_CH", person.sex, "sex " + person.sex);
    }
}

}  // namespace

std::string ShortName(const PatientIdentity& person) {
    return fmt::format("#{} {}, born {}", person.number, person.Name(),
                       person.birthDate.Days == 0 ? "?" : DateText(person.birthDate));
}

PatientIdentity IdentityOf(const RadiographFile& file) {
    return {.patientID = file.patientID,
            .issuer = file.issuer,
            .names = WritingsOf(file.patientName),
            .birthDate = ParseDate(file.birthDate).value_or(Date{}),
            .sex = SexLetter(file.sex)};
}

PatientIdentity IdentityOf(const Ref<Connection>& con, const cPatient& patient) {
    return {.number = patient.ID,
            .patientID = patient.PatientID,
            .issuer = IssuerOf(con, patient.ID),
            .names = {{patient.LastName, patient.FirstName}},
            .birthDate = patient.BirthDate,
            .sex = SexLetter(patient.Sex)};
}

PatientIdentity ComparableIdentityOf(const Ref<Connection>& con, const cPatient& patient) {
    PatientIdentity identity = IdentityOf(con, patient);
    const bool noDate = !patient.LoadCompletion().Complete();
    const bool noSex = identity.sex.empty() && !Trim(patient.Sex).empty();
    if (noDate || noSex)
        throw UserError(fmt::format(
            "patient {} can't be compared with a file: column {} of its row can't be read; correct it "
            "with: oxclass patient '#{}' {}=...",
            ShortName(identity), noDate ? "Birthdate_CH" : "Sex_CH", patient.ID, noDate ? "BirthDate" : "Sex"));
    return identity;
}

Ref<cPatient> PatientOfRow(const Ref<Connection>& con, Long number) {
    Ref<cPatient> patient = New<cPatient>();
    bool found = false;
    WithoutTextBoxes([&] { found = patient->LoadOnPatientIDorPDBID(con, String(), number) != 0; });
    const Completion& load = patient->LoadCompletion();
    if (found || load.Complete()) return found ? patient : nullptr;
    if (load.Failure().Column.empty()) throw Error(load.Failure());
    throw UserError(fmt::format("patient #{} can't be read: correct its column {} in the database ({})", number,
                                load.Failure().Column, load.Failure().Description));
}

std::vector<Ref<cPatient>> PatientsWithID(const Ref<Connection>& con, const std::string& id) {
    std::vector<Long> numbers;
    const Ref<Recordset> rows = con->Execute(
        sql("SELECT PatientID FROM Patient_T WHERE PersonNr_CH = '", UCase(FixSqlString(id)), "' ORDER BY PatientID"));
    for (; !rows->Eof(); rows->MoveNext()) numbers.push_back(rows->Fields(0).As<Long>());
    std::vector<Ref<cPatient>> patients;
    for (const Long number : numbers)
        if (auto patient = PatientOfRow(con, number)) patients.push_back(std::move(patient));
    return patients;
}

namespace {

/// Returns the patients who have an identifier among their other ones, as after a merge.
std::vector<Ref<cPatient>> PatientsWithOtherID(const Ref<Connection>& con, const std::string& id) {
    std::vector<Ref<cPatient>> patients;
    if (Trim(id).empty()) return patients;
    const Ref<Recordset> rows = con->Execute(
        sql("SELECT PatientID FROM Patient_T WHERE OtherIDs LIKE '%", FixSqlString(Trim(id)), "%' ORDER BY PatientID"));
    for (; !rows->Eof(); rows->MoveNext()) {
        const auto patient = PatientOfRow(con, rows->Fields(0).As<Long>());
        if (patient && HasIdentifier(*patient, id)) patients.push_back(patient);
    }
    return patients;
}

}  // namespace

bool HasIdentifier(const cPatient& patient, const std::string& id) {
    if (EqualsIgnoringCase(patient.PatientID, Trim(id))) return true;
    for (const cStringItem& other : *patient.OtherIDs)
        if (EqualsIgnoringCase(Trim(other.str), Trim(id))) return true;
    return false;
}

PatientMatch MatchPatient(const Ref<Connection>& con, const PatientIdentity& person) {
    PatientMatch match;
    std::vector<Ref<cPatient>> patients = PatientsWithID(con, person.patientID);
    const bool byOtherID = patients.empty();
    if (byOtherID) patients = PatientsWithOtherID(con, person.patientID);
    std::vector<PatientIdentity> fitting;
    for (const auto& patient : patients) {
        PatientIdentity stored = ComparableIdentityOf(con, *patient);
        const bool idIsEnough = !byOtherID && patients.size() == 1 && SameIssuer(stored, person);
        const bool contradicts = !Contradictions(stored, person).empty();
        const bool fits = idIsEnough ? !contradicts : Confirms(stored, person);
        match.contradicted = match.contradicted || contradicts;
        (fits ? fitting : match.refused).push_back(std::move(stored));
    }
    if (fitting.size() == 1)
        match.number = static_cast<Long>(fitting.front().number);
    else
        std::ranges::move(fitting, std::back_inserter(match.refused));
    return match;
}

void RequireStorable(const cPatient& patient) {
    const String others = patient.OtherIDs->GetAllAsString();
    if (Trim(patient.PatientID).empty()) throw UserError("a patient needs an ID");
    if (Contains(patient.Sex + others, "'"))
        throw UserError("Sex and OtherIDs can't hold a single quote; leave it out");
    if (Len(others) > OtherIDsWidth)
        throw UserError(
            fmt::format("the other identifiers have more than {} "
                        "characters in all; set fewer with: oxclass "
                        "patient ID OtherIDs=A\\B",
                        OtherIDsWidth));
    if (Len(patient.PatientID) > IdentifierWidth)
        throw UserError(fmt::format("a patient ID has at most {} characters", IdentifierWidth));
}

std::vector<std::string> AddOtherIDs(cPatient& patient, const std::vector<std::string>& identifiers) {
    std::vector<std::string> left;
    Long place = 0;
    for (const std::string& identifier : identifiers) {
        String other = UCase(Trim(WithoutQuotes(identifier)));
        if (other.empty() || EqualsIgnoringCase(other, patient.PatientID) || HasOtherID(patient, other)) continue;
        const Long length = patient.OtherIDs->TotalLengthWithDelimiter();
        if (length + (length > 0 ? 1 : 0) + Len(other) > OtherIDsWidth) {
            left.push_back(identifier);
            continue;
        }
        while (patient.OtherIDs->Members().HasKey("K" + CStr(place))) ++place;
        patient.OtherIDs->Add(other, place, "K" + CStr(place));
    }
    return left;
}

void SavePatient(const Ref<Connection>& con, cPatient& patient) {
    RequireStorable(patient);
    if (patient.ID != 0) return UpdateRow(con, patient);
    if (RowsWithID(con, patient.PatientID) > 0) return InsertBesideOthers(con, patient);
    patient.Save(con);
}

std::string FillPatient(const Ref<Connection>& con, const PatientIdentity& stored, const PatientIdentity& said,
                        const char* source) {
    PatientIdentity filled = stored;
    std::vector<std::string> added;
    for (const IdentityField field : Complete(filled, said))
        if (std::string told = FillField(con, filled, field); !told.empty()) added.push_back(std::move(told));
    if (added.empty()) return {};
    return fmt::format("patient #{} {}: {} added from {}", stored.number, filled.Name(), fmt::join(added, ", "),
                       source);
}

void ChangePatientID(const Ref<Connection>& con, cPatient& patient, const std::string& id) {
    if (EqualsIgnoringCase(Trim(id), patient.PatientID)) return;
    if (RowsWithID(con, Trim(id)) > 0)
        throw UserError(fmt::format("another patient has the ID {} already; see: oxclass patients", id));
    patient.PatientID = UCase(Trim(id));
    RequireStorable(patient);
    SetIdentifier(con, patient.ID, patient.PatientID);
}

void StoreIssuer(const Ref<Connection>& con, Long patient, const std::string& issuer) {
    const std::string text = Trim(issuer);
    if (text.empty()) return;
    CreateProgramTables(con);
    con->Execute(sql("DELETE FROM PatientIssuer_T WHERE PatientID = ", patient));
    con->Execute(
        sql("INSERT INTO PatientIssuer_T (PatientID, Issuer) VALUES (", patient, ", '", FixSqlString(text), "')"));
}

void ForgetIssuer(const Ref<Connection>& con, Long patient) {
    CreateProgramTables(con);
    con->Execute(sql("DELETE FROM PatientIssuer_T WHERE PatientID = ", patient));
}

void CreateProgramTables(const Ref<Connection>& con) {
    // A user of a server may often not create tables, even if they exist.
    if (IsServer(con) && HasProgramTables(con)) return;
    if (EngineOf(con) == Engine::MariaDB)
        throw UserError(
            "the database lacks tables of the program, and the user may not create them; run any command once as a "
            "user who may");
    RunScript(con, schema::program_sql);
}

void WithUniqueID(const Ref<Connection>& con, const cPatient& patient,
                  const std::function<void(const std::string& id)>& work) {
    const Long number = patient.ID;
    const Ref<Recordset> row = con->Execute(sql("SELECT PersonNr_CH FROM Patient_T WHERE PatientID = ", number));
    if (row->Eof()) throw UserError(fmt::format("there is no patient #{}; see: oxclass patients", number));
    const ADODB::Field stored = row->Fields(0);
    const std::string own = stored.IsNull() ? String() : stored.As<String>();
    if (!Trim(own).empty() && RowsWithID(con, own) == 1) return work(UCase(own));
    const std::string unique = New<cDoctors>()->GetGUID();
    SetIdentifier(con, number, unique);
    work(unique);
    SetIdentifier(con, number, own);
}

}  // namespace Console
