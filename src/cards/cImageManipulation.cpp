#include "cards/cImageManipulation.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cImageManipulation::Describe() const {
    using Self = cImageManipulation;
    static const Interface& self = InterfaceOf<Self>({
        Property<&Self::ManipulationType>("ManipulationType"),
        Property<&Self::LongParameter>("LongParameter"),
        Property<&Self::StringParameter>("StringParameter"),
        Property<&Self::ImageManipulationID>("ImageManipulationID"),
        Property<&Self::UndoImageHandle>("UndoImageHandle"),
        Property<&Self::IAID>("IAID"),
    });
    return self;
}

}  // namespace OXClass
