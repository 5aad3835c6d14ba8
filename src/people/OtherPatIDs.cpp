#include "people/OtherPatIDs.h"

#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<OtherPatIDs>(
        "The other identifiers of a patient as a collection, counted from 1.",
        {
            Operation<&OtherPatIDs::Add>(
                "Add", "Adds and returns an identifier; returns the equal member, or null for a blank text.",
                {{"str", "The identifier; comes back trimmed and in upper case unless a member equals it."},
                 {"ID", "The number that the new member gets as its ID."},
                 Optional("sKey", Help::NewKey)}),
            ReadOnly<&OtherPatIDs::Item>(
                "Item", "Returns an identifier; raises 9 for a position and 5 for a key that doesn't exist.",
                {{"vntIndexKey", Help::IndexOrKey}}, DefaultMember),
            ReadOnly<&OtherPatIDs::Count>("Count", "The number of identifiers."),
            Operation<&OtherPatIDs::Remove>(
                "Remove", "Removes an identifier; raises 9 for a position and 5 for a key that doesn't exist.",
                {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&OtherPatIDs::NewEnum>("NewEnum", "An enumerator over the identifiers, for a For Each loop.", {},
                                            EnumeratorMember),
            Operation<&OtherPatIDs::GetAllAsString>(
                "GetAllAsString",
                "Returns all identifiers in one text; correct only if Delimiter is a single character."),
            Property<&OtherPatIDs::Delimiter>(
                "Delimiter", "The separator between identifiers in one text; a backslash unless it is changed."),
            ReadOnly<&OtherPatIDs::TotalLengthWithDelimiter>(
                "TotalLengthWithDelimiter",
                "The length of GetAllAsString in characters, with a delimiter of one character."),
            Operation<&OtherPatIDs::FillFromString>(
                "FillFromString", "Replaces all members by the parts of a text; ignores blank parts.",
                {{"sDelimitedString",
                  "The identifiers, separated by Delimiter; the empty text empties the collection."}}),
        });
    return self;
}

}  // namespace OXClass
