#include "people/cClinic.h"

#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

bool cClinic::DeleteClinic(const Ref<Connection>& Con) const {
    return Prefixed("cClinic.DeleteClinic, ", [&] {
        Con->Execute(sql("DELETE FROM Clinic_T WHERE ClinicID =", ID, ";"));
        return true;
    });
}

bool cClinic::SaveClinic(const Ref<Connection>& Con) {
    // The prefix names an operation of another class. Clients compare with this text, so it must not change.
    return Prefixed("cClinic.SaveDoctor, ", [&] {
        const Ref<Recordset> rs = OpenUpdatable(Con, sql("SELECT * FROM Clinic_T WHERE ClinicID =", ID));
        if (rs->Eof()) rs->AddNew();
        const auto write = [&](std::string_view column, const String& text) {
            constexpr Long width = 50;
            rs->Collect(column, Left(Trim(text), width));
        };
        write("ClinicName", ClinicName);
        write("OrgNumber", OrgNumber);
        write("ZipCode", ZipCode);
        write("StreetAdress", StreetAddress);
        write("City", City);
        write("Telephone", Telephone);
        write("Remarks", Remarks16);
        rs->Update();
        ID = Required<Long>(rs, "ClinicID");
        if (ID == 0) MsgBox("OXClass.cClinic.SaveClinic.Error. Me.ID=0");
        rs->Close();
        return true;
    });
}

bool cClinic::LoadClinic(Long ClinicID, const Ref<Connection>& Con) {
    return Prefixed("cClinic.LoadClinic, ", [&] {
        const Ref<Recordset> rs = OpenPlain(Con, sql("SELECT * FROM Clinic_T  ", " WHERE ClinicID =", ClinicID, ";"));
        const bool found = !rs->Eof();
        if (found) {
            ID = Required<Long>(rs, "ClinicID");
            City = TextOrEmpty(rs, "City");
            ClinicName = TextOrEmpty(rs, "ClinicName");
            OrgNumber = TextOrEmpty(rs, "OrgNumber");
            Remarks16 = TextOrEmpty(rs, "Remarks");
            StreetAddress = TextOrEmpty(rs, "StreetAdress");
            Telephone = TextOrEmpty(rs, "Telephone");
            ZipCode = TextOrEmpty(rs, "ZipCode");
        }
        rs->Close();
        return found;
    });
}

const Interface& cClinic::Describe() const {
    static const Interface& self = InterfaceOf<cClinic>({
        Operation<&cClinic::DeleteClinic>("DeleteClinic", {"Con"}),
        Operation<&cClinic::SaveClinic>("SaveClinic", {"Con"}),
        Operation<&cClinic::LoadClinic>("LoadClinic", {"ClinicID", "Con"}),
        Property<&cClinic::Remarks16>("Remarks16"),
        Property<&cClinic::Telephone>("Telephone"),
        Property<&cClinic::City>("City"),
        Property<&cClinic::StreetAddress>("StreetAddress"),
        Property<&cClinic::ZipCode>("ZipCode"),
        Property<&cClinic::OrgNumber>("OrgNumber"),
        Property<&cClinic::ClinicName>("ClinicName"),
        Property<&cClinic::ID>("ID"),
    });
    return self;
}

}  // namespace OXClass
