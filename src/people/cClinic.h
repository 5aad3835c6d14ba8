#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One clinic: a row of Clinic_T.
///
/// Each text belongs to the column of its name; a null reads as the empty text. All columns are 50 characters
/// wide. An object belongs to the thread that created it.
class cClinic final : public Object {
public:
    static constexpr const char* ClassName = "cClinic";

    // ---- the row -----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the clinic isn't stored. Column ClinicID.
    Long ID = 0;
    /// The name; "__HQ" in any case denotes the head office.
    String ClinicName;

    // ---- load, save, delete ------------------------------------------------------------------------

    /// Loads the clinic with the key `ClinicID` and returns true. Returns false and changes nothing if there
    /// is none.
    ///
    /// Raises, with "cClinic.LoadClinic, " in front of the source, 94 for a null key and what the database
    /// raises. Members that were read before the failure keep their new values.
    bool LoadClinic(Long ClinicID, const Ref<Connection>& Con);

    /// Writes the row of `ID`, or a new row if there is none, and returns true. `ID` becomes the key of the
    /// row. Each text is stored trimmed and cut to 50 characters; the members stay unchanged.
    ///
    /// If the key of the row is 0, shows a message box, and still returns true: the row is written. Raises,
    /// with "cClinic.SaveDoctor, " in front of the source, 0x80040E38 if another program changed the row
    /// meanwhile and what the database raises; nothing is written then. Raises 94 if the key of a new row
    /// can't be read back; the row is written then, and `ID` stays unchanged.
    bool SaveClinic(const Ref<Connection>& Con);

    /// Deletes the row of `ID` and returns true, whether or not the row existed. The members stay unchanged.
    /// Raises, with "cClinic.DeleteClinic, " in front of the source, what the database raises.
    bool DeleteClinic(const Ref<Connection>& Con) const;

    // ---- address and remarks -----------------------------------------------------------------------

    String OrgNumber;
    String StreetAddress;  ///< column StreetAdress, with one "d"
    String ZipCode;
    String City;
    String Telephone;
    String Remarks16;  ///< column Remarks: free text

    const Interface& Describe() const override;
};

}  // namespace OXClass
