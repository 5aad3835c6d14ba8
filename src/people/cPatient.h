#pragma once

#include "frame/Completion.h"
#include "people/OtherPatIDs.h"

namespace OXClass {

/// One patient: a row of Patient_T.
///
/// The text identifier `PatientID` decides which row a save writes; `ID` doesn't. A save writes all columns,
/// so a program that changes one member must load the patient first. A null column reads as the empty text,
/// and a date of 0 is stored as the empty text. An object belongs to the thread that created it.
class cPatient final : public Object {
public:
    static constexpr const char* ClassName = "cPatient";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row that was loaded or written last, a counter of the database. Column PatientID.
    Long ID = 0;
    /// The text identifier. Column PersonNr_CH, stored in upper case; a load trims it too.
    String PatientID;
    /// Further identifiers, column OtherIDs. Never null unless a client puts null; then a save and the load
    /// of an existing row fail with 91.
    Ref<OXClass::OtherPatIDs> OtherIDs = New<OXClass::OtherPatIDs>();

    // ---- load and save -----------------------------------------------------------------------------

    /// Loads the row with this text identifier, or with the key `PDBID` if `PatientID` is empty. Returns 1.
    /// Returns 0 and changes nothing if there is no such row.
    ///
    /// A birth date that isn't a date reads as the date 0, and `LoadCompletion` reports it. On any failure (a
    /// null key, a previous X-ray date that isn't a date, a failure of the database) shows a message box and
    /// returns 0; members that were read before keep their new values. Raises nothing.
    Long LoadOnPatientIDorPDBID(Ref<Connection> Con, const String& PatientID, const Long& PDBID);

    /// Does nothing and returns 0. Kept for programs that call it.
    Long LoadOnPatientID(const String& PatientID);

    /// Writes the patient: an update of every row with this `PatientID`, or an insert if there is none.
    /// Returns 0. `ID` becomes the key of the first such row, or of the new row.
    ///
    /// At most 255 characters of `OtherIDs` are stored, and no time of day. Raises 0x80040E14 for an
    /// unpaired single quote in `Sex` or `OtherIDs`, which the statement takes unescaped, 91 if `OtherIDs`
    /// is null, 5 for a date outside the years 100 to 9999, and what the database raises; the table stays
    /// unchanged then, but `ID` may be that of the row to update. If the key of a new row can't be read
    /// back, the row is written and `ID` stays unchanged.
    Long Save(Ref<Connection> Con);

    /// Returns how the last load ended. A birth date that isn't a date counts as a failure, though the load
    /// continues: saving the object would replace the text by the empty text. Not part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }

    // ---- person ------------------------------------------------------------------------------------

    String FirstName;
    String LastName;
    /// The date of birth, without a time of day; 0 if it isn't known.
    Date BirthDate;
    /// A code for the sex that the client chooses. A save can't store an unpaired single quote.
    String Sex;
    /// The client's name for a portrait.
    String IDImg;
    String Comments;

    // ---- contact -----------------------------------------------------------------------------------

    String Address;
    String TelOne;
    String TelTwo;
    String TelMobile;
    String EMail;  ///< column Email_adress, with one "d"

    // ---- treatment ---------------------------------------------------------------------------------

    /// The number of the responsible doctor, `cDoctor::drID`; 0 if there is none. A null reads as 0.
    Long RespDoctor = 0;
    /// The date of the previous X-ray image, without a time of day; 0 if it isn't known.
    Date PrevXrayDate;

    const Interface& Describe() const override;

private:
    void ReadRow(const Ref<Recordset>& rs);
    String UpdateStatement(const String& birth, const String& previous) const;
    String InsertStatement(const String& birth, const String& previous) const;
    String OtherIDsColumn() const;

    Completion loadCompletion_;
};

}  // namespace OXClass
