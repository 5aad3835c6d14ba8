#include "people/OtherPatIDs.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Ref<cStringItem> OtherPatIDs::Add(String& str, const Long& ID, const String& sKey) {
    for (cStringItem& item : *this)
        if (item.str == str) return Ref<cStringItem>(&item);
    str = UCase(Trim(str));
    if (str.empty()) return nullptr;
    const Ref<cStringItem> item = New<cStringItem>();
    item->str = str;
    item->ID = ID;
    return AddMember(item, sKey);
}

String OtherPatIDs::GetAllAsString() const {
    String all;
    for (const cStringItem& item : *this) all += Trim(item.str) + Delimiter;
    return all.empty() ? all : Left(all, Len(all) - 1);
}

Long OtherPatIDs::TotalLengthWithDelimiter() const {
    Long total = 0;
    for (const cStringItem& item : *this) total += Len(Trim(item.str)) + 1;
    return total > 0 ? total - 1 : 0;
}

void OtherPatIDs::FillFromString(const String& sDelimitedString) {
    Clear();
    Long index = 0;
    for (String& part : SplitIgnoringCase(sDelimitedString, Delimiter)) {
        Add(part, index, "K" + CStr(index));
        ++index;
    }
}

const Interface& OtherPatIDs::Describe() const {
    static const Interface& self = InterfaceOf<OtherPatIDs>({
        Operation<&OtherPatIDs::Add>("Add", {"str", "ID", Optional("sKey")}),
        ReadOnly<&OtherPatIDs::Item>("Item", {"vntIndexKey"}, DefaultMember),
        ReadOnly<&OtherPatIDs::Count>("Count"),
        Operation<&OtherPatIDs::Remove>("Remove", {"vntIndexKey"}),
        ReadOnly<&OtherPatIDs::NewEnum>("NewEnum", {}, EnumeratorMember),
        Operation<&OtherPatIDs::GetAllAsString>("GetAllAsString"),
        Property<&OtherPatIDs::Delimiter>("Delimiter"),
        ReadOnly<&OtherPatIDs::TotalLengthWithDelimiter>("TotalLengthWithDelimiter"),
        Operation<&OtherPatIDs::FillFromString>("FillFromString", {"sDelimitedString"}),
    });
    return self;
}

}  // namespace OXClass
