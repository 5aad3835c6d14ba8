#include "people/cClinic.h"

#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<cClinic>(
        "A clinic of the organisation, or its head office.",
        {
            Operation<&cClinic::DeleteClinic>("DeleteClinic",
                                              "Deletes the row of ID; returns true even if there is none.",
                                              {{"Con", Help::Connection}}),
            Operation<&cClinic::SaveClinic>(
                "SaveClinic", "Writes the row of ID, or a new row if there is none. Sets ID and returns true.",
                {{"Con", Help::Connection}}),
            Operation<&cClinic::LoadClinic>(
                "LoadClinic", "Loads a clinic by its key and returns true; returns false if there is none.",
                {{"ClinicID", "The key of the clinic."}, {"Con", Help::Connection}}),
            Property<&cClinic::Remarks16>(
                "Remarks16", "Free text; at most 50 characters are stored, in spite of the 16 in the name."),
            Property<&cClinic::Telephone>("Telephone", "The telephone number; at most 50 characters are stored."),
            Property<&cClinic::City>("City", "The city of the address; at most 50 characters are stored."),
            Property<&cClinic::StreetAddress>("StreetAddress",
                                              "The street and house number; at most 50 characters are stored."),
            Property<&cClinic::ZipCode>("ZipCode", "The postal code; at most 50 characters are stored."),
            Property<&cClinic::OrgNumber>("OrgNumber",
                                          "The number of the organisation, as text; at most 50 characters are stored."),
            Property<&cClinic::ClinicName>(
                "ClinicName", "The name, stored up to 50 characters; __HQ in any case denotes the head office."),
            Property<&cClinic::ID>("ID",
                                   "The key of the row, which the database assigns; 0 if the clinic isn't stored."),
        });
    return self;
}

}  // namespace OXClass
