#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One clinic: a row of Clinic_T. An object belongs to one thread.
class cClinic final : public Object {
public:
    static constexpr const char* ClassName = "cClinic";

    /// Deletes the row, if it is there, and returns true; the object keeps its members. Raises, with
    /// "cClinic.DeleteClinic, " in front of the source, what the database raises.
    bool DeleteClinic(const Ref<Connection>& Con) const;

    /// Writes the row of `ID`, or a new one where there is none, and returns true; `ID` becomes the row's.
    /// Each text is stored trimmed and cut to 50 characters; the members keep theirs. Raises, with
    /// "cClinic.SaveDoctor, " in front of the source, what the database raises; nothing is written then.
    bool SaveClinic(const Ref<Connection>& Con);

    /// Loads the clinic of this identifier. Returns false and changes nothing if there is none. Raises, with
    /// "cClinic.LoadClinic, " in front of the source, 94 for a null identifier and what the database raises.
    bool LoadClinic(Long ClinicID, const Ref<Connection>& Con);

    String Remarks16;
    String Telephone;
    String City;
    String StreetAddress;
    String ZipCode;
    String OrgNumber;
    String ClinicName;  ///< "__HQ", in any case, for the head office
    Long ID = 0;        ///< the row's identifier; 0: not in the database

    const Interface& Describe() const override;
};

}  // namespace OXClass
