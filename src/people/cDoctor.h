#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The relation of a doctor to the clinic. Column Doctor_T.DrType_INT; a row can hold other numbers too.
enum DoctorType : Long { drt_Unknown = 0, drt_Local = 1, drt_Remote = 2, drt_Web = 3 };

/// A person who can be responsible for patients: a row of Doctor_T.
///
/// A doctor has two identifiers: the number `drID`, which the database assigns, and the GUID `drGUID`, which
/// a load assigns to a row that has none. A null column reads as 0 or the empty text. An object belongs to
/// the thread that created it.
class cDoctor final : public Object {
public:
    static constexpr const char* ClassName = "cDoctor";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the doctor isn't stored.
    Long drID = 0;
    /// The GUID, 32 hexadecimal digits. A load changes it to upper case, a save stores it unchanged.
    String drGUID;

    // ---- load, save, delete ------------------------------------------------------------------------

    /// Loads the doctor with the number `drID` and returns true. Returns false and changes nothing if there
    /// is none.
    ///
    /// If the row has no GUID, assigns one (`NewOutsideGUID`) and calls `SaveDoctor`, so a load can write.
    /// Raises, with "cDoctor.loadDoctor, " in front of the source, 13 or 6 for a value that doesn't convert,
    /// what the database raises, and what `NewOutsideGUID` and `SaveDoctor` raise. Members that were read
    /// before the failure keep their new values.
    bool LoadDoctor(Long drID, Ref<Connection> Con);

    /// Loads a doctor as `LoadDoctor` does, by the GUID in upper or lower case; the prefix of the source is
    /// "cDoctor.loadDoctorOnGUID, ". The statement compares with the GUID in upper case, so a row that stores
    /// it in lower case isn't found. Also raises 0x80040E14 for an unpaired single quote in `drGUID`.
    bool LoadDoctorOnGUID(String drGUID, Ref<Connection> Con);

    /// Writes the row of `drID`, or a new row if there is none, and returns true. `drID` becomes the number
    /// of the row. Contact, first name, last name, short name and prefix are stored trimmed and cut to 255,
    /// 60, 60, 30 and 20 characters; the members stay unchanged.
    ///
    /// If the number of the row is 0, shows a message box, and still returns true: the row is written.
    /// Raises, with "cDoctor.SaveDoctor, " in front of the source, 0x80040E21 for an e-mail address or login
    /// of more than 255 or a GUID of more than 38 characters, 0x80040E38 if another program changed the row
    /// meanwhile, and what the database raises; nothing is written then. Raises 94 if the number of a new row
    /// can't be read back; the row is written then, and `drID` stays unchanged.
    bool SaveDoctor(Ref<Connection> Con);

    /// Deletes the row of `drID` and returns true, whether or not the row existed. The members stay
    /// unchanged, and the doctor's patients keep the number. Raises, with "cDoctor.DeleteDoctor, " in front
    /// of the source, what the database raises.
    bool DeleteDoctor(Ref<Connection> Con) const;

    // ---- names -------------------------------------------------------------------------------------

    String DrFirstName;
    String DrLastName;
    String DrPrefix;  ///< a title, such as "Dr."
    String DrName;    ///< the short or display name

    /// Returns the name in the form of DICOM: last name, first name, an empty middle name and prefix with "^"
    /// between them, trimmed, without the "^" at the end. Returns `DrName` if all three are empty.
    String GetDCMName() const;

    // ---- the rest of the row -----------------------------------------------------------------------

    DoctorType DrType = drt_Unknown;
    String DrContactInfo;
    String DrEMail;
    String DrLogin;

    /// Returns the number of patients whose responsible doctor has the number `drID`. Raises, with
    /// "cDoctor.PatientCount, " in front of the source, what the database raises.
    Long PatientCount(Ref<Connection> Con) const;

    const Interface& Describe() const override;

private:
    bool Load(const String& statement, const Ref<Connection>& con);
    void ReadRow(const Ref<Recordset>& rs);
    void WriteRow(const Ref<Recordset>& rs) const;
};

}  // namespace OXClass

/// The names and numbers of `DoctorType`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::DoctorType> {
    static constexpr const char* Name = "DoctorType";
    static constexpr EnumerationValue Values[] = {{"drt_Unknown", OXClass::drt_Unknown},
                                                  {"drt_Local", OXClass::drt_Local},
                                                  {"drt_Remote", OXClass::drt_Remote},
                                                  {"drt_Web", OXClass::drt_Web}};
};
