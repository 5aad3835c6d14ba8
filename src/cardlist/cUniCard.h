#pragma once

#include "cards/cImagecard.h"
#include "cards/cTemplate.h"
#include "images/cImages.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

namespace OXClass {

/// The kind of an entry in a patient's card list.
enum CardTypes : Long { ctUnknown = 0, ctImagecard = 1, ctseries = 2 };

/// One entry of a patient's card list: an image card, or a series with its study.
///
/// A new entry is empty. An entry that `cUniCards` made has its record, but no images; `LoadCardFull` adds
/// the images and their places. An object belongs to the thread that created it.
class cUniCard final : public Object {
public:
    static constexpr const char* ClassName = "cUniCard";

    // ---- identity ----------------------------------------------------------------------------------

    /// The key in the list: "IC" + the key of the image card, or "SE" + the key of the series.
    String Key;

    /// Returns the kind: a series if `Series` isn't null, otherwise an image card if `Imagecard` isn't null.
    /// After `LoadCardFull` of a series both are set. Raises nothing.
    CardTypes CardType() const;

    /// Returns the date by which the list is sorted: for an image card the date of creation, or of the last
    /// change if that is 0; for a series its own date, or that of its study if that is 0; otherwise 0. Raises
    /// 91 for a series without a date and without a study.
    Date SortDate() const;

    // ---- load --------------------------------------------------------------------------------------

    /// Loads the images of the entry into a new `colImages`, and their places into `Imagecard`. Returns 0.
    /// The caller passes kind and key of the entry; the members `CardType` and `Key` and the argument `UID`
    /// are ignored, and `Fullyloaded` stays unchanged.
    ///
    /// An image card: loads the placed images of `Imagecard` again, by its own key, numbers them from 1, and
    /// loads their images. If the card is empty, no statement asks for images. A failure to load the placed
    /// images shows a message box and isn't raised.
    ///
    /// A series: loads the images of the series `ID` and its layout into `Template`, and creates an
    /// `Imagecard` that isn't stored, with each image in the slot of its frame, or in a grid if the layout
    /// has no such slot
    /// (`SlotPlacing`). A side of the canvas that the layout doesn't define is 1000 wide or 700 high. If `ID`
    /// is 0, it becomes the key of the series, in the caller's variable too.
    ///
    /// Any other kind: `colImages` stays empty. Raises 91 if the entry has no record of the kind, 6 for more
    /// than 32767 images of a series, 13 or 6 for a frame that isn't a number, and what the loads raise. What
    /// was loaded before a failure stays.
    Long LoadCardFull(const Ref<Connection>& conn, const String& UID, Long& ID, const CardTypes& CardType);

    /// Loads as `LoadCardFull` does, by the record that the entry has, for C++ programs that continue after
    /// an image that can't be read: `colImages` omits it, and `cImages::Unread` lists it. Placed images that
    /// can't be read show a message box, and `cImagecard::LoadCompletion` reports them. Raises as
    /// `LoadCardFull`. Not part of the interface.
    void LoadReadable(const Ref<Connection>& conn);

    // ---- the record and what belongs to it ---------------------------------------------------------

    /// The image card; null for a series before `LoadCardFull`.
    Ref<cImagecard> Imagecard;
    /// The series; null for an image card.
    Ref<cSerie> Series;
    /// The study of the series. Entries of one study refer to one object.
    Ref<cStudy> Study;
    /// The layout of the series; null before `LoadCardFull`.
    Ref<cTemplate> Template;
    /// The images; null before `LoadCardFull`.
    Ref<cImages> colImages;

    // ---- held for the client -----------------------------------------------------------------------

    /// The client's mark that the entry is loaded. Nothing in the library sets it.
    bool Fullyloaded = false;
    /// An object of the client's.
    Ref<Object> mvarImgLead;

    const Interface& Describe() const override;

private:
    using LoadImages = decltype(&cImages::LoadAll4Object);

    void LoadImagecard(const Ref<Connection>& con, LoadImages load);
    void LoadSeries(const Ref<Connection>& con, Long& id, LoadImages load);
    void BuildCardForSeries();
};

}  // namespace OXClass

/// The names and numbers of `CardTypes`, for the type library.
template <>
struct Platform::EnumerationOf<OXClass::CardTypes> {
    static constexpr const char* Name = "CardTypes";
    static constexpr EnumerationValue Values[] = {
        {"ctUnknown", OXClass::ctUnknown}, {"ctImagecard", OXClass::ctImagecard}, {"ctseries", OXClass::ctseries}};
};
