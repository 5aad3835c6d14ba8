#include "anatomy/cTeeth.h"

#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<cTeeth>(
        "A collection of teeth, counted from 1.",
        {
            Operation<&cTeeth::Add>("Add",
                                    "Adds a tooth at the end and returns it. Checks neither the number nor the key.",
                                    {{"Selected", "True if the tooth is selected."},
                                     {"TNumber", "The FDI number of the tooth, such as 11."},
                                     Optional("sKey", Help::NewKey)}),
            ReadOnly<&cTeeth::Item>(
                "Item", "Returns a tooth, or null if the position or key doesn't exist.",
                {{"vntIndexKey", "The position from 1, or the key, in the full set Tooth and the number: Tooth11."}},
                DefaultMember),
            ReadOnly<&cTeeth::Count>("Count", "The number of teeth; 52 in the full set."),
            Operation<&cTeeth::Remove>("Remove",
                                       "Removes a tooth; raises 9 for a position and 5 for a key that doesn't exist.",
                                       {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cTeeth::NewEnum>("NewEnum", "An enumerator over the teeth, for a For Each loop.", {},
                                       EnumeratorMember),
        });
    return self;
}

}  // namespace OXClass
