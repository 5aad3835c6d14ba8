#include "people/cClinics.h"

#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

#include <array>

namespace OXClass {

using namespace Platform;

Ref<cClinic> cClinics::GetHQClinic(const Ref<Connection>& Con) { return FirstNamed(HeadOffice, Con); }

Ref<cClinic> cClinics::FirstNamed(const String& upperCaseName, const Ref<Connection>& con) {
    if (Count() == 0) GetAllClinics(con);
    for (cClinic& clinic : *this)
        if (UCase(clinic.ClinicName) == upperCaseName) return Ref<cClinic>(&clinic);
    return nullptr;
}

Long cClinics::GetAllClinics(const Ref<Connection>& Con) {
    Clear();
    return Prefixed("cClinics.GetAllClinics, ", [&] {
        const Ref<Recordset> rs = New<Recordset>();
        rs->SetCursorLocation(ADODB::adUseClient);
        rs->Open("SELECT * FROM Clinic_T order by ClinicName;", Con, ADODB::adOpenDynamic, ADODB::adLockPessimistic,
                 ADODB::adCmdUnspecified);
        if (rs->Eof()) {
            rs->AddNew();
            rs->Collect("ClinicName", HeadOffice);
            rs->Update();
        }
        Long count = 0;
        for (; !rs->Eof(); rs->MoveNext()) {
            // Braces read the columns in this order, so that of several bad columns the first one raises.
            const Long number = Required<Long>(rs, "ClinicID");
            const std::array texts{TextOrEmpty(rs, "ClinicName"), TextOrEmpty(rs, "OrgNumber"),
                                   TextOrEmpty(rs, "ZipCode"),    TextOrEmpty(rs, "StreetAdress"),
                                   TextOrEmpty(rs, "City"),       TextOrEmpty(rs, "Telephone"),
                                   TextOrEmpty(rs, "Remarks")};
            Add(number, texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6], "K" + CStr(number));
            ++count;
        }
        rs->Close();
        return count;
    });
}

Ref<cClinic> cClinics::Add(const Long& ID, const String& ClinicName, const String& OrgNumber, const String& ZipCode,
                           const String& StreetAddress, const String& City, const String& Telephone,
                           const String& Remarks16, const String& sKey) {
    const Ref<cClinic> clinic = New<cClinic>();
    clinic->ID = ID;
    clinic->ClinicName = ClinicName;
    clinic->OrgNumber = OrgNumber;
    clinic->ZipCode = ZipCode;
    clinic->StreetAddress = StreetAddress;
    clinic->City = City;
    clinic->Telephone = Telephone;
    clinic->Remarks16 = Remarks16;
    return AddMember(clinic, sKey);
}

Ref<cClinic> cClinics::ItemOnClinicName(const String& sName, const Ref<Connection>& Con) {
    return Swallowed([&] { return FirstNamed(UCase(sName), Con); });
}

const Interface& cClinics::Describe() const {
    static const Interface& self = InterfaceOf<cClinics>({
        Operation<&cClinics::GetHQClinic>("GetHQClinic", {"Con"}),
        Operation<&cClinics::GetAllClinics>("GetAllClinics", {"Con"}),
        Operation<&cClinics::Add>("Add", {"ID", "ClinicName", "OrgNumber", "ZipCode", "StreetAddress", "City",
                                          "Telephone", "Remarks16", Optional("sKey")}),
        ReadOnly<&cClinics::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&cClinics::ItemOnClinicName>("ItemOnClinicName", {"sName", "Con"}),
        ReadOnly<&cClinics::Count>("Count"),
        Operation<&cClinics::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&cClinics::NewEnum>("NewEnum", {}, EnumeratorMember),
    });
    return self;
}

}  // namespace OXClass
