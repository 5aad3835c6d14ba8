#include "people/cDoctor.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "people/OutsideGUID.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

String cDoctor::GetDCMName() const {
    String name = Trim(DrLastName + "^" + DrFirstName + "^^" + DrPrefix);
    name.erase(name.find_last_not_of('^') + 1);
    return name.empty() ? DrName : name;
}

Long cDoctor::PatientCount(Ref<Connection> Con) const {
    return Prefixed("cDoctor.PatientCount, ", [&] {
        const Ref<Recordset> rs = OpenClient(Con, sql("SELECT * FROM Patient_T WHERE RespDoctor =", drID, ";"));
        const Long count = rs->RecordCount();
        rs->Close();
        return count;
    });
}

bool cDoctor::DeleteDoctor(Ref<Connection> Con) const {
    return Prefixed("cDoctor.DeleteDoctor, ", [&] {
        Con->Execute(sql("DELETE FROM Doctor_T WHERE DrID =", drID, ";"));
        return true;
    });
}

bool cDoctor::SaveDoctor(Ref<Connection> Con) {
    return Prefixed("cDoctor.SaveDoctor, ", [&] {
        const Ref<Recordset> rs = OpenUpdatable(Con, sql("SELECT * FROM Doctor_T WHERE DrID =", drID));
        if (rs->Eof()) rs->AddNew();
        WriteRow(rs);
        rs->Update();
        drID = Required<Long>(rs, "drID");
        if (drID == 0) MsgBox("OXClass.SaveDoctor.Error. Me.drID=0");
        rs->Close();
        return true;
    });
}

void cDoctor::WriteRow(const Ref<Recordset>& rs) const {
    constexpr Long contactWidth = 255, nameWidth = 60, shortNameWidth = 30, prefixWidth = 20;
    rs->Collect("DrContactInfo_NVC", Left(Trim(DrContactInfo), contactWidth));
    rs->Collect("DrFirstName_NVC", Left(Trim(DrFirstName), nameWidth));
    rs->Collect("DrLastName_NVC", Left(Trim(DrLastName), nameWidth));
    rs->Collect("DrName_NVC", Left(Trim(DrName), shortNameWidth));
    rs->Collect("DrPrefix_NVC", Left(Trim(DrPrefix), prefixWidth));
    rs->Collect("DrType_INT", DrType);
    rs->Collect("DrEMail", DrEMail);
    rs->Collect("drGUID", drGUID);
    rs->Collect("DrLogin", DrLogin);
}

bool cDoctor::LoadDoctor(Long wanted, Ref<Connection> Con) {
    return Prefixed("cDoctor.loadDoctor, ",
                    [&] { return Load(sql("SELECT * FROM Doctor_T  ", " WHERE DrID =", wanted, ";"), Con); });
}

bool cDoctor::LoadDoctorOnGUID(String wanted, Ref<Connection> Con) {
    return Prefixed("cDoctor.loadDoctorOnGUID, ", [&] {
        const String guid = UCase(wanted);
        return Load(sql("SELECT * FROM Doctor_T  ", " WHERE DrGUID ='", Verbatim(guid), "';"), Con);
    });
}

bool cDoctor::Load(const String& statement, const Ref<Connection>& con) {
    const Ref<Recordset> rs = OpenPlain(con, statement);
    const bool found = !rs->Eof();
    if (found) {
        ReadRow(rs);
        if (Trim(drGUID).empty()) {
            drGUID = NewOutsideGUID();
            SaveDoctor(con);
        }
    }
    rs->Close();
    return found;
}

void cDoctor::ReadRow(const Ref<Recordset>& rs) {
    DrContactInfo = TextOrEmpty(rs, "DrContactInfo_NVC");
    DrFirstName = TextOrEmpty(rs, "DrFirstName_NVC");
    drID = Nz<Long>(rs, "drID");
    DrLastName = TextOrEmpty(rs, "DrLastName_NVC");
    DrName = TextOrEmpty(rs, "DrName_NVC");
    DrPrefix = TextOrEmpty(rs, "DrPrefix_NVC");
    DrType = Nz<DoctorType>(rs, "DrType_INT");
    DrEMail = TextOrEmpty(rs, "DrEMail");
    drGUID = UCase(TextOrEmpty(rs, "drGUID"));
    DrLogin = TextOrEmpty(rs, "DrLogin");
}

const Interface& cDoctor::Describe() const {
    static const Interface& self = InterfaceOf<cDoctor>(
        "A person who can be responsible for patients.",
        {
            Operation<&cDoctor::GetDCMName>(
                "GetDCMName", "Returns the name in the DICOM form Last^First^^Prefix, or DrName if these are empty."),
            Operation<&cDoctor::PatientCount>("PatientCount",
                                              "Returns the number of patients for whom this doctor is responsible.",
                                              {{"Con", Help::Connection}}),
            Operation<&cDoctor::DeleteDoctor>(
                "DeleteDoctor",
                "Deletes the row of drID; returns true even if there is none. Patients keep the number.",
                {{"Con", Help::Connection}}),
            Operation<&cDoctor::SaveDoctor>(
                "SaveDoctor", "Writes the row of drID, or a new row if there is none. Sets drID and returns true.",
                {{"Con", Help::Connection}}),
            Operation<&cDoctor::LoadDoctor>(
                "LoadDoctor", "Loads a doctor by number; false if there is none. Assigns and saves a missing GUID.",
                {{"drID", "The number of the doctor."}, {"Con", Help::Connection}}),
            Property<&cDoctor::DrType>("DrType", "The relation to the clinic: 0 unknown, 1 local, 2 remote, 3 web."),
            Property<&cDoctor::DrContactInfo>("DrContactInfo",
                                              "The contact details as one text; at most 255 characters are stored."),
            Property<&cDoctor::DrPrefix>("DrPrefix", "The title before the name; at most 20 characters are stored."),
            Property<&cDoctor::DrLastName>("DrLastName", "The family name; at most 60 characters are stored."),
            Property<&cDoctor::DrFirstName>("DrFirstName", "The given name; at most 60 characters are stored."),
            Property<&cDoctor::DrName>("DrName", "The short name or display name; at most 30 characters are stored."),
            Property<&cDoctor::drID>("drID",
                                     "The number of the doctor, which the database assigns; 0 if it isn't stored."),
            Property<&cDoctor::DrLogin>(
                "DrLogin", "The login name, at most 255 characters; a save raises an error for a longer one."),
            Property<&cDoctor::drGUID>("drGUID",
                                       "The GUID, 32 hexadecimal digits; a load assigns one to a doctor without it."),
            Property<&cDoctor::DrEMail>(
                "DrEMail", "The e-mail address, at most 255 characters; a save raises an error for a longer one."),
            Operation<&cDoctor::LoadDoctorOnGUID>(
                "LoadDoctorOnGUID", "Loads a doctor by GUID and returns true; returns false if there is none.",
                {{"drGUID", "The GUID in upper or lower case; a row that stores lower case isn't found."},
                 {"Con", Help::Connection}}),
        });
    return self;
}

}  // namespace OXClass
