#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One image slot of a template: where it is on the canvas, how large, in which order it is filled, and which
/// anatomic group it expects. One row of TemplateAttribute_T.
///
/// Positions and sizes are fractions of the canvas, from 0 to 1, counted from its top left, as those of the
/// images on a card. An object belongs to the thread that created it.
class cTemplateAttribute final : public Object {
public:
    static constexpr const char* ClassName = "cTemplateAttribute";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the slot isn't stored. Column TemplateImageId.
    Long ID = 0;
    /// The key of the template. Column TemplateID.
    Long TCID = 0;
    /// The number of the slot: an image with this `FrameNumber` is placed here. A null, a negative number and
    /// 0 read as `TASequence`.
    Long TANumberInTemplate = 0;

    // ---- load and save -----------------------------------------------------------------------------

    /// Fills the slot from the current row of a template's slots. A measure that is null or 0 reads from the
    /// preview's column, and as 0 if that is null too.
    ///
    /// Raises 94 for a null rotation, sequence, key or group name, 13 or 6 for a value that doesn't convert,
    /// 3265 for a missing column; members that were read before keep their new values. Not part of the
    /// interface.
    void ReadRow(const Ref<Recordset>& rs);

    /// Writes the slot. Returns true.
    ///
    /// If `ID` is 0, inserts a row, and `ID` becomes the highest key with this template and sequence.
    /// Otherwise updates the row whose key is `AIID`: that is the row of the slot only if `ID` and `AIID` are
    /// equal. An update that changes no row isn't detected. Raises what the database raises. If the key of a
    /// new row can't be read back, the row is written and `ID` is still 0.
    bool Save(const Ref<Connection>& Con);

    // ---- place in the template ---------------------------------------------------------------------

    /// The top left corner: columns TAFullViewPosX and TAFullViewPosY.
    double TAPosX = 0;
    double TAPosY = 0;
    /// The size: columns TAFullViewWidth and TAFullViewHeight.
    double TAWidth = 0;
    double TAHeight = 0;
    /// Height divided by width. A null, an empty text and 0 read as 0.7.
    float TAProportions = 0;
    Long TARotation = 0;  ///< a number of the client's, 0 for upright
    Long TASequence = 0;  ///< the order of filling, from 1

    // ---- anatomic group ----------------------------------------------------------------------------

    /// The number of the group that the slot expects, `cAnatomicDescription::ADId`. Column TATGId; a null and
    /// a negative number read as 0.
    Long AIID = 0;
    /// The name of that group. Column TAGroupName.
    String TAADName;
    String TAAnatomicRegion;  ///< held for the client, not stored

    // ---- the rest of the row -----------------------------------------------------------------------

    String TAComments;
    String TAImagepath;  ///< a save stores it, no load reads it

    const Interface& Describe() const override;

private:
    String InsertStatement() const;
    String UpdateStatement() const;
};

}  // namespace OXClass
