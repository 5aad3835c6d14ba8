#pragma once

#include "anatomy/cTeeth.h"

namespace OXClass {

/// The kind of an anatomic description. Column StandardGroupName.ADType; a row can hold other numbers too.
enum AnaDescType : Long {
    adtIntraOral = 0,  ///< `ADPriStructure` is a tooth string
    adtGeneralDX = 1,  ///< any other X-ray image
    adtAll = 999       ///< for clients; no operation here treats it in a special way
};

/// A named standard group: the anatomy that an image or a slot shows, by side, region, modifier and
/// structure, and for an intra-oral group by its teeth. One row of StandardGroupName.
///
/// The object has two keys: `ID` is that of the row, `ADId` that of the group, which several rows may share.
/// An object belongs to the thread that created it.
class cAnatomicDescription final : public Object {
public:
    static constexpr const char* ClassName = "cAnatomicDescription";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 or below if it isn't stored. Column StandardNameID.
    Long ID = 0;
    /// The number of the group, column TGId: the number that slots name. 0 or below: the next save of a new
    /// row assigns one.
    Long ADId = 0;
    /// The name. A load reads it only if it is empty.
    String ADName;

    // ---- load, save, delete ------------------------------------------------------------------------

    /// Loads the first row of the group `lADId`. Changes nothing and raises nothing if the group has no row.
    ///
    /// For an intra-oral row, `cTeeth` becomes the full set with the teeth of the tooth string selected, for
    /// any other row the full set with none selected. The region "T-D1217" reads as "T-D1213". Raises 94 for
    /// a null key, comment, order or type, 91 if the tooth string names something else than a tooth, and what
    /// the database raises; members that were read before the failure keep their new values.
    void LoadSGN(const Ref<Connection>& Con, const Long& lADId);

    /// Writes the row: an update if `ID` is above 0, otherwise an insert in a transaction of its own, which
    /// sets `ID`. Returns the boolean true, or false after any failure; raises nothing.
    ///
    /// An intra-oral row first stores its selected teeth in `ADPriStructure`. A new row without a group
    /// number gets its key + 1000, which a second statement stores after the commit. True doesn't cover that
    /// second statement, nor an update whose row no longer exists. A single quote that isn't paired makes the
    /// save fail if it is in `ADLaterality`, `ADAnaRegion`, `ADAnaRegionMod` or `ADPriStructure`.
    ///
    /// A failure after the begin of the transaction leaves it open on the caller's connection. After false
    /// the caller must end it with `RollbackTrans`, which raises 0x8004D00E if none is open; otherwise all
    /// that the connection stores later is lost when it closes.
    Variant SaveSGN(const Ref<Connection>& Con);

    /// Deletes the row of `ID`, if it exists. Slots that name its group, and all members, stay unchanged.
    /// Raises what the database raises.
    void DeleteSGN(const Ref<Connection>& Con);

    /// Deletes all rows of the group `ADId`, as `DeleteSGN` deletes one.
    void DeleteSGNOnTGId(const Ref<Connection>& Con);

    // ---- anatomy -----------------------------------------------------------------------------------

    AnaDescType ADType = adtIntraOral;
    /// The side: "R", "L", "B" for both, or empty.
    String ADLaterality;
    /// The code of the region, such as "T-11170".
    String ADAnaRegion;
    /// The code of the region modifier, such as "T-5100B".
    String ADAnaRegionMod;
    /// The primary structure. For an intra-oral row the tooth string, which each save replaces.
    String ADPriStructure;

    // ---- teeth -------------------------------------------------------------------------------------

    /// Returns the teeth. `cTeeth` never returns null: it creates an empty collection if there is none. `SetcTeeth`
    /// replaces the collection without copying it; the argument may be null.
    const Ref<OXClass::cTeeth>& cTeeth() const;
    void SetcTeeth(const Ref<OXClass::cTeeth>& teeth) { teeth_ = teeth; }

    /// Replaces `cTeeth` by a new collection with the full set of 52 teeth, none selected. A collection that
    /// a client holds from before stays unchanged.
    void InitCollection();

    /// Returns the selected teeth as a tooth string in the order of the full set, or without commas if
    /// `bComm` is false. Returns the empty text for an empty collection. Raises 91 if a collection that isn't
    /// empty lacks one of the 52 teeth.
    String GetAsString(const bool& bComm = true) const;

    /// Calls `InitCollection` and then selects the teeth of a tooth string. `oTeeth` is ignored. Raises 91 if
    /// the string names something else than a tooth, and 6 if it has more than 32767 characters; the teeth
    /// before it stay selected.
    void SetTeethFromString(const String& sIOstring, const Ref<OXClass::cTeeth>& oTeeth);

    // ---- the rest of the row -----------------------------------------------------------------------

    Long ADOrderNo = 0;  ///< the position in lists, column OrderNo
    String ADComments;   ///< column Comments

    const Interface& Describe() const override;

private:
    String UpdateStatement() const;
    String InsertStatement() const;
    bool Write(const Ref<Connection>& con);

    mutable Ref<OXClass::cTeeth> teeth_;  // null until the first use
};

}  // namespace OXClass

/// The names and numbers of `AnaDescType`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::AnaDescType> {
    static constexpr const char* Name = "AnaDescType";
    static constexpr EnumerationValue Values[] = {
        {"adtIntraOral", OXClass::adtIntraOral}, {"adtGeneralDX", OXClass::adtGeneralDX}, {"adtAll", OXClass::adtAll}};
};
