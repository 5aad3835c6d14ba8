#pragma once

#include "cards/cImageManipulation.h"
#include "frame/Completion.h"

namespace OXClass {

/// One image placed on an image card: which one, where, how large, in which order, and what was done to it
/// there. One row of ImageAttribute_T with its rows of ImageManipulation_T.
///
/// Places and sizes are on one scale with those of the template slots. An object belongs to one thread.
class cImagecardAttribute final : public Object {
public:
    static constexpr const char* ClassName = "cImagecardAttribute";
    static constexpr bool IsGlobal = true;  ///< `Global<cImagecardAttribute>()` gives the shared instance

    bool ToBeDeleted = false;  ///< the next `Save` deletes the row
    String IAComments;
    Long IASequence = 0;  ///< the order on the card, which the card numbers anew when it is saved
    double IAHeight = 0;
    double IAWidth = 0;
    double IAPosY = 0;
    double IAPosX = 0;
    Long ImageID = 0;  ///< the key of the image
    Long ICID = 0;     ///< the key of the card
    Long ID = 0;       ///< the key of the row; 0 or below means new

    /// Writes the row and its manipulations, or deletes both where `ToBeDeleted` is true, and returns
    /// true. No transaction is opened.
    ///
    /// `ID` above 0 updates, and pending messages of the program are handled then; that the row is gone is
    /// not noticed. Any other inserts, and
    /// `ID` becomes the newest row of this card, image and sequence. A deletion with `ID` below 0 does
    /// nothing, one with 0 runs and finds no row; the object stays as it was, and a cosmetic file stays
    /// on the disk. Raises what the database raises, and 94 when a cosmetic manipulation that is being
    /// deleted has no text; what was written before stays written.
    bool Save(const Ref<Connection>& conn);

    /// The manipulations, `cImageManipulation` objects without keys, in their order.
    Ref<Collection> Manipulations = New<Collection>();
    Integer IAMirrRotStatus = 0;  ///< mirroring and rotation, as the client counts them

    /// Appends the stored manipulations to `Manipulations`, texts trimmed, and returns true. What is
    /// there already stays, so a second call doubles them. A failure, a null in a row too, is swallowed:
    /// the result is false, those read before stay.
    bool LoadImageManipulations(const Ref<Connection>& conn);

    /// Replaces the stored manipulations by `Manipulations`, numbered from 1 without the `UndoStop`s.
    /// Where the last cosmetic text differs from the last one that was stored, the file that the old one
    /// names is deleted (see `CosmeticFile`).
    ///
    /// Any failure is swallowed: a quote in a text, a member that is no manipulation, more than 32767 of
    /// them, a file that may not be deleted. What was deleted before stays deleted, so that stored
    /// manipulations may be lost.
    ///
    /// Nothing tells a client of such a failure. A client that must not lose manipulations saves in a
    /// transaction of its own and reads them back before it commits; a client in C++ asks `SaveCompletion`.
    void SaveManipulations(const Ref<Connection>& conn);

    /// How the last `LoadImageManipulations` and the last `SaveManipulations`, that of `Save` too, ended. No
    /// part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }
    const Completion& SaveCompletion() const noexcept { return saveCompletion_; }

    /// Fills the object from the current row of a card's placed images; `Manipulations` stay. Raises 94
    /// for a null in a key or the sequence, and 13 or 6 for what can't be converted.
    void ReadRow(const Ref<Recordset>& rs);

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
