#pragma once

#include "platform/component/dispatch/Interface.h"

namespace OXClass {

/// The type library as interface-definition text, which a standard interface compiler makes a binary type
/// library and a header of: enumerations, records, the dual interface of each class with its members in
/// slot order, the classes. Objects of the database layer and plain collections are `IDispatch`. Any
/// thread may call.
Platform::String TypeLibraryText();

/// The same as JSON, for programs that generate their own side of the classes: library, enumerations, classes
/// with their members (in the form of `OxDescribe`), and the enumerations and classes of the database layer
/// and the host under "host". Any thread may call.
Platform::String TypeLibraryJson();

/// The enumerations of the type library, in its order.
std::span<const Platform::Enumeration> PublicEnumerations();

}  // namespace OXClass
