#pragma once

#include "cards/cImageManipulation.h"
#include "frame/Completion.h"

namespace OXClass {

/// One image placed on an image card: which image, where, how large, in which order, and its manipulations.
/// One row of ImageAttribute_T with its rows of ImageManipulation_T.
///
/// Positions and sizes are fractions of the card's canvas, from 0 to 1, counted from its top left, as those
/// of the template slots. An object belongs to the thread that created it.
class cImagecardAttribute final : public Object {
public:
    static constexpr const char* ClassName = "cImagecardAttribute";
    /// `Global<cImagecardAttribute>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 or below if it isn't stored. Column ImageAttributeID.
    Long ID = 0;
    /// The key of the card. Column ImageCardID.
    Long ICID = 0;
    /// The key of the image; 0: the save of the card skips this object. Column ImageBildId.
    Long ImageID = 0;

    // ---- load and save -----------------------------------------------------------------------------

    /// Fills the object from the current row of a card's placed images, and leaves `Manipulations` unchanged.
    /// Raises 94 for a null key or sequence, 13 or 6 for a value that doesn't convert, 3265 for a missing
    /// column; members that were read before keep their new values. Not part of the interface.
    void ReadRow(const Ref<Recordset>& rs);

    /// Writes the row and its manipulations. Returns true. Opens no transaction.
    ///
    /// If `ID` is above 0, updates the row, and the program then handles its pending messages, before the
    /// manipulations are stored; an update of a row that no longer exists changes nothing and isn't detected.
    /// Otherwise inserts a row, and `ID` becomes the highest key with this card, image and sequence. If that
    /// key can't be read back, the row is written and `ID` stays unchanged.
    ///
    /// If `ToBeDeleted` is true, deletes the row and its manipulations instead; does nothing if `ID` is
    /// negative. The object stays unchanged, and the file of a cosmetic stays too. Raises 94 for a stored
    /// cosmetic without a text, which can't be deleted. Raises what the database raises in all cases. What
    /// was written before a failure stays written.
    bool Save(const Ref<Connection>& conn);

    /// True makes the next `Save` delete the row. Not stored.
    bool ToBeDeleted = false;

    // ---- place on the card -------------------------------------------------------------------------

    /// The order on the card, from 1; each save of the card assigns it again.
    Long IASequence = 0;
    /// The top left corner: columns IAFullViewPosX and IAFullViewPosY. A null reads as 0.
    double IAPosX = 0;
    double IAPosY = 0;
    /// The size: columns IAFullViewWidth and IAFullViewHeight. A null reads as 0.
    double IAWidth = 0;
    double IAHeight = 0;
    /// Mirroring and rotation, a number of the client's. A null reads as 0.
    Integer IAMirrRotStatus = 0;
    /// Free text. A null reads as the empty text.
    String IAComments;

    // ---- manipulations -----------------------------------------------------------------------------

    /// The manipulations: `cImageManipulation` objects without keys, in their order.
    Ref<Collection> Manipulations = New<Collection>();

    /// Appends the stored manipulations to `Manipulations` in their order, and returns true. Doesn't remove
    /// those that are there, so a second call doubles them. Returns false after any failure, such as a null
    /// in a row; those before it are appended. Raises nothing.
    bool LoadImageManipulations(const Ref<Connection>& conn);

    /// Replaces the stored manipulations by `Manipulations`, numbered from 1 without those of the kind
    /// `UndoStop`. If the text of the last cosmetic differs from that of the last one that was stored,
    /// deletes the file that the old text names (`CosmeticFile`).
    ///
    /// Raises nothing, whatever fails: a single quote in a text, a member that isn't a manipulation, more
    /// than 32767 of them, a file that may not be deleted. What was deleted before a failure stays deleted,
    /// so stored manipulations can be lost. A client that must not lose them saves in a transaction of its
    /// own and reads them back before it commits; a C++ program reads `SaveCompletion`.
    void SaveManipulations(const Ref<Connection>& conn);

    /// Return how the last `LoadImageManipulations` and the last `SaveManipulations` ended, the latter also
    /// if `Save` called it. Not part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }
    const Completion& SaveCompletion() const noexcept { return saveCompletion_; }

    const Interface& Describe() const override;

private:
    void Delete(const Ref<Connection>& con) const;
    void Insert(const Ref<Connection>& con);
    String InsertStatement() const;
    String UpdateStatement() const;
    String DeleteStoredManipulations(const Ref<Connection>& con) const;
    String InsertManipulations(const Ref<Connection>& con) const;

    Completion loadCompletion_;
    Completion saveCompletion_;
};

}  // namespace OXClass
