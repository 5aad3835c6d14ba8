#include "cardlist/cUniCard.h"

#include "cards/SlotPlacing.h"
#include "frame/Help.h"
#include "frame/Statement.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns the condition for the images that are placed on a card; the empty text if there are none.
String ImagesOn(const cImagecard& card) {
    String terms;
    for (const auto& placed : Each<cImagecardAttribute>(*card.ImagecardAttributes))
        terms += sql(" ImageBildID=", placed.ImageID, " OR");
    if (terms.empty()) return {};
    terms.resize(terms.size() - 2);
    return "WHERE" + terms;
}

}  // namespace

Date cUniCard::SortDate() const {
    switch (CardType()) {
        case ctImagecard: return Imagecard->ICCreateDate != Date{} ? Imagecard->ICCreateDate : Imagecard->ICLastUpdate;
        case ctseries: return Series->SeriesDateTime != Date{} ? Series->SeriesDateTime : Study->dateTime;
        default: return {};
    }
}

CardTypes cUniCard::CardType() const {
    if (Series) return ctseries;
    return Imagecard ? ctImagecard : ctUnknown;
}

Long cUniCard::LoadCardFull(const Ref<Connection>& conn, const String&, Long& ID, const CardTypes& CardType) {
    const Ref<cUniCard> held(this);  // handlers of the connection may release it
    colImages = New<cImages>();
    if (CardType == ctImagecard) LoadImagecard(conn, &cImages::LoadAll4Object);
    if (CardType == ctseries) LoadSeries(conn, ID, &cImages::LoadAll4Object);
    return 0;
}

void cUniCard::LoadReadable(const Ref<Connection>& conn) {
    const Ref<cUniCard> held(this);  // handlers of the connection may release it
    colImages = New<cImages>();
    if (!Series) return LoadImagecard(conn, &cImages::LoadReadable);
    Long key = Series->ID;
    LoadSeries(conn, key, &cImages::LoadReadable);
}

void cUniCard::LoadImagecard(const Ref<Connection>& con, LoadImages load) {
    const Ref<cImagecard> card = Imagecard;  // handlers of the connection may replace it, and the list below
    card->LoadImageAttributes(con);
    Long sequence = 0;
    for (auto& placed : Each<cImagecardAttribute>(*card->ImagecardAttributes)) placed.IASequence = ++sequence;
    const String clause = ImagesOn(*card);
    if (clause.empty()) return;
    const Ref<cImages> images = colImages;
    (*images.*load)(con, iootImageCard, 0, clause);
}

void cUniCard::LoadSeries(const Ref<Connection>& con, Long& id, LoadImages load) {
    if (!Series) Raise(err::ObjectNotSet);
    if (id == 0) id = Series->ID;
    const Ref<cImages> images = colImages;  // handlers of the connection may replace it, and the template
    (*images.*load)(con, iootSeries, id, {});
    const Ref<cTemplate> layout = Template = New<cTemplate>();
    layout->GetTemplate(con, 0, Series->TemplateID);
    BuildCardForSeries();
}

void cUniCard::BuildCardForSeries() {
    constexpr double usualHeight = 700, usualWidth = 1000;
    Imagecard = New<cImagecard>();
    if (Template->TCHeight == 0) Template->TCHeight = usualHeight;
    if (Template->TCWidth == 0) Template->TCWidth = usualWidth;
    Imagecard->ICHeight = CLng(Template->TCHeight);
    Imagecard->ICWidth = CLng(Template->TCWidth);
    SlotPlacing placing(*Template);
    Integer count = 0;
    for (const cImage& image : *colImages) {
        count = CInt(Long{count} + 1);
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placed->IAMirrRotStatus = 1;
        placed->ImageID = image.ID;
        placed->IASequence = count;
        placed->ICID = Imagecard->ICID;
        placing.Place(*placed, image.FrameNumber);
        placed->ID = -count;
        Imagecard->ImagecardAttributes->Add(placed, "K" + CStr(placed->ID));
    }
}

const Interface& cUniCard::Describe() const {
    static const Interface& self = InterfaceOf<cUniCard>(
        "An entry of a patient's card list: an image card, or a series with its study.",
        {
            PropertyGetFirst<&cUniCard::mvarImgLead>("mvarImgLead",
                                                     "An object of the client; the library never uses it."),
            ReadOnly<&cUniCard::SortDate>(
                "SortDate",
                "The date that sorts the list: that of the image card or the series; 0 for an empty entry."),
            Property<&cUniCard::Key>(
                "Key", "The key in the card list: IC and the key of the image card, or SE and the key of the series."),
            ReadOnly<&cUniCard::CardType>(
                "CardType",
                "The kind: ctseries if Series is set, else ctImagecard if Imagecard is set, else ctUnknown."),
            Operation<&cUniCard::LoadCardFull>(
                "LoadCardFull",
                "Loads the images of the entry and their positions on the image card. Always returns 0.",
                {{"conn", Help::Connection},
                 {"UID", "Ignored."},
                 {"ID", "The key of the series; 0 for that of Series, which it then becomes. Ignored for image cards."},
                 {"CardType",
                  "The kind of the entry, 1 for an image card or 2 for a series; any other kind loads nothing."}}),
            Property<&cUniCard::Template>(
                "Template", "The template of the series; null before LoadCardFull and for an image card."),
            Property<&cUniCard::Fullyloaded>(
                "Fullyloaded", "True if the client has loaded the entry; the library never sets it to true."),
            Property<&cUniCard::Study>(
                "Study", "The study of the series; entries of one study share the object. Null for an image card."),
            Property<&cUniCard::Series>("Series", "The series; null for an image card."),
            Property<&cUniCard::Imagecard>(
                "Imagecard", "The image card; for a series, LoadCardFull creates one that is not stored."),
            Property<&cUniCard::colImages>("colImages", "The images; null before LoadCardFull."),
        });
    return self;
}

}  // namespace OXClass
