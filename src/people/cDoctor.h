#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// What a doctor is to the clinic.
enum DoctorType : Long { drt_Unknown = 0, drt_Local = 1, drt_Remote = 2, drt_Web = 3 };

/// A person who can be responsible for patients: a row of Doctor_T.
///
/// Besides the number that the database gives, a doctor has a GUID, 32 hexadecimal digits, which a load
/// gives to any row that lacks one. An object belongs to one thread.
class cDoctor final : public Object {
public:
    static constexpr const char* ClassName = "cDoctor";

    /// The name in the form of DICOM: family name, given name, an empty middle name and the prefix with "^"
    /// between them, without those at the end; `DrName` where all three are empty.
    String GetDCMName() const;

    /// The number of patients whose responsible doctor this is. Raises, with "cDoctor.PatientCount, " in
    /// front of the source, what the database raises.
    Long PatientCount(const Ref<Connection>& Con) const;

    /// Deletes the row, if it is there, and returns true. Its patients keep its number, and the object its
    /// members. Raises, with "cDoctor.DeleteDoctor, " in front of the source, what the database raises.
    bool DeleteDoctor(const Ref<Connection>& Con) const;

    /// Writes the row of `drID`, or a new one where there is none, and returns true; `drID` becomes the row's
    /// number. Contact, names and prefix are stored trimmed and cut to 255, 60, 60, 30 and 20 characters; the
    /// members keep theirs. Raises, with "cDoctor.SaveDoctor, " in front of the source, what the database
    /// raises, 0x80040E21 for a longer text than the column of one of the last three; nothing is written
    /// then.
    bool SaveDoctor(const Ref<Connection>& Con);

    /// Loads the doctor of this number. Returns false and changes nothing if there is none. A row without
    /// a GUID gets one (see `OutsideGUID`) and is written at once, as by `SaveDoctor`. Raises, with
    /// "cDoctor.loadDoctor, " in front of the source, what the database raises and, with its own prefix
    /// behind that, what `SaveDoctor` raises; the members are new then.
    bool LoadDoctor(const Long& drID, const Ref<Connection>& Con);

    DoctorType DrType = drt_Unknown;
    String DrContactInfo;
    String DrPrefix;
    String DrLastName;
    String DrFirstName;
    String DrName;  ///< the short or display name
    Long drID = 0;  ///< the row's number; 0: not in the database
    String DrLogin;
    String drGUID;
    String DrEMail;

    /// `LoadDoctor`, by the GUID in either case; a quote in it raises 0x80040E14. The prefix is
    /// "cDoctor.loadDoctorOnGUID, ".
    bool LoadDoctorOnGUID(const String& drGUID, const Ref<Connection>& Con);

    const Interface& Describe() const override;

private:
    bool Load(const String& statement, const Ref<Connection>& con);
    void ReadRow(const Ref<Recordset>& rs);
    void WriteRow(const Ref<Recordset>& rs) const;
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::DoctorType> {
    static constexpr const char* Name = "DoctorType";
    static constexpr EnumerationValue Values[] = {
        {"drt_Unknown", 0}, {"drt_Local", 1}, {"drt_Remote", 2}, {"drt_Web", 3}};
};
