#include "anatomy/cTeeth.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Ref<cTooth> cTeeth::Add(bool Selected, Integer TNumber, const String& sKey) {
    const Ref<cTooth> tooth = New<cTooth>();
    tooth->Selected = Selected;
    tooth->TNumber = TNumber;
    return AddMember(tooth, sKey);
}

const Interface& cTeeth::Describe() const {
    static const Interface& self = InterfaceOf<cTeeth>({
        Operation<&cTeeth::Add>("Add", {"Selected", "TNumber", Optional("sKey")}),
        ReadOnly<&cTeeth::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&cTeeth::Count>("Count"),
        Operation<&cTeeth::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&cTeeth::NewEnum>("NewEnum", {}, EnumeratorMember),
    });
    return self;
}

}  // namespace OXClass
