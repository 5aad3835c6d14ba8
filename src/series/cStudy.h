#pragma once

#include "frame/SharedTypes.h"

namespace OXClass {

/// One study of a patient: a row of Study_T.
///
/// Two members have similar names: `ID` is the key of the row, `studyID` the study identifier of DICOM. An
/// object belongs to the thread that created it.
class cStudy final : public Object {
public:
    static constexpr const char* ClassName = "cStudy";
    /// `Global<cStudy>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the study isn't stored. Column Study_ID.
    Long ID = 0;
    /// The DICOM study instance UID. Column StudyInstanceUID; an empty one is stored as "TOM".
    String instanceUID;
    /// The DICOM study identifier, at most 16 characters are stored. A null or empty column leaves it
    /// unchanged.
    String studyID;
    /// The key of the patient. A save doesn't write 0.
    Long PatientID = 0;

    // ---- load, save, delete ------------------------------------------------------------------------

    /// Loads the study that `Study` names, a UID if it contains a ".", otherwise a key in decimal. Returns
    /// true. Returns false and changes nothing if there is none.
    ///
    /// Raises, with "cStudy.loadStudy, " in front of the source, 0x80040E14 for a key that isn't a whole
    /// number and for a UID with an unpaired single quote, 94 for a null in any column but `studyID`,
    /// `PhysOfRecord` and the date, 13 for a date that is null or isn't a date, and what the database
    /// raises. Members that were read before the failure keep their new values.
    bool loadStudy(String Study, const Ref<Connection>& Con);

    /// Writes the study and returns true. Searches the row by `ID` if `CheckExistOnID` is true, otherwise by
    /// `instanceUID`, and inserts a row if there is none. `ID` becomes the key of the row.
    ///
    /// Three texts are cut, to 64 characters (`description`), 16 (`studyID`) and 255 (`PhysOfRecord`); their
    /// single quotes are stored doubled, which counts for the first two. All other texts are stored
    /// unchanged. A column that the table lacks is skipped, and the result is still true.
    ///
    /// If `ID` is 0 afterwards, because the key is 0 or the key column is missing, shows the message box
    /// "fel", and still returns true: the row is written. Raises, with "cStudy.SaveStudy, " in front of the
    /// source, 0x80040E14 for an unpaired single quote in the UID that is searched, 0x80040E21 for a text
    /// that is longer than its column, 5 for a date outside the years 100 to 9999, 0x80040E38 if another
    /// program changed the row meanwhile, and what the database raises; nothing is written then. Raises 94
    /// if the key of a new row can't be read back; the row is written then, and `ID` stays unchanged.
    bool savestudy(const bool& CheckExistOnID, const Ref<Connection>& Con);

    /// Deletes the row of `ID`, if it exists. Its series and images, and all members, stay unchanged. Raises
    /// 0x80040E38 if another program deleted the row meanwhile, and what the database raises.
    void Delete(const Ref<Connection>& Con);

    // ---- the rest of the row -----------------------------------------------------------------------

    /// The date and time of the study, in whole seconds. Column StudyDateTime.
    Date dateTime;
    /// The description. Column Studydesc.
    String description;
    /// The DICOM accession number, at most 64 characters.
    String accessionNumber;
    /// The name of the referring doctor, at most 255 characters.
    String referDrName;
    /// The physicians of record. A null reads as the empty text.
    String PhysOfRecord;

    // ---- held for the client, not stored -----------------------------------------------------------

    String Key;                                          ///< the key under which a collection contains it
    gdcmObjectLocation location = gdcmObjectLocUnknown;  ///< where the images of the study are

    const Interface& Describe() const override;

private:
    void ReadRow(const Ref<Recordset>& rs);
    void WriteRow(const Ref<Recordset>& rs) const;
};

}  // namespace OXClass
