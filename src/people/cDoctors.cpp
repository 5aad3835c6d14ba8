#include "people/cDoctors.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "people/OutsideGUID.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Long cDoctors::GetAllDoctors(Ref<Connection> Con) {
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
    static const Interface& self = InterfaceOf<cDoctors>(
        "The doctors as a collection, counted from 1.",
        {
            Operation<&cDoctors::GetAllDoctors>(
                "GetAllDoctors",
                "Replaces the members by all doctors, sorted by last and first name. Returns their number.",
                {{"Con", Help::Connection}}),
            Operation<&cDoctors::Add>(
                "Add", "Creates a doctor with these values, adds it at the end and returns it; stores nothing.",
                {{"drID", "The number of the doctor; 0 if it isn't stored."},
                 {"DrName", "The short name or display name."},
                 {"DrFirstName", "The given name."},
                 {"DrLastName", "The family name."},
                 {"DrPrefix", "The title before the name."},
                 {"DrContactInfo", "The contact details as one text."},
                 {"DrType", "The relation to the clinic: 0 unknown, 1 local, 2 remote, 3 web."},
                 Optional("sKey", Help::NewKey)}),
            ReadOnly<&cDoctors::Item>(
                "Item", "Returns a doctor; raises 9 for a position and 5 for a key that doesn't exist.",
                {{"vntIndexKey", "The position from 1, or the key; after GetAllDoctors the key is K and the drID."}},
                DefaultMember),
            ReadOnly<&cDoctors::Count>("Count", "The number of doctors in the collection."),
            Operation<&cDoctors::Remove>("Remove",
                                         "Removes a doctor from this collection; the row stays in the database.",
                                         {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cDoctors::NewEnum>("NewEnum", "An enumerator over the doctors, for a For Each loop.", {},
                                         EnumeratorMember),
            Operation<&cDoctors::GetGUID>(
                "GetGUID", "Returns a new GUID as 32 upper-case hexadecimal digits; the empty text after a failure."),
        });
    return self;
}

}  // namespace OXClass
