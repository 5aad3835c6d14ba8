#include "anatomy/cTooth.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Interface& cTooth::Describe() const {
    static const Interface& self = InterfaceOf<cTooth>(
        "One tooth, with the mark that it is selected.",
        {
            Property<&cTooth::TNumber>("TNumber",
                                       "The FDI number: 11 to 48 for permanent teeth, 51 to 85 for primary teeth."),
            Property<&cTooth::Selected>("Selected", "True if the tooth is selected; false in a new object."),
        });
    return self;
}

}  // namespace OXClass
