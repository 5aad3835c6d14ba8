#include "cards/cImageManipulation.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cImageManipulation::Describe() const {
    using Self = cImageManipulation;
    static const Interface& self = InterfaceOf<Self>(
        "A recorded manipulation of a placed image, such as a rotation or a crop.",
        {
            Property<&Self::ManipulationType>(
                "ManipulationType",
                "The kind of the manipulation; 0 in a new object. The kind UndoStop is never stored."),
            Property<&Self::LongParameter>(
                "LongParameter", "A number whose meaning the client defines for each kind, such as an angle."),
            Property<&Self::StringParameter>(
                "StringParameter",
                "A text of the client; for ManCosmetic three digits of the storage root and the path of a file."),
            Property<&Self::ImageManipulationID>(
                "ImageManipulationID",
                "The key of the row that was loaded; a save ignores it and always writes new rows."),
            Property<&Self::UndoImageHandle>(
                "UndoImageHandle", "A number for the client's undo; not stored, and the library never sets it."),
            Property<&Self::IAID>("IAID",
                                  "The key of the placed image, if the client sets it; neither loaded nor stored."),
        });
    return self;
}

}  // namespace OXClass
