#include "people/cPatient.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns a date as its text column stores it: the empty text for the date 0.
String DateColumn(Date date) { return date.Days == 0 ? String() : FormatDate(date, "YYYY-MM-DD"); }

/// Returns the failure that reports a text that isn't a date, which the load reads as the date 0.
Error NoDate(const char* column) {
    Error failure(err::TypeMismatch, cPatient::ClassName, DescriptionOf(err::TypeMismatch));
    failure.Column = column;
    return failure;
}

}  // namespace

Long cPatient::LoadOnPatientID(const String&) { return 0; }

Long cPatient::LoadOnPatientIDorPDBID(Ref<Connection> Con, const String& sPatientID, const Long& PDBID) {
    loadCompletion_.Begin();
    return Boxed(
        [&]() -> Long {
            const Ref<Recordset> rs = OpenClient(
                Con, sPatientID.empty()
                         ? sql("SELECT * FROM Patient_T WHERE PatientID = ", PDBID)
                         : sql("SELECT * FROM Patient_T WHERE PersonNr_CH = '", UCase(FixSqlString(sPatientID)), "'"));
            if (rs->Eof()) return 0;
            ReadRow(rs);
            return 1;
        },
        [&](const Error& e) {
            loadCompletion_.EndedBy(e);
            return "OXClass.LoadOnPatientIDorpdbid error: " + CStr(e.Number) + " " + e.Description;
        });
}

void cPatient::ReadRow(const Ref<Recordset>& rs) {
    ID = Required<Long>(rs, "PatientId");
    FirstName = TextOrEmpty(rs, "FirstName_NVC");
    LastName = TextOrEmpty(rs, "LastName_NVC");
    PatientID = UCase(Trim(TextOrEmpty(rs, "PersonNr_CH")));
    const String birth = Trim(TextOrEmpty(rs, "Birthdate_CH"));
    const bool born = IsDate(birth);
    BirthDate = born ? CDate(birth) : Date{};
    Sex = TextOrEmpty(rs, "Sex_CH");
    Address = TextOrEmpty(rs, "Address_NVC");
    TelOne = TextOrEmpty(rs, "TelOne_NVC");
    TelTwo = TextOrEmpty(rs, "TelTwo_NVC");
    TelMobile = TextOrEmpty(rs, "TelMobile_NVC");
    EMail = TextOrEmpty(rs, "Email_adress");
    Comments = TextOrEmpty(rs, "Comments_NVC");
    IDImg = TextOrEmpty(rs, "IDImg");
    OtherIDs->FillFromString(TextOrEmpty(rs, "OtherIDs"));
    RespDoctor = Nz<Long>(rs, "RespDoctor");
    const bool xrayed = !Trim(TextOrEmpty(rs, "PrevXrayDate_CH")).empty();
    PrevXrayDate = xrayed ? Required<Date>(rs, "PrevXrayDate_CH") : Date{};
    if (!born && !birth.empty()) loadCompletion_.EndedBy(NoDate("Birthdate_CH"));
}

String cPatient::OtherIDsColumn() const {
    constexpr Long width = 255;
    return Left(OtherIDs->GetAllAsString(), width);
}

String cPatient::UpdateStatement(const String& birth, const String& previous) const {
    return sql("Update Patient_T ", "Set Firstname_NVC='", FixSqlString(FirstName), "',", "LastName_NVC='",
               FixSqlString(LastName), "',", "Birthdate_CH='", Verbatim(birth), "',", "PrevXrayDate_CH='",
               Verbatim(previous), "',", "Address_NVC='", FixSqlString(Address), "',", "TelOne_NVC='",
               FixSqlString(TelOne), "',", "TelTwo_NVC='", FixSqlString(TelTwo), "',", "TelMobile_NVC ='",
               FixSqlString(TelMobile), "',", "email_adress='", FixSqlString(EMail), "',", "Comments_NVC='",
               FixSqlString(Comments), "',", "IDImg='", FixSqlString(IDImg), "',", "OtherIDs='",
               Verbatim(OtherIDsColumn()), "',", "Sex_CH='", Verbatim(Sex), "', ", "RespDoctor=", RespDoctor, " ",
               "Where ", "PersonNr_CH ='", FixSqlString(UCase(PatientID)), "'");
}

String cPatient::InsertStatement(const String& birth, const String& previous) const {
    return sql("INSERT INTO Patient_T ",
               "(PersonNr_CH, Birthdate_CH, Firstname_NVC, LastName_NVC, Sex_CH, OtherIDs, RespDoctor, "
               "Address_NVC,TelOne_NVC, TelTwo_NVC, TelMobile_NVC, email_adress, Comments_NVC, PrevXrayDate_CH, "
               "IDImg) ",
               "VALUES (", "'", UCase(FixSqlString(PatientID)), "', ", "'", FixSqlString(birth), "', ", "'",
               FixSqlString(FirstName), "', ", "'", FixSqlString(LastName), "', ", "'", Verbatim(Sex), "',", "'",
               Verbatim(OtherIDsColumn()), "', ", RespDoctor, ", ", "'", FixSqlString(Address), "', ", "'",
               FixSqlString(TelOne), "', ", "'", FixSqlString(TelTwo), "', ", "'", FixSqlString(TelMobile), "', ", "'",
               FixSqlString(EMail), "', ", "'", FixSqlString(Comments), "', ", "'", Verbatim(previous), "', ", "'",
               FixSqlString(IDImg), "' ", ");");
}

Long cPatient::Save(Ref<Connection> Con) {
    const String birth = DateColumn(BirthDate), previous = DateColumn(PrevXrayDate);
    const Ref<Recordset> rs =
        OpenPlain(Con, sql("Select * from Patient_T where ", "(PersonNr_CH) = '", UCase(FixSqlString(PatientID)), "'"));
    if (!rs->Eof()) {
        ID = Required<Long>(rs, "PatientID");
        rs->Close();
        Con->Execute(UpdateStatement(birth, previous));
        return 0;
    }
    rs->Close();
    Con->Execute(InsertStatement(birth, previous));
    const Ref<Recordset> newest = OpenPlain(Con,
                                            sql("SELECT MAX(PatientID) AS Max_ID FROM Patient_T WHERE ",
                                                "(PersonNr_CH)='", UCase(FixSqlString(PatientID)), "';"),
                                            ADODB::adCmdUnspecified);
    if (!(newest->Bof() && newest->Eof())) newest->MoveFirst();
    ID = Required<Long>(newest, "Max_ID");
    newest->Close();
    return 0;
}

const Interface& cPatient::Describe() const {
    static const Interface& self = InterfaceOf<cPatient>(
        "A patient. The text PatientID decides which row a save writes.",
        {
            Property<&cPatient::ID>(
                "ID", "The key of the row that was loaded or saved last; a save sets it and doesn't search by it."),
            Operation<&cPatient::LoadOnPatientID>("LoadOnPatientID",
                                                  "Does nothing and returns 0. LoadOnPatientIDorPDBID loads a patient.",
                                                  {{"PatientID", "Ignored."}}),
            Operation<&cPatient::Save>(
                "Save", "Writes all members to every row with this PatientID, or to a new row. Returns 0.",
                {{"Con", Help::Connection}}),
            Property<&cPatient::Sex>("Sex",
                                     "A code that the client chooses; an unpaired single quote makes a save fail."),
            Property<&cPatient::BirthDate>("BirthDate",
                                           "The date of birth; 0 if it isn't known. No time of day is stored."),
            Property<&cPatient::LastName>("LastName", "The family name; empty if it isn't known."),
            Property<&cPatient::FirstName>("FirstName", "The given name; empty if it isn't known."),
            Property<&cPatient::PatientID>("PatientID", "The patient identifier, a text that is stored in upper case."),
            Property<&cPatient::OtherIDs>(
                "OtherIDs", "The other identifiers of the patient; at most 255 characters of them are stored."),
            Property<&cPatient::RespDoctor>("RespDoctor",
                                            "The number of the responsible doctor, cDoctor.drID; 0 if there is none."),
            Operation<&cPatient::LoadOnPatientIDorPDBID>(
                "LoadOnPatientIDorPDBID",
                "Loads a patient. Returns 1, or 0 if there is none; a failure shows a message and returns 0.",
                {{"Con", Help::Connection},
                 {"PatientID", "The patient identifier; empty to search by PDBID."},
                 {"PDBID", "The key of the row; ignored unless PatientID is empty."}}),
            Property<&cPatient::IDImg>("IDImg",
                                       "The client's name for a portrait of the patient; empty if there is none."),
            Property<&cPatient::PrevXrayDate>(
                "PrevXrayDate", "The date of the previous X-ray image; 0 if it isn't known. No time of day is stored."),
            Property<&cPatient::Comments>("Comments", "Free text about the patient."),
            Property<&cPatient::EMail>("EMail", "The e-mail address; empty if it isn't known."),
            Property<&cPatient::TelMobile>("TelMobile", "The mobile telephone number, as text."),
            Property<&cPatient::TelTwo>("TelTwo", "The second telephone number, as text."),
            Property<&cPatient::TelOne>("TelOne", "The first telephone number, as text."),
            Property<&cPatient::Address>("Address", "The postal address as one text."),
        });
    return self;
}

}  // namespace OXClass
