#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One image slot of a template: where it lies on the canvas, how large it is, in which order it is
/// filled, and which anatomic group it expects. One row of TemplateAttribute_T.
///
/// Places and sizes are on one scale with those of the cards. An object belongs to one thread.
class cTemplateAttribute final : public Object {
public:
    static constexpr const char* ClassName = "cTemplateAttribute";

    Long TANumberInTemplate = 0;  ///< an image of this `FrameNumber` lands here
    double TAHeight = 0;
    double TAWidth = 0;
    double TAPosY = 0;
    double TAPosX = 0;
    Long TARotation = 0;
    Long TASequence = 0;
    Long AIID = 0;  ///< the number of the slot's anatomic group
    Long TCID = 0;  ///< the key of the owning template
    Long ID = 0;    ///< the key of the slot; 0 means new

    /// Writes the slot and returns true. `ID` 0 inserts, and `ID` becomes the highest key of its template
    /// and sequence. Any other `ID` updates the row whose key is `AIID`, which is the slot's own row only
    /// where both are equal; that no row was hit is not noticed. Raises what the database raises; after a
    /// failed read of the key the row exists and `ID` is still 0.
    bool Save(const Ref<Connection>& Con);

    String TAADName;          ///< the name of the anatomic group
    String TAAnatomicRegion;  ///< held for the client, not stored
    String TAImagepath;       ///< stored, never loaded
    String TAComments;
    float TAProportions = 0;

    /// Fills the slot from the current row of a template's slots. Raises 94 for a null in the rotation,
    /// sequence, a key or the group's name, and 13 or 6 for what can't be converted.
    void ReadRow(const Ref<Recordset>& rs);

    const Interface& Describe() const override;

private:
    String InsertStatement() const;
    String UpdateStatement() const;
};

}  // namespace OXClass
