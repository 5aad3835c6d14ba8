#include "series/cStudy.h"

#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Runs one step of the save. Ignores the failure of a missing column, so that the save continues with the
/// next step, and raises any other.
template <class Step>
void UnlessColumnIsMissing(Step step) {
    try {
        step();
    } catch (const Error& failure) {
        if (failure.Number != ADODB::adErrItemNotFound) throw;
    }
}

}  // namespace

bool cStudy::loadStudy(String Study, const Ref<Connection>& Con) {
    return Prefixed("cStudy.loadStudy, ", [&] {
        const Ref<Recordset> rs =
            OpenPlain(Con, Contains(Study, ".")
                               ? sql("SELECT * FROM Study_T  ", " WHERE StudyInstanceUID ='", AsItStands(Study), "';")
                               : sql("SELECT * FROM Study_T  ", " WHERE study_id =", AsItStands(Study), ";"));
        const bool found = !rs->Eof();
        if (found) ReadRow(rs);
        rs->Close();
        return found;
    });
}

void cStudy::ReadRow(const Ref<Recordset>& rs) {
    accessionNumber = Required<String>(rs, "accessionNumber");
    dateTime = WholeSeconds(rs, "StudyDateTime");
    description = Required<String>(rs, "Studydesc");
    ID = Required<Long>(rs, "Study_ID");
    instanceUID = Required<String>(rs, "StudyInstanceUID");
    PatientID = Required<Long>(rs, "PatientID");
    referDrName = Required<String>(rs, "referDrName");
    const String identifier = TextOrEmpty(rs, "studyID");
    if (!identifier.empty()) studyID = identifier;
    PhysOfRecord = TextOrEmpty(rs, "PhysOfRecord");
}

bool cStudy::savestudy(const bool& CheckExistOnID, const Ref<Connection>& Con) {
    return Prefixed("cStudy.SaveStudy, ", [&] {
        const Ref<Recordset> rs = OpenUpdatable(
            Con, CheckExistOnID
                     ? sql("SELECT * FROM study_T WHERE study_id =", ID, ";")
                     : sql("SELECT * FROM study_T WHERE StudyInstanceUID = '", AsItStands(instanceUID), "';"));
        if (rs->Eof()) rs->AddNew();
        WriteRow(rs);
        rs->Update();
        UnlessColumnIsMissing([&] { ID = Required<Long>(rs, "Study_ID"); });
        if (ID == 0) MsgBox("fel");
        rs->Close();
        return true;
    });
}

void cStudy::WriteRow(const Ref<Recordset>& rs) const {
    constexpr Long descriptionWidth = 64, physiciansWidth = 255, identifierWidth = 16;
    const auto write = [&](std::string_view column, const Variant& value) {
        UnlessColumnIsMissing([&] { rs->Collect(column, value); });
    };
    write("accessionNumber", accessionNumber);
    write("StudyDateTime", Stamp(dateTime).text);
    write("Studydesc", Left(FixSqlString(description).Text(), descriptionWidth));
    write("StudyInstanceUID", instanceUID.empty() ? "TOM" : instanceUID);
    write("PhysOfRecord", FixSqlString(Left(Trim(PhysOfRecord), physiciansWidth)).Text());
    write("referDrName", referDrName);
    write("studyID", Left(FixSqlString(studyID).Text(), identifierWidth));
    if (PatientID != 0) write("PatientID", PatientID);
}

void cStudy::Delete(const Ref<Connection>& Con) {
    const Ref<Recordset> rs = OpenUpdatable(Con, sql("select * from Study_T where Study_T.Study_ID=", ID));
    if (rs->Eof() && rs->Bof()) return;
    rs->Delete(ADODB::adAffectCurrent);
    rs->Close();
}

const Interface& cStudy::Describe() const {
    static const Interface& self = InterfaceOf<cStudy>({
        PropertyGetFirst<&cStudy::Key>("Key", PutForm::ByReference),
        Property<&cStudy::location>("location"),
        Operation<&cStudy::loadStudy>("loadStudy", {"Study", "Con"}),
        Operation<&cStudy::savestudy>("savestudy", {"CheckExistOnID", "Con"}),
        Property<&cStudy::PatientID>("PatientID"),
        Property<&cStudy::referDrName>("referDrName"),
        Property<&cStudy::PhysOfRecord>("PhysOfRecord"),
        Property<&cStudy::accessionNumber>("accessionNumber"),
        Property<&cStudy::instanceUID>("instanceUID"),
        Property<&cStudy::description>("description"),
        Property<&cStudy::dateTime>("dateTime"),
        Property<&cStudy::studyID>("studyID"),
        Property<&cStudy::ID>("ID"),
        Operation<&cStudy::Delete>("Delete", {"Con"}),
    });
    return self;
}

}  // namespace OXClass
