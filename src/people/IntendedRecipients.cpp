#include "people/IntendedRecipients.h"

#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<IntendedRecipients>(
        "The intended recipients of results as a collection, counted from 1.",
        {
            Operation<&IntendedRecipients::Add>(
                "Add", "Adds a recipient at the end and returns it, also if an equal one exists.",
                {{"str", "The recipient, stored unchanged in the collection."},
                 {"ID", "The number that the new member gets as its ID."},
                 Optional("sKey", Help::NewKey)}),
            ReadOnly<&IntendedRecipients::Item>(
                "Item", "Returns a recipient; raises 9 for a position and 5 for a key that doesn't exist.",
                {{"vntIndexKey", Help::IndexOrKey}}, DefaultMember),
            ReadOnly<&IntendedRecipients::Count>("Count", "The number of recipients."),
            Operation<&IntendedRecipients::Remove>(
                "Remove", "Removes a recipient; raises 9 for a position and 5 for a key that doesn't exist.",
                {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&IntendedRecipients::NewEnum>("NewEnum", "An enumerator over the recipients, for a For Each loop.",
                                                   {}, EnumeratorMember),
        });
    return self;
}

}  // namespace OXClass
