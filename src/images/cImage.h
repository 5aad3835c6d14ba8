#pragma once

#include "frame/Completion.h"
#include "frame/SharedTypes.h"
#include "images/cComments.h"

#include <optional>

namespace OXClass {

/// A whole number that is stored as it was read, and converted when a caller reads it. 0 if nothing was read.
///
/// A column that isn't a number therefore raises in the operation that needs the number, not in the load.
class LateNumber {
public:
    LateNumber() = default;
    LateNumber(Long value) : value_(value) {}
    /// Stores a value of any type; doesn't convert it.
    explicit LateNumber(Variant read) : value_(std::move(read)) {}

    /// Returns the number, rounded half to even. Raises 13 for a value that isn't a number, 6 for one beyond
    /// 32 bits.
    operator Long() const { return CLng(value_); }

private:
    Variant value_;
};

/// One stored image: a row of ImageBild_T, and its comments, the rows of Comments_T.
///
/// The picture is a file below a storage root: `RootId` names the root and `URL` the file. Nothing here joins
/// the two, or reads or writes the file. Where a property names no column, it is the one of the same name. A
/// null reads as 0 or empty unless the property says otherwise. "Needed" means that a null ends the load at
/// that column. An object belongs to the thread that created it.
class cImage final : public Object {
public:
    static constexpr const char* ClassName = "cImage";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the image isn't stored. Column ImageBildID.
    /// Needed.
    Long ID = 0;
    /// The key of the patient, column PatientID. Needed.
    Long PatID = 0;
    /// The keys of the study and the series, columns Study_ID and Series_ID.
    Long studyID = 0;
    Long seriesID = 0;
    /// The DICOM SOP instance UID, column SOPInstanceUID_NVC. A load and an insert trim it.
    String instanceUID;
    /// The number of the image in its series. A load reads the number at the start of the column's text.
    Long ImageNumberInSeries = 0;
    /// The key under which `cImages::AddObject` added the image. Not stored.
    String Key;

    // ---- load --------------------------------------------------------------------------------------

    /// Loads the row with the key `ImageBildID` as `GetFromRecord` does. Returns true, also if a column that
    /// can't be read ended the load. Doesn't load the comments.
    ///
    /// Returns false and changes nothing if there is no such row, or if the database doesn't know a name in
    /// the statement (0x80040E10). `LoadCompletion` distinguishes the two, and reports an incomplete load.
    /// Raises as `GetFromRecord`, and any other failure of the database.
    bool GetImage(const Ref<Connection>& Con, Long ImageBildID);

    /// Fills the object from the current row of `rs`, column by column in a fixed order. Doesn't move `rs`,
    /// and leaves the comments and `Pregnant` unchanged.
    ///
    /// A column that is missing or can't be read ends the load there, and raises nothing: the members of the
    /// columns before it are new, the others unchanged. `LoadCompletion` names the column.
    ///
    /// One column differs. A record names the column of `RootId` either "ImageBild_T.RootId" or "RootId",
    /// depending on the database engine. If it doesn't have the first name, a failure at this column is
    /// raised: 94 for a null, 13 or 6 for a value that isn't a number of 32 bits, 3265 if it has neither
    /// name.
    void GetFromRecord(const Ref<Recordset>& rs);

    /// Returns how the last `GetImage` or `GetFromRecord` ended, also if `cImages` called it. A program must
    /// not save an object after an incomplete load: the members that were not read keep the values of an
    /// earlier row, or of a new object. Not part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }

    // ---- save --------------------------------------------------------------------------------------

    /// Writes the row, and then the comments that aren't stored yet. Returns 0. Opens no transaction.
    ///
    /// If `ID` is 0, inserts a row, and `ID` becomes the highest key with this `URL` and patient. Otherwise
    /// updates the row of `ID`; an update of a row that no longer exists changes nothing and isn't detected.
    /// `dateTime`, `RootId` and `Pregnant` are stored by an insert only, `CapturePerson` by an update only.
    ///
    /// Before it sends anything, raises on an insert 6 if `Pregnant` is beyond 16 bits and 5 if `dateTime`
    /// is outside the years 100 to 9999, 13 or 6 if `FrameNumber` isn't a number, and 0x80040E14 for an
    /// unpaired single quote in a text that the statement takes unescaped: `CRC`, `instanceUID`, `ApprCrop`,
    /// `Laterality`, `AnaRegion`, `AnaRegionMod`, `sTeeth`, and on an update also `CapturePerson` and
    /// `RespPerson`. Raises 91 after the row is written if the comments are null. Raises what the database
    /// raises. What was written before a failure stays written. A second save then writes only the missing
    /// comments, but inserts a second row if `ID` is still 0.
    Long Save(const Ref<Connection>& Con);

    /// Searches the image in the table and then saves it as `Save` does, so that a second import stores no
    /// second row. Returns 0. Stores at most 180 characters of `sTeeth`.
    ///
    /// Searches by `ID` if `CheckExistOnID` is true and `ID` isn't 0, otherwise by `instanceUID`, and not at
    /// all if that is empty. If no row is found, `ID` becomes 0 and a row is inserted. If a row is found and
    /// `ID` isn't 0, the row of `ID` is updated. If a row is found and `ID` is 0, `ID` becomes the key of
    /// that row, the object loses the comments that the row already has, and if `URL` isn't empty, the stored
    /// comments that mark the image as deleted ("Deleted " and a date) are removed from the table.
    ///
    /// Raises as `Save`, and 0x80040E14 for an unpaired single quote in such a mark. After a failed search
    /// nothing is written and `ID` stays unchanged. After a later failure `ID` is that of the row that was
    /// found or 0, and comments and marks may already be removed.
    Long SaveEx(const bool& CheckExistOnID, const Ref<Connection>& Con);

    // ---- comments ----------------------------------------------------------------------------------

    /// Returns the comments, newest first. `Comments` never returns null: it creates an empty list if there is none.
    /// `SetComments` replaces the list without copying it; the argument may be null.
    const Ref<cComments>& Comments();
    void SetComments(const Ref<cComments>& comments) { comments_ = comments; }

    /// Loads the comments of `ID`, newest first. Does nothing if the list isn't empty. Raises 94 for a null
    /// text, signature or date and what the database raises; the comments before the failure stay in the
    /// list.
    void GetComments(const Ref<Connection>& Con);

    /// Creates a comment and inserts it at the front. `saved` true means that it is already stored; if false,
    /// the next save stores it. `Action` and `objpointer` are ignored. Raises nothing.
    void addComment(const String& sComment, const String& sSignature, const Date& commentDate, const bool& saved,
                    const String& Action = {}, const Long& objpointer = 0);

    /// Stores the comments that aren't stored yet, and nothing else: the first 150 characters of text and
    /// signature. Doesn't check that the row of `ID` exists. Raises 91 if the list is null and what the
    /// database raises; the comments before the failure stay stored. Not part of the interface.
    void SaveComments(const Ref<Connection>& Con);

    // ---- file --------------------------------------------------------------------------------------

    /// The number of the storage root, a key of Root_T. Needed.
    Long RootId = 0;
    /// The directory of that root, from Root_T. Never written; a root that doesn't exist leaves it
    /// unchanged.
    String Root_RootDirectory;
    /// The path of the file below the root, column GraphicURL_NVC. Empty if there is no file.
    String URL;
    /// A check value that the caller computes and compares. A load trims it.
    String CRC;

    // ---- capture -----------------------------------------------------------------------------------

    /// The date and time of capture, column DateCaptured_SD. Needed.
    Date dateTime;
    /// The kind of the image. Needed.
    xigImageTypes ImageType = imggTypeSC;
    /// A number of the client's that refines the kind, column SubType_INT.
    Long SubType = 0;
    /// The name of the capture hardware, column HardwareSourcetxt_NVC.
    String HWSourceTxt;
    /// The person who captured the image and the one who is responsible for it, columns Capture_Person_NVC
    /// and Responsible_Person_NVC.
    String CapturePerson;
    String RespPerson;
    /// True if the image is approved.
    bool Approved = false;
    /// The client's answer to the question about pregnancy, a 16-bit number; 10 is stored as null and means
    /// that the patient was not asked. Column Pregnant_BT, which no load reads.
    Long Pregnant = 0;
    /// Where the image is stored, column DicomStatus_INT; 2: on the server too.
    Integer DicomStatus = 0;
    /// Other than 0 if the image is derived from another one, column DCMDerived_BT.
    Integer DCMDerived = 0;

    Long ExposureTime_ms = 0;  ///< column ExposureTime_F, in milliseconds
    Long Current_mA = 0;       ///< column Current_INT, in milliampere
    Long Voltage_kV = 0;       ///< column Voltage_INT, in kilovolt

    // ---- anatomy and place in the layout -----------------------------------------------------------

    /// The teeth that the image shows, as a tooth string. Column PriStructure.
    String sTeeth;
    /// The side: "L", "R", "B" for both, or empty.
    String Laterality;
    /// The codes of the region, such as "T-11170", and of its modifier, such as "T-5100B".
    String AnaRegion;
    String AnaRegionMod;
    /// The frame of the layout that shows the image; 0 if none does. Column FrameNumber_INT. By name, the
    /// property raises 13 or 6 if the column wasn't a number.
    LateNumber FrameNumber;

    /// Derive `Laterality`, `AnaRegion` and `AnaRegionMod` from `sTeeth`, of which any two digits that form a
    /// number from 11 to 88 count. Leave the member unchanged if no rule applies to these numbers. Raise
    /// nothing. The hanging of a series calls them. Not part of the interface.
    void DeriveLaterality();
    void DeriveAnaRegion();
    void DeriveAnaRegionMod();

    // ---- display -----------------------------------------------------------------------------------

    /// Resolution in dots per inch, columns DPIX_INT and DPIY_INT; 0 if it isn't known.
    Long DPIX = 0;
    Long DPIY = 0;
    /// Mirroring and rotation, a number of the client's. A null reads as 1.
    Long MirrRotStatus = 0;
    /// Brightness, contrast and inversion: columns Brightness_INT, Contrast_INT and Invert_BT. Needed.
    Long ApprBrightness = 0;
    Long ApprContrast = 0;
    bool ApprInvert = false;
    Long ApprGamma = 0;  ///< column Gamma_INT
    String ApprCrop;     ///< the crop, column AnatomicRegion

    // ---- held for the client, not stored -----------------------------------------------------------

    bool FailedToLoadImage = false;
    bool ThumbnailOnly = false;
    Long OrgHeight = 0;
    Long OrgWidth = 0;

    const Interface& Describe() const override;

private:
    Long GetFrameNumber() const { return FrameNumber; }
    void PutFrameNumber(Long number) { FrameNumber = number; }
    void ReadColumns(const Ref<Recordset>& rs, bool& repairing);
    void LookForRow(bool checkExistOnID, const Ref<Connection>& con);
    void TakeOverRow(const Ref<Connection>& con);
    void Write(const Ref<Connection>& con, const String& teeth);
    void Insert(const Ref<Connection>& con, const String& teeth) const;
    void Update(const Ref<Connection>& con, const String& teeth) const;
    Long ComputedDPI() const;

    Completion loadCompletion_;
    std::optional<Ref<cComments>> comments_;  // none until they are asked for; null if a client sets it so
};

}  // namespace OXClass
