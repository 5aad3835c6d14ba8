#include "people/cStringItem.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cStringItem::Describe() const {
    static const Interface& self = InterfaceOf<cStringItem>(
        "A text with a number: a patient identifier, a recipient or a comment of an image.",
        {
            Property<&cStringItem::ID>(
                "ID", "The key of the image of a comment; otherwise a number that its list or caller assigns."),
            Property<&cStringItem::str>("str", "The text; of a comment of an image at most 150 characters are stored."),
            Property<&cStringItem::bSaved>("bSaved",
                                           "True if the comment is stored; cImage doesn't store such a comment again."),
            Property<&cStringItem::Signature>("Signature",
                                              "The person who signed the comment; at most 150 characters are stored."),
            Property<&cStringItem::DateStamp>("DateStamp", "The date and time of the comment; 0 for other texts."),
        });
    return self;
}

}  // namespace OXClass
