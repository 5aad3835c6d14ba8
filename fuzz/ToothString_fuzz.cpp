#include "Check.h"

#include "anatomy/ToothString.h"
#include "anatomy/cAnatomicDescription.h"
#include "images/cImage.h"

using namespace OXClass;

/// Any text selects teeth or fails with 91 or 6, in the set and in the collection alike; what was selected
/// comes back through its own tooth string; and the derivations take any text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text(reinterpret_cast<const char*>(data), size);
    const Ref<cAnatomicDescription> description = New<cAnatomicDescription>();
    Long failed = 0, alsoFailed = 0;
    ToothSet teeth;
    try {
        teeth = TeethOf(text);
    } catch (const Error& failure) {
        failed = failure.Number;
    }
    try {
        description->SetTeethFromString(text, nullptr);
    } catch (const Error& failure) {
        alsoFailed = failure.Number;
    }
    CHECK(failed == alsoFailed && (failed == 0 || failed == err::ObjectNotSet || failed == err::Overflow));
    if (failed == 0) {
        CHECK(TeethOf(description->GetAsString()) == teeth);
        for (const Integer tooth : AllTeeth)
            CHECK(description->cTeeth()->Item("Tooth" + CStr(Long{tooth}))->Selected ==
                  teeth.test(static_cast<std::size_t>(tooth)));
    }
    const Ref<cImage> image = New<cImage>();
    image->sTeeth = text;
    image->DeriveLaterality();
    image->DeriveAnaRegion();
    image->DeriveAnaRegionMod();
    CHECK(image->Laterality.empty() == image->AnaRegion.empty());
    return 0;
}
