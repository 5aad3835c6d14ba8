#include "images/cComments.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Ref<cStringItem> cComments::Add(const String& str, const Long& ID, const Date& DateStamp, const String& Signature,
                                const String& sKey) {
    const Ref<cStringItem> item = New<cStringItem>();
    item->str = str;
    item->ID = ID;
    item->DateStamp = DateStamp;
    item->Signature = Signature;
    return AddMember(item, sKey);
}

void cComments::AddObj(const Ref<cStringItem>& Obj, const Long& Index, const String& sKey) {
    const bool first = sKey.empty() && Count() == 0;
    AddMember(Obj, sKey, first ? Variant() : Variant(Index));
}

const Interface& cComments::Describe() const {
    static const Interface& self = InterfaceOf<cComments>({
        Operation<&cComments::Add>("Add", {"str", "ID", "DateStamp", "Signature", Optional("sKey")}),
        ReadOnly<&cComments::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&cComments::Count>("Count"),
        Operation<&cComments::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&cComments::NewEnum>("NewEnum", {}, EnumeratorMember),
        Operation<&cComments::AddObj>("AddObj", {"Obj", "Index", Optional("sKey")}),
    });
    return self;
}

}  // namespace OXClass
