#include "people/cDoctor.h"

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

Long cDoctor::PatientCount(const Ref<Connection>& Con) const {
    return Prefixed("cDoctor.PatientCount, ", [&] {
        const Ref<Recordset> rs = OpenClient(Con, sql("SELECT * FROM Patient_T WHERE RespDoctor =", drID, ";"));
        const Long count = rs->RecordCount();
        rs->Close();
        return count;
    });
}

bool cDoctor::DeleteDoctor(const Ref<Connection>& Con) const {
    return Prefixed("cDoctor.DeleteDoctor, ", [&] {
        Con->Execute(sql("DELETE FROM Doctor_T WHERE DrID =", drID, ";"));
        return true;
    });
}

bool cDoctor::SaveDoctor(const Ref<Connection>& Con) {
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

bool cDoctor::LoadDoctor(const Long& wanted, const Ref<Connection>& Con) {
    return Prefixed("cDoctor.loadDoctor, ",
                    [&] { return Load(sql("SELECT * FROM Doctor_T  ", " WHERE DrID =", wanted, ";"), Con); });
}

bool cDoctor::LoadDoctorOnGUID(const String& wanted, const Ref<Connection>& Con) {
    return Prefixed("cDoctor.loadDoctorOnGUID, ", [&] {
        const String guid = UCase(wanted);
        return Load(sql("SELECT * FROM Doctor_T  ", " WHERE DrGUID ='", AsItStands(guid), "';"), Con);
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
    static const Interface& self = InterfaceOf<cDoctor>({
        Operation<&cDoctor::GetDCMName>("GetDCMName"),
        Operation<&cDoctor::PatientCount>("PatientCount", {"Con"}),
        Operation<&cDoctor::DeleteDoctor>("DeleteDoctor", {"Con"}),
        Operation<&cDoctor::SaveDoctor>("SaveDoctor", {"Con"}),
        Operation<&cDoctor::LoadDoctor>("LoadDoctor", {"drID", "Con"}),
        Property<&cDoctor::DrType>("DrType"),
        Property<&cDoctor::DrContactInfo>("DrContactInfo"),
        Property<&cDoctor::DrPrefix>("DrPrefix"),
        Property<&cDoctor::DrLastName>("DrLastName"),
        Property<&cDoctor::DrFirstName>("DrFirstName"),
        Property<&cDoctor::DrName>("DrName"),
        Property<&cDoctor::drID>("drID"),
        Property<&cDoctor::DrLogin>("DrLogin"),
        Property<&cDoctor::drGUID>("drGUID"),
        Property<&cDoctor::DrEMail>("DrEMail"),
        Operation<&cDoctor::LoadDoctorOnGUID>("LoadDoctorOnGUID", {"drGUID", "Con"}),
    });
    return self;
}

}  // namespace OXClass
