#pragma once

#include "cards/cImagecardAttribute.h"

namespace OXClass {

/// A page of one patient on which images are laid out: a named canvas and the images placed on it. One row
/// of ImageCard_T with its rows of ImageAttribute_T.
///
/// It keeps no link to a template. An object belongs to one thread.
class cImagecard final : public Object {
public:
    static constexpr const char* ClassName = "cImagecard";

    /// The placed images, `cImagecardAttribute` objects under "K" + their key.
    Ref<Collection> ImagecardAttributes = New<Collection>();
    Long ICWidth = 0;
    Long ICHeight = 0;
    String ICDescription;
    Date ICLastUpdate;  ///< as the client sets it: nothing here stamps a time
    Date ICCreateDate;  ///< stored by the insert alone
    String ICName;
    Long ICPID = 0;  ///< the key of the patient
    Long ICID = 0;   ///< the key of the row; 0 means new

    /// Writes the card, then its placed images in their order, and returns true. No transaction is opened.
    ///
    /// `ICID` 0 inserts: `ICID` becomes the patient's newest card, and each placed image takes it over.
    /// Any other `ICID` updates, and `ICCreateDate` stays as stored; that the row is gone is not noticed.
    /// Placed images whose `ImageID` is 0 are passed over; the others are numbered from 1, those to be
    /// deleted too, and saved. The images themselves stay in the collection. Raises 6 from the 32767th placed
    /// image on, 13 for a member that is none, and what `cImagecardAttribute::Save` and the database raise;
    /// what was written before a failure stays written. Manipulations that could not be stored raise nothing
    /// (see `cImagecardAttribute::SaveManipulations`).
    bool Save(const Ref<Connection>& conn);

    /// Loads the card with this key and its placed images; the result is always empty. The one sign that
    /// there is none is that nothing at all changes, `ICID` neither. Raises 94 for a null in a column
    /// other than the sizes, 6 for a size beyond 32 bits, 13 for what is no date or number, and what the
    /// database raises; the members read before stay new. Placed images that can't be read are told in a text
    /// box.
    Variant GetImageCard(const Ref<Connection>& conn, const Long& lICID);

    /// Loads the placed images of the card `ICID` anew, each with its manipulations, and gives their
    /// count. Never raises what the database or a row raises: a text box tells it, and the result is 0. A
    /// failed open leaves the old ones, a failed read those read before it.
    Long LoadImageAttributes(const Ref<Connection>& conn);

    /// How the last `LoadImageAttributes` ended, that of `GetImageCard` too. What it says of manipulations is
    /// each placed image's own. No part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }

    const Interface& Describe() const override;

private:
    void Insert(const Ref<Connection>& con);
    String InsertStatement() const;
    String UpdateStatement() const;

    Completion loadCompletion_;
};

}  // namespace OXClass
