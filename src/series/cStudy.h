#pragma once

#include "frame/SharedTypes.h"

namespace OXClass {

/// One study of a patient: a row of Study_T. An object belongs to one thread.
class cStudy final : public Object {
public:
    static constexpr const char* ClassName = "cStudy";
    static constexpr bool IsGlobal = true;  ///< `Global<cStudy>()` gives the thread's shared instance

    String Key;  ///< the key under which a collection holds it; not stored
    gdcmObjectLocation location = gdcmObjectLocUnknown;  ///< held for the caller; not stored

    /// Loads the study with this UID (a text with a ".") or with this key. Returns false and changes
    /// nothing if there is none. Raises, with "cStudy.loadStudy, " in front of the source, 94 for a null
    /// in any column but `studyID` (the property stays) and `PhysOfRecord` (13 for one in the date),
    /// 0x80040E14 for a text that is neither a UID nor a number, and what the database raises; members read
    /// before stay new.
    bool loadStudy(String Study, const Ref<Connection>& Con);

    /// Writes the study and returns true; `ID` becomes the row's key. The row is looked for by `ID` where
    /// `CheckExistOnID` is true, else by `instanceUID`; where there is none a new one is made.
    ///
    /// Quotes are stored doubled in description, `studyID` and `PhysOfRecord`, and texts are cut to the
    /// columns' widths; an empty UID is stored as "TOM"; a patient of 0 is not written. A column that the
    /// table lacks is passed over, and the result is true all the same. Raises, with "cStudy.SaveStudy, " in
    /// front of the source, what else the database raises; nothing is written then.
    bool savestudy(const bool& CheckExistOnID, const Ref<Connection>& Con);

    Long PatientID = 0;
    String referDrName;
    String PhysOfRecord;
    String accessionNumber;
    String instanceUID;
    String description;
    Date dateTime;
    String studyID;  ///< the DICOM study identifier, a short text
    Long ID = 0;     ///< the row's key

    /// Deletes the row, if it is there; series and images stay. Raises what the database raises.
    void Delete(const Ref<Connection>& Con);

    const Interface& Describe() const override;

private:
    void ReadRow(const Ref<Recordset>& rs);
    void WriteRow(const Ref<Recordset>& rs) const;
};

}  // namespace OXClass
