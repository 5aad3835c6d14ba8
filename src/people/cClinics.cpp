#include "people/cClinics.h"

#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<cClinics>(
        "The clinics of an organisation as a collection, counted from 1.",
        {
            Operation<&cClinics::GetHQClinic>(
                "GetHQClinic", "Returns the head office, or null if there is none. Loads an empty collection first.",
                {{"Con", "The open connection to the database; used only if the collection is empty."}}),
            Operation<&cClinics::GetAllClinics>(
                "GetAllClinics",
                "Loads all clinics, sorted by name. Returns their number. Stores __HQ in an empty table.",
                {{"Con", Help::Connection}}),
            Operation<&cClinics::Add>(
                "Add", "Creates a clinic with these values, adds it at the end and returns it; stores nothing.",
                {{"ID", "The key of the clinic; 0 if it isn't stored."},
                 {"ClinicName", "The name; __HQ in any case denotes the head office."},
                 {"OrgNumber", "The number of the organisation, as text."},
                 {"ZipCode", "The postal code."},
                 {"StreetAddress", "The street and house number."},
                 {"City", "The city of the address."},
                 {"Telephone", "The telephone number."},
                 {"Remarks16", "Free text."},
                 Optional("sKey", Help::NewKey)}),
            ReadOnly<&cClinics::Item>(
                "Item", "Returns a clinic, or null if the position or key doesn't exist.",
                {{"vntIndexKey", "The position from 1, or the key; after GetAllClinics the key is K and the ID."}},
                DefaultMember),
            ReadOnly<&cClinics::ItemOnClinicName>(
                "ItemOnClinicName", "Returns the first clinic of a name, or null. Loads an empty collection first.",
                {{"sName", "The name, compared without regard to case."},
                 {"Con", "The open connection to the database; used only if the collection is empty."}}),
            ReadOnly<&cClinics::Count>("Count", "The number of clinics in the collection, the head office included."),
            Operation<&cClinics::Remove>("Remove",
                                         "Removes a clinic from this collection; the row stays in the database.",
                                         {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cClinics::NewEnum>("NewEnum", "An enumerator over the clinics, for a For Each loop.", {},
                                         EnumeratorMember),
        });
    return self;
}

}  // namespace OXClass
