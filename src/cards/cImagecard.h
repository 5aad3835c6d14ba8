#pragma once

#include "cards/cImagecardAttribute.h"

namespace OXClass {

/// A page of one patient on which images are placed: a canvas with a name. One row of ImageCard_T with its
/// rows of ImageAttribute_T.
///
/// A card keeps no reference to a template. Each property belongs to the column of its name, unless it names
/// another one. An object belongs to the thread that created it.
class cImagecard final : public Object {
public:
    static constexpr const char* ClassName = "cImagecard";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key of the row, a counter of the database; 0 if the card isn't stored. Column ImageCardID.
    Long ICID = 0;
    /// The key of the patient. Column PatientID.
    Long ICPID = 0;
    String ICName;

    // ---- load --------------------------------------------------------------------------------------

    /// Loads the card with the key `lICID` and its placed images. Always returns an empty value. Changes
    /// nothing, `ICID` neither, if there is no such card.
    ///
    /// A size that is null, empty or 0 reads from the preview's column, without its sign, rounded half to
    /// even. Raises 94 for a null in any other column that it reads, 6 for a size beyond 32 bits, 13 for a
    /// text that isn't a date or number, and what the database raises; members that were read before keep
    /// their new values. A failure to load the placed images isn't raised: see `LoadImageAttributes`.
    Variant GetImageCard(const Ref<Connection>& conn, const Long& lICID);

    /// Replaces the placed images by those of the card `ICID`, each with its manipulations, in the order that
    /// the database returns. Returns their number.
    ///
    /// On any failure shows a message box and returns 0; raises nothing. If the open fails, the old placed
    /// images stay; if a row can't be read, the collection holds those before it.
    Long LoadImageAttributes(const Ref<Connection>& conn);

    /// Returns how the last `LoadImageAttributes` ended, also if `GetImageCard` called it. A failure to load
    /// manipulations is reported by the `LoadCompletion` of each placed image. Not part of the interface.
    const Completion& LoadCompletion() const noexcept { return loadCompletion_; }

    // ---- save --------------------------------------------------------------------------------------

    /// Writes the card, then its placed images in their order. Returns true. Opens no transaction.
    ///
    /// If `ICID` is 0, inserts a row; `ICID` becomes the highest key of the patient's cards, and each placed
    /// image takes it over. Otherwise updates the row of `ICID`; an update of a row that no longer exists
    /// changes nothing and isn't detected. Placed images whose `ImageID` is 0 are skipped. The others are
    /// numbered from 1, those to be deleted too, and saved. They all stay in the collection. The program
    /// handles its pending messages during the save.
    ///
    /// Raises 5 for a date outside the years 100 to 9999, 91 if the collection is null, 6 at the 32767th
    /// placed image, 13 for a member that isn't a placed image, 94 if the key of a new card can't be read
    /// back, and what `cImagecardAttribute::Save` and the database raise. What was written before a failure
    /// stays written. Manipulations that could not be stored raise nothing: see
    /// `cImagecardAttribute::SaveManipulations`.
    bool Save(const Ref<Connection>& conn);

    // ---- canvas and placed images ------------------------------------------------------------------

    /// The size of the canvas in pixels: columns ICFullViewWidth and ICFullViewHeight.
    Long ICWidth = 0;
    Long ICHeight = 0;
    /// The placed images: `cImagecardAttribute` objects, after a load under the keys "K" + `ID`.
    Ref<Collection> ImagecardAttributes = New<Collection>();

    // ---- description and dates ---------------------------------------------------------------------

    String ICDescription;
    /// When the card was created, as the client sets it. An insert stores it, an update doesn't.
    Date ICCreateDate;
    /// When the card was changed last, as the client sets it. No save sets a time.
    Date ICLastUpdate;

    const Interface& Describe() const override;

private:
    void Insert(const Ref<Connection>& con);
    String InsertStatement() const;
    String UpdateStatement() const;

    Completion loadCompletion_;
};

}  // namespace OXClass
