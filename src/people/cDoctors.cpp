#include "people/cDoctors.h"

#include "frame/Reading.h"
#include "people/OutsideGUID.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Long cDoctors::GetAllDoctors(const Ref<Connection>& Con) {
    Clear();
    return Prefixed("cDoctors.GetAllDoctors, ", [&] {
        const Ref<Recordset> rs = OpenClient(Con, "SELECT * FROM Doctor_T order by DrLastName_nvc, DrFirstname_nvc;",
                                             ADODB::adCmdUnspecified);
        Long count = 0;
        for (; !rs->Eof(); rs->MoveNext()) {
            // Braces read the columns in this order, so that of several bad columns the first one raises.
            const Long number = Required<Long>(rs, "drID");
            const std::array texts{TextOrEmpty(rs, "DrName_NVC"), TextOrEmpty(rs, "DrFirstName_NVC"),
                                   TextOrEmpty(rs, "DrLastName_NVC"), TextOrEmpty(rs, "DrPrefix_NVC"),
                                   TextOrEmpty(rs, "DrContactInfo_NVC")};
            const Ref<cDoctor> doctor = Add(number, texts[0], texts[1], texts[2], texts[3], texts[4],
                                            Nz<DoctorType>(rs, "DrType_INT"), "K" + CStr(number));
            doctor->DrEMail = TextOrEmpty(rs, "DrEMail");
            doctor->drGUID = UCase(TextOrEmpty(rs, "drGUID"));
            doctor->DrLogin = TextOrEmpty(rs, "DrLogin");
            if (Trim(doctor->drGUID).empty()) doctor->drGUID = UCase(GetGUID());
            ++count;
        }
        rs->Close();
        return count;
    });
}

Ref<cDoctor> cDoctors::Add(const Long& drID, const String& DrName, const String& DrFirstName, const String& DrLastName,
                           const String& DrPrefix, const String& DrContactInfo, const DoctorType& DrType,
                           const String& sKey) {
    const Ref<cDoctor> doctor = New<cDoctor>();
    doctor->drID = drID;
    doctor->DrName = DrName;
    doctor->DrFirstName = DrFirstName;
    doctor->DrLastName = DrLastName;
    doctor->DrPrefix = DrPrefix;
    doctor->DrContactInfo = DrContactInfo;
    doctor->DrType = DrType;
    return AddMember(doctor, sKey);
}

String cDoctors::GetGUID() const { return NewDoctorGUID(); }

const Interface& cDoctors::Describe() const {
    static const Interface& self = InterfaceOf<cDoctors>({
        Operation<&cDoctors::GetAllDoctors>("GetAllDoctors", {"Con"}),
        Operation<&cDoctors::Add>("Add", {"drID", "DrName", "DrFirstName", "DrLastName", "DrPrefix", "DrContactInfo",
                                          "DrType", Optional("sKey")}),
        ReadOnly<&cDoctors::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&cDoctors::Count>("Count"),
        Operation<&cDoctors::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&cDoctors::NewEnum>("NewEnum", {}, EnumeratorMember),
        Operation<&cDoctors::GetGUID>("GetGUID"),
    });
    return self;
}

}  // namespace OXClass
