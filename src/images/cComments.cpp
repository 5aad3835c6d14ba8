#include "images/cComments.h"

#include "frame/Help.h"
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
    static const Interface& self = InterfaceOf<cComments>(
        "The signed and dated comments of an image.",
        {
            Operation<&cComments::Add>("Add",
                                       "Creates a comment that is not stored yet, adds it at the end and returns it.",
                                       {{"str", "The text, of which 150 characters are stored."},
                                        {"ID", "The key of the image."},
                                        {"DateStamp", "The date and time of the comment."},
                                        {"Signature", "The name of the author, of which 150 characters are stored."},
                                        Optional("sKey", Help::NewKey)}),
            ReadOnly<&cComments::Item>("Item", "Returns a comment of the collection.",
                                       {{"vntIndexKey", Help::IndexOrKey}}, DefaultMember),
            ReadOnly<&cComments::Count>("Count", "The number of comments in the collection."),
            Operation<&cComments::Remove>(
                "Remove", "Removes a comment from the collection; a stored comment stays in the database.",
                {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cComments::NewEnum>("NewEnum", "Returns an enumerator of the members, in their order.", {},
                                          EnumeratorMember),
            Operation<&cComments::AddObj>(
                "AddObj", "Inserts an existing comment before a position.",
                {{"Obj", "The comment; the collection refers to it and makes no copy."},
                 {"Index", "The position, from 1; ignored if the collection and sKey are empty."},
                 Optional("sKey", Help::NewKey)}),
        });
    return self;
}

}  // namespace OXClass
