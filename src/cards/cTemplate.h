#pragma once

#include "cards/cTemplateAttribute.h"
#include "frame/SharedTypes.h"

namespace OXClass {

/// A named page layout: a canvas and an ordered set of image slots. One row of TemplateCard_T with its rows
/// of TemplateAttribute_T.
///
/// A template has two identifiers: `TCID` is the key of the row, `TCDicomID` the number that a series names.
/// An object belongs to the thread that created it.
class cTemplate final : public Object {
public:
    static constexpr const char* ClassName = "cTemplate";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 or below if the template isn't stored. Column
    /// TemplateID.
    Long TCID = 0;
    /// The number by which a series names its layout. Up to 999 for the standard layouts. A null reads as 0.
    Long TCDicomID = 0;
    String TCName;

    // ---- load and save -----------------------------------------------------------------------------

    /// Loads the template with the number `DicomID`, or with the key `TID` if `DicomID` is 0, and its slots.
    /// If there is none, sets `TCID` to 0 and changes nothing else.
    ///
    /// A side of the canvas that is null, empty or 0 reads from the preview's column. Raises 94 for a null
    /// name or key, 13 for a negative side or a value that doesn't convert, what `LoadTemplateAttributes`
    /// raises and what the database raises; members that were read before keep their new values.
    void GetTemplate(const Ref<Connection>& Con, Long TID = 0, const Long& DicomID = 0);

    /// Replaces the slots by those of the template `TCID`, in the order of their numbers, and returns how
    /// many there are. Raises as `cTemplateAttribute::ReadRow`, and what the database raises. If the open
    /// fails, the old slots stay; if a row can't be read, the collection holds those before it.
    Long LoadTemplateAttributes(const Ref<Connection>& Con);

    /// Writes the template, then its slots in their order. Returns true. Opens no transaction.
    ///
    /// If `TCID` is above 0, updates the row; an update of a row that no longer exists changes nothing and
    /// isn't detected. Otherwise inserts a row: a `TCDicomID` below 1 first becomes a random number from 1000
    /// to 100000999, which isn't checked to be free; `TCID` becomes the highest key with this name, and each
    /// slot becomes a new slot of it. A slot that a client removed from the collection stays in the table.
    ///
    /// Raises 5 on an insert if `TCDate` is outside the years 100 to 9999, 91 if the collection is null, 13
    /// for a member that isn't a slot, 94 if the key of a new template can't be read back, and what
    /// `cTemplateAttribute::Save` and the database raise. What was written before a failure stays written,
    /// and a random number stays in `TCDicomID`.
    bool Save(const Ref<Connection>& Con);

    // ---- canvas and slots --------------------------------------------------------------------------

    /// The size of the canvas in pixels: columns TCFullViewWidth and TCFullViewHeight.
    double TCWidth = 0;
    double TCHeight = 0;
    /// The slots: `cTemplateAttribute` objects, after a load under the keys "K" + `ID`.
    Ref<Collection> TemplateAttributes = New<Collection>();

    // ---- the rest of the row -----------------------------------------------------------------------

    /// The kind of the images that are placed by this template; -1 if none is forced. A null reads as -1.
    xigImageTypes TCForcedImageType = imggTypeSC;
    /// The date of the template. An insert stores it, an update doesn't; a null leaves it unchanged.
    Date TCDate;
    /// The client's mark that the template is hidden. Column TCMaximized, other than 0 for true.
    bool TCHidden = false;
    Long TCChecksum = 0;  ///< the client's number
    String TCComments;

    const Interface& Describe() const override;

private:
    void Insert(const Ref<Connection>& con);
    String InsertStatement() const;
    String UpdateStatement() const;
};

}  // namespace OXClass
