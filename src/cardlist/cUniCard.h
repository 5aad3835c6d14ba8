#pragma once

#include "cards/cImagecard.h"
#include "cards/cTemplate.h"
#include "images/cImages.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

namespace OXClass {

/// What an entry of a patient's card list holds.
enum CardTypes : Long { ctUnknown = 0, ctImagecard = 1, ctseries = 2 };

/// One entry of a patient's card list: an image card, or a series with its study. A new one is empty; one
/// from the list knows its record; `LoadCardFull` adds its images and what they are laid out on. An object
/// belongs to one thread.
class cUniCard final : public Object {
public:
    static constexpr const char* ClassName = "cUniCard";

    Ref<Object> mvarImgLead;  ///< an object of the client's own; the library never looks at it

    /// The date by which the list is sorted: an image card's creation or else its last change, a
    /// series' own or else its study's; 0 for neither kind. Raises 91 for an undated series without a study.
    Date SortDate() const;

    String Key;  ///< "IC" + the card's key, or "SE" + the series'

    /// What it holds; a series, where both are present, as after `LoadCardFull`.
    CardTypes CardType() const;

    /// Loads the images of the entry into `colImages`, and what they are laid out on; returns 0. The
    /// caller passes the entry's kind and key; what the entry itself says is not looked at, `UID` neither.
    ///
    /// An image card's placed images are loaded anew and numbered from 1, then their images; without any,
    /// no image is asked for. A series is never loaded again: its images, its layout into `Template`, and
    /// an `Imagecard` that stands in memory only, with each image in the slot of its frame or in a grid of
    /// five columns, on a canvas of 1000 by 700 where the layout has no size. `ID` 0 takes the series' key,
    /// in the caller's variable too. Any other kind leaves an empty `colImages`. `Fullyloaded` stays.
    ///
    /// Raises 91 where the entry lacks the record of this kind, 6 for more than 32767 images of a series,
    /// and what the loads raise; what was loaded before a failure stays.
    Long LoadCardFull(const Ref<Connection>& conn, const String& UID, Long& ID, const CardTypes& CardType);

    /// The same for the record that the entry has, for programs in C++ that go on past an image that can't be
    /// read: it is not in `colImages`, whose `Unread` tells it. Placed images that can't be read are told in
    /// a text box, and by `LoadCompletion` of `Imagecard`. Raises as `LoadCardFull`. No part of the interface.
    void LoadReadable(const Ref<Connection>& conn);

    Ref<cTemplate> Template;    ///< the layout of a series, after `LoadCardFull`
    bool Fullyloaded = false;   ///< the client's mark; the list sets it false
    Ref<cStudy> Study;          ///< of a series; entries of one study share it
    Ref<cSerie> Series;         ///< nothing for an image card
    Ref<cImagecard> Imagecard;  ///< nothing for a series that isn't loaded
    Ref<cImages> colImages;     ///< nothing before `LoadCardFull`

    const Interface& Describe() const override;

private:
    using LoadImages = decltype(&cImages::LoadAll4Object);

    void LoadImagecard(const Ref<Connection>& con, LoadImages load);
    void LoadSeries(const Ref<Connection>& con, Long& id, LoadImages load);
    void BuildCardForSeries();
};

}  // namespace OXClass

template <>
struct Platform::EnumerationOf<OXClass::CardTypes> {
    static constexpr const char* Name = "CardTypes";
    static constexpr EnumerationValue Values[] = {{"ctUnknown", 0}, {"ctImagecard", 1}, {"ctseries", 2}};
};
