#include "people/IntendedRecipients.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Ref<cStringItem> IntendedRecipients::Add(const String& str, const Long& ID, const String& sKey) {
    const Ref<cStringItem> item = New<cStringItem>();
    item->str = str;
    item->ID = ID;
    return AddMember(item, sKey);
}

const Interface& IntendedRecipients::Describe() const {
    static const Interface& self = InterfaceOf<IntendedRecipients>({
        Operation<&IntendedRecipients::Add>("Add", {"str", "ID", Optional("sKey")}),
        ReadOnly<&IntendedRecipients::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&IntendedRecipients::Count>("Count"),
        Operation<&IntendedRecipients::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&IntendedRecipients::NewEnum>("NewEnum", {}, EnumeratorMember),
    });
    return self;
}

}  // namespace OXClass
