#pragma once

#include "anatomy/cTeeth.h"

namespace OXClass {

/// The kind of an anatomic description.
enum AnaDescType : Long { adtIntraOral = 0, adtGeneralDX = 1, adtAll = 999 };

/// A named standard group: what an image shows, with its side, region, modifier and structure, and for
/// intra-oral groups the teeth. One row of StandardGroupName.
///
/// There are two keys: `ID` is the row's, `ADId` the group's number, which several rows may share. An
/// object belongs to one thread.
class cAnatomicDescription final : public Object {
public:
    static constexpr const char* ClassName = "cAnatomicDescription";

    /// Makes the full set of 52 teeth, none selected, in a new collection.
    void InitCollection();

    /// Loads the first row of a group. Where there is none, nothing changes and nothing is raised.
    ///
    /// An intra-oral row selects the teeth of its tooth string; another one gets the full set, none
    /// selected. "T-D1217" becomes "T-D1213". A name that the object has already stays. Raises 94 for a
    /// null in the key, comments, order or type, 91 for a tooth that isn't one, and what the database
    /// raises; the members read before the failure keep their new values.
    void LoadSGN(const Ref<Connection>& Con, const Long& lADId);

    /// Writes the row: an update when `ID` is above 0, otherwise an insert in a transaction of its own.
    /// An intra-oral group stores its selected teeth. A new row without a group number gets its key +
    /// 1000. Gives a boolean: true, or false for any failure, and nothing is raised. True says nothing of the
    /// update that stores the group number of a new row, which may have failed, nor of an update whose row is
    /// gone.
    ///
    /// A failure between begin and commit leaves the transaction open on the caller's connection. After false
    /// the caller ends it with `RollbackTrans`, which raises 0x8004D00E where none is open; else what the
    /// connection stores from then on is lost when it closes.
    Variant SaveSGN(const Ref<Connection>& Con);

    String ADName;
    String ADLaterality;
    String ADAnaRegion;
    String ADAnaRegionMod;
    String ADPriStructure;  ///< the primary structure, or the tooth string
    AnaDescType ADType = adtIntraOral;
    Long ID = 0;
    Long ADOrderNo = 0;
    String ADComments;

    /// The teeth; made empty on first use, so never nothing.
    const Ref<OXClass::cTeeth>& cTeeth() const;
    void SetcTeeth(const Ref<OXClass::cTeeth>& teeth) { teeth_ = teeth; }

    Long ADId = 0;  ///< the group's number

    /// Deletes this row, or all rows of this group. Raise what the database raises.
    void DeleteSGN(const Ref<Connection>& Con);
    void DeleteSGNOnTGId(const Ref<Connection>& Con);

    /// The selected teeth as a tooth string, in the order of the full set; `bComm` false leaves the
    /// commas out. Empty for an empty collection. Raises 91 for a collection that lacks one of the 52.
    String GetAsString(const bool& bComm = true) const;

    /// Makes the full set anew and selects the teeth of a tooth string. `oTeeth` is not used: a
    /// collection that was fetched before stays as it was. Raises 91 at a tooth that isn't one; those
    /// before it stay selected.
    void SetTeethFromString(const String& sIOstring, const Ref<OXClass::cTeeth>& oTeeth);

    const Interface& Describe() const override;

private:
    String UpdateStatement() const;
    String InsertStatement() const;
    bool Write(const Ref<Connection>& con);

    mutable Ref<OXClass::cTeeth> teeth_;
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::AnaDescType> {
    static constexpr const char* Name = "AnaDescType";
    static constexpr EnumerationValue Values[] = {{"adtIntraOral", 0}, {"adtGeneralDX", 1}, {"adtAll", 999}};
};
