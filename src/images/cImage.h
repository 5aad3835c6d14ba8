#pragma once

#include "frame/Completion.h"
#include "frame/SharedTypes.h"
#include "images/cComments.h"

namespace OXClass {

/// A whole number that is kept as it was read, and converted when it is asked for; 0 while nothing was.
class LateNumber {
public:
    LateNumber() = default;
    LateNumber(Long value) : value_(value) {}
    explicit LateNumber(Variant read) : value_(std::move(read)) {}

    /// Raises 13 or 6 where what was read is no such number.
    operator Long() const { return CLng(value_); }

private:
    Variant value_;
};

/// The record of one stored image: a row of ImageBild_T, and its comments.
///
/// The picture lies in a file under a storage root: `URL` is its path as stored, `RootId` the root, and
/// nothing here joins or touches them. An object belongs to one thread.
class cImage final : public Object {
public:
    static constexpr const char* ClassName = "cImage";

    String AnaRegionMod;  ///< the coded anatomy, which hanging derives from `sTeeth` where it is empty
    String AnaRegion;
    String Laterality;  ///< "L", "R", "B" or empty
    String instanceUID;
    Long seriesID = 0;
    Long studyID = 0;
    Long ImageNumberInSeries = 0;
    Long Pregnant = 0;  ///< 10 is stored as null; never read back
    Long RootId = 0;
    Long DPIX = 0;
    Long DPIY = 0;
    Long MirrRotStatus = 0;  ///< carried, not interpreted
    Date dateTime;           ///< when it was captured; stored by the insert alone
    Long PatID = 0;
    bool Approved = false;
    String sTeeth;  ///< tooth string
    xigImageTypes ImageType = imggTypeSC;

    /// Writes the image, and then its comments that aren't stored yet. Returns 0.
    ///
    /// `ID` 0 inserts, and `ID` becomes the newest row of this `URL` and patient; any other updates that
    /// row, which is not tested to exist: if it is gone, nothing is written and nothing tells it. No
    /// transaction is opened. Raises 6 for a `Pregnant` beyond 16 bits, 0x80040E14 for a quote in a text that
    /// the statement takes unescaped (`CRC`, `instanceUID`, `ApprCrop`, `Laterality`, `AnaRegion`,
    /// `AnaRegionMod`, `sTeeth`; on the update also `CapturePerson`, `RespPerson`), 91 when the comments were
    /// put to nothing, and what the database raises. What was written before a failure stays written; a
    /// repeated save writes only the comments that are still missing.
    Long Save(const Ref<Connection>& Con);

    Long ID = 0;  ///< the row's counter; 0: there is no row yet
    String URL;
    String HWSourceTxt;

    /// The comments; made empty on first use, so never nothing. They may be put to nothing, until the
    /// next use.
    const Ref<cComments>& Comments();
    void SetComments(const Ref<cComments>& comments) { comments_ = comments; }

    LateNumber FrameNumber;  ///< the place of the layout that shows it; 0: none
    String Root_RootDirectory;
    Integer DicomStatus = 0;

    /// Loads the row with this counter. Returns false and changes nothing if there is none, or if a name
    /// in the statement is unknown to the database; true otherwise, even if `GetFromRecord` stopped
    /// early. Doesn't load the comments. Raises what else the database raises.
    bool GetImage(const Ref<Connection>& Con, Long ImageBildID);

    /// Puts a comment in front of the list, so that the newest added comes first. `saved` tells that it
    /// stands in the table; another one is written by the next save. `Action` and `objpointer` have no
    /// effect. Raises as `cComments::AddObj`.
    void addComment(const String& sComment, const String& sSignature, const Date& commentDate,
                    const bool& saved, const String& Action = {}, const Long& objpointer = 0);

    /// Loads the comments, newest first, once: with any comment in the list it does nothing. Raises 94
    /// for a null in a comment's text, signature or date, and what the database raises; those read
    /// before stay.
    void GetComments(const Ref<Connection>& Con);

    bool ApprInvert = false;  ///< display settings
    Long ApprContrast = 0;
    Long ApprBrightness = 0;
    Long ApprGamma = 0;
    String RespPerson;
    String CapturePerson;  ///< stored by the update alone

    /// How the last `GetImage` or `GetFromRecord` ended, those of `cImages` too. An object whose reading a
    /// failure ended holds old values in the members behind that column: saving it stores them. No part of
    /// the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }

    /// Fills the object from the current row of `rs`, column by column in a fixed order; `rs` doesn't
    /// move, and the comments stay. A column that is missing or can't be read ends the reading there
    /// without a failure to the caller: the members before it are new, the others old, and `LoadCompletion` says so
    /// to programs in C++. Only where a record lacks
    /// "ImageBild_T.RootId", "RootId" is read in its place; that fails to the caller (3265).
    void GetFromRecord(const Ref<Recordset>& rs);

    String CRC;  ///< the caller's check value
    String Key;  ///< the key under which `cImages::AddObject` filed it
    Long ExposureTime_ms = 0;
    Long Current_mA = 0;
    Long Voltage_kV = 0;
    bool FailedToLoadImage = false;  ///< held for the client, not stored; so are the next three
    bool ThumbnailOnly = false;
    Long OrgHeight = 0;
    Long OrgWidth = 0;
    String ApprCrop;
    Long SubType = 0;
    Integer DCMDerived = 0;

    /// `Save`, with a look for the image first, so that it isn't stored twice; stores at most 180
    /// characters of `sTeeth`.
    ///
    /// The look goes by `ID` where `CheckExistOnID` is true and `ID` isn't 0, else by `instanceUID`
    /// where that isn't empty, else there is none. If it finds nothing, `ID` becomes 0 and a row is
    /// inserted. If it finds a row and `ID` is 0, `ID` becomes the row's; comments that the row has
    /// already leave the object; and a stored "Deleted ..." mark goes, if the image has a `URL` again.
    /// Raises as `Save`; a failure of the look leaves everything unwritten.
    Long SaveEx(const bool& CheckExistOnID, const Ref<Connection>& Con);

    /// Writes the comments that aren't stored yet, as `Save` does behind the image, and nothing else. `ID`
    /// names the image, which is not tested to exist. Raises 91 when the comments were put to nothing, and
    /// what the database raises; those written before a failure stay written. No part of the interface.
    void SaveComments(const Ref<Connection>& Con);

    /// Derive the side, the jaw and the region modifier from the tooth numbers that occur in `sTeeth`.
    /// A text of no known tooth leaves the member as it was. Called by the hanging of a series, and no
    /// part of the interface.
    void DeriveLaterality();
    void DeriveAnaRegion();
    void DeriveAnaRegionMod();

    const Interface& Describe() const override;

private:
    Long GetFrameNumber() const { return FrameNumber; }
    void PutFrameNumber(Long number) { FrameNumber = number; }
    void ReadColumns(const Ref<Recordset>& rs, bool& repairing);
    void LookForRow(bool checkExistOnID, const Ref<Connection>& con);
    void TakeOverRow(const Ref<Connection>& con);
    void Write(const Ref<Connection>& con, const String& teeth);
    String InsertStatement(const String& teeth) const;
    String UpdateStatement(const String& teeth) const;
    Long ComputedDPI() const;

    Completion loadCompletion_;
    Ref<cComments> comments_ = New<cComments>();
};

}  // namespace OXClass
