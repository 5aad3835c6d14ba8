#include "cards/SlotPlacing.h"
#include "cards/cImagecard.h"
#include "images/cImage.h"
#include "platform/component/dispatch/Interface.h"
#include "series/cSerie.h"

namespace OXClass {

using namespace Platform;

namespace {

/// Returns a new card of the series, without images. Raises as `SaveAsIC` for the canvas and the first
/// member.
Ref<cImagecard> CardOf(const cSerie& series, const cTemplate& layout, const Collection& images) {
    Ref<cImagecard> card = New<cImagecard>();
    card->ICCreateDate = series.SeriesDateTime;
    card->ICLastUpdate = card->ICCreateDate;
    card->ICName = series.SeriesName;
    card->ICHeight = CLng(layout.TCHeight);
    card->ICWidth = CLng(layout.TCWidth);
    card->ICPID = CLng(Invoke(*To<Ref<Object>>(images.At(1)), "PatID", MemberKind::Get, {}));
    return card;
}

}  // namespace

void cSerie::SaveAsIC(const Ref<Connection>& Con, const Ref<Enumerable>& colImages) const {
    if (colImages->Members().Count() == 0) return;
    const Ref<cTemplate> layout = New<cTemplate>();
    layout->GetTemplate(Con, 0, TemplateID);
    const Ref<cImagecard> card = CardOf(*this, *layout, colImages->Members());
    SlotPlacing placing(*layout);
    Long count = 0;
    for (const cImage& image : Each<cImage>(*colImages)) {
        ++count;
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placed->ImageID = image.ID;
        placed->IASequence = count;
        placing.Place(*placed, image.FrameNumber);
        placed->ID = -count;
        card->ImagecardAttributes->Add(placed, "K" + CStr(placed->ID));
    }
    card->Save(Con);
}

}  // namespace OXClass
