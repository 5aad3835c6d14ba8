#pragma once

#include "cards/cTemplateAttribute.h"
#include "frame/SharedTypes.h"

namespace OXClass {

/// A named page layout: a canvas and an ordered set of image slots. One row of TemplateCard_T with its
/// rows of TemplateAttribute_T.
///
/// It has two identities: its key `TCID`, and `TCDicomID`, by which a series names its layout. An object
/// belongs to one thread.
class cTemplate final : public Object {
public:
    static constexpr const char* ClassName = "cTemplate";

    /// The slots, `cTemplateAttribute` objects under "K" + their key.
    Ref<Collection> TemplateAttributes = New<Collection>();
    xigImageTypes TCForcedImageType = imggTypeSC;  ///< -1: no type is forced, as a null in the table
    Long TCDicomID = 0;
    String TCComments;
    double TCHeight = 0;
    double TCWidth = 0;
    Date TCDate;  ///< stored by the insert alone
    String TCName;
    Long TCID = 0;  ///< 0: not in the database

    /// Loads the template with this `TCDicomID`, or, where that is 0, with this key, and its slots. The
    /// one sign that there is none is `TCID` 0; everything else stays then. Raises 94 for a null name or
    /// key, and what the database raises; the members read before stay new.
    void GetTemplate(const Ref<Connection>& Con, Long TID = 0, const Long& DicomID = 0);

    /// Loads the slots of the template `TCID` anew, by number, and gives their count. Raises as
    /// `cTemplateAttribute::ReadRow`, and what the database raises; a failed open leaves the old slots, a
    /// failed read those read before it.
    Long LoadTemplateAttributes(const Ref<Connection>& Con);

    bool TCHidden = false;  ///< stored in the column TCMaximized
    Long TCChecksum = 0;    ///< the caller's number

    /// Writes the template, then all its slots, and returns true. `TCID` above 0 updates; that the row is
    /// gone is not noticed. Otherwise a row is inserted: a `TCDicomID` below 1 gets a random number from 1000
    /// to 100000999 first, `TCID` becomes the newest row of this name, and all slots are inserted under it. A
    /// slot that was taken out of the collection stays in its table. Raises what the database raises; what
    /// was written before stays written.
    bool Save(const Ref<Connection>& Con);

    const Interface& Describe() const override;

private:
    void Insert(const Ref<Connection>& con);
    String InsertStatement() const;
    String UpdateStatement() const;
};

}  // namespace OXClass
