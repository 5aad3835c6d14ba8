#include "people/OutsideGUID.h"

#include "people/cDoctors.h"

namespace OXClass {

using namespace Platform;

std::function<String()> OutsideGUID;

String NewOutsideGUID() { return UCase(OutsideGUID ? OutsideGUID() : New<cDoctors>()->GetGUID()); }

}  // namespace OXClass
