#include "series/cStudy.h"

#include "frame/Help.h"
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
                               ? sql("SELECT * FROM Study_T  ", " WHERE StudyInstanceUID ='", Verbatim(Study), "';")
                               : sql("SELECT * FROM Study_T  ", " WHERE study_id =", Verbatim(Study), ";"));
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
            Con, CheckExistOnID ? sql("SELECT * FROM study_T WHERE study_id =", ID, ";")
                                : sql("SELECT * FROM study_T WHERE StudyInstanceUID = '", Verbatim(instanceUID), "';"));
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
    static const Interface& self = InterfaceOf<cStudy>(
        "A DICOM study of a patient.",
        {
            PropertyGetFirst<&cStudy::Key>("Key", "The key of the study in a collection of the client; not stored.",
                                           PutForm::ByReference),
            Property<&cStudy::location>(
                "location", "Where the images of the study are: local, on a DICOM server, or both; not stored."),
            Operation<&cStudy::loadStudy>(
                "loadStudy", "Loads a study. Returns false if there is none and changes nothing then.",
                {{"Study", "The study instance UID, or a text without a point: the key in decimal."},
                 {"Con", Help::Connection}}),
            Operation<&cStudy::savestudy>(
                "savestudy", "Updates the row of the study, or inserts one if none is found. Returns true.",
                {{"CheckExistOnID", "True searches the row by ID, false by instanceUID."}, {"Con", Help::Connection}}),
            Property<&cStudy::PatientID>("PatientID", "The key of the patient; a save does not write 0."),
            Property<&cStudy::referDrName>("referDrName", "The name of the referring doctor, at most 255 characters."),
            Property<&cStudy::PhysOfRecord>(
                "PhysOfRecord", "The names of the physicians of record, of which 255 characters are stored."),
            Property<&cStudy::accessionNumber>("accessionNumber", "The DICOM accession number, at most 64 characters."),
            Property<&cStudy::instanceUID>("instanceUID",
                                           "The DICOM study instance UID; an empty one is stored as the text TOM."),
            Property<&cStudy::description>("description",
                                           "The description; 64 characters are stored, a single quote counts as two."),
            Property<&cStudy::dateTime>("dateTime", "The date and time of the study, in whole seconds."),
            Property<&cStudy::studyID>(
                "studyID",
                "The DICOM study identifier, not the key; 16 characters are stored, a single quote counts as two."),
            Property<&cStudy::ID>("ID", "The key of the study in the database; 0 if the study is not stored."),
            Operation<&cStudy::Delete>("Delete",
                                       "Deletes the row of the study; its series and images stay in the database.",
                                       {{"Con", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
