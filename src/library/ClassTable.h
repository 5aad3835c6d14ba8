#pragma once

#include "platform/component/Interface.h"

/// The public classes, and what a client finds them by.
namespace OXClass {

/// One public class.
struct ClassEntry {
    const char* Name;     ///< "cPatient"; its interface is "_cPatient"
    const char* ClassID;  ///< identifiers, fixed for ever: "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"
    const char* InterfaceID;
    bool IsGlobal;  ///< callers on a thread share one instance without creating it
    Platform::Ref<Platform::Object> (*Make)();  ///< a new object of the class
};

/// All public classes, in their documented order. Any thread may call.
std::span<const ClassEntry> ClassTable();

}  // namespace OXClass
