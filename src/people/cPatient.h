#pragma once

#include "frame/Completion.h"
#include "people/OtherPatIDs.h"

namespace OXClass {

/// One person: a row of Patient_T.
///
/// The identity that counts is the text identifier `PatientID` (column PersonNr_CH): `Save` decides
/// between insert and update on it alone and takes no notice of `ID`. A client that means to change one
/// field loads first, or it blanks the rest. An object belongs to one thread.
class cPatient final : public Object {
public:
    static constexpr const char* ClassName = "cPatient";

    Long ID = 0;  ///< the row's counter; names the row that was loaded or written

    /// Does nothing and returns 0; kept for programs that call it.
    Long LoadOnPatientID(const String& PatientID);

    /// Writes the patient: an update of every row with this identifier, or an insert where there is
    /// none. Returns 0. `ID` becomes the counter of the first such row, or of the new one.
    ///
    /// At most 255 characters of `OtherIDs` are stored. Raises what the database raises, and 0x80040E14
    /// for a quote in `Sex` or in `OtherIDs`, which are not escaped; a failure behind the insert leaves
    /// the row written and `ID` as it was.
    Long Save(Ref<Connection> Con);

    String Sex;
    Date BirthDate;
    String LastName;
    String FirstName;
    String PatientID;  ///< the text identifier; stored in upper case
    Ref<OXClass::OtherPatIDs> OtherIDs = New<OXClass::OtherPatIDs>();  ///< never nothing unless put so
    Long RespDoctor = 0;                                               ///< the responsible doctor's number

    /// Loads the row with this text identifier, or with the counter `PDBID` where the identifier is
    /// empty. Returns 1, or 0 and leaves all members where there is none.
    ///
    /// A birth date that is no date loads as the zero date. Any failure (a null counter, a previous
    /// x-ray date that is no date, the database's) is shown in a text box, and the result is 0; the
    /// members read before it keep their new values.
    Long LoadOnPatientIDorPDBID(Ref<Connection> Con, const String& PatientID, const Long& PDBID);

    /// How the last load ended. A birth date that is no date counts as a failure: the load goes on, but
    /// saving the object would replace the text. No part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }

    String IDImg;
    Date PrevXrayDate;
    String Comments;
    String EMail;
    String TelMobile;
    String TelTwo;
    String TelOne;
    String Address;

    const Interface& Describe() const override;

private:
    void ReadRow(const Ref<Recordset>& rs);
    String UpdateStatement(const String& birth, const String& previous) const;
    String InsertStatement(const String& birth, const String& previous) const;
    String OtherIDsColumn() const;

    Completion loadCompletion_;
};

}  // namespace OXClass
