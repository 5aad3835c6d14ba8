#include "cardlist/cUniCard.h"

#include "cards/SlotPlacing.h"
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
    static const Interface& self = InterfaceOf<cUniCard>({
        PropertyGetFirst<&cUniCard::mvarImgLead>("mvarImgLead"),
        ReadOnly<&cUniCard::SortDate>("SortDate"),
        Property<&cUniCard::Key>("Key"),
        ReadOnly<&cUniCard::CardType>("CardType"),
        Operation<&cUniCard::LoadCardFull>("LoadCardFull", {"conn", "UID", "ID", "CardType"}),
        Property<&cUniCard::Template>("Template"),
        Property<&cUniCard::Fullyloaded>("Fullyloaded"),
        Property<&cUniCard::Study>("Study"),
        Property<&cUniCard::Series>("Series"),
        Property<&cUniCard::Imagecard>("Imagecard"),
        Property<&cUniCard::colImages>("colImages"),
    });
    return self;
}

}  // namespace OXClass
