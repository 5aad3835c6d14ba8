#pragma once

#include "platform/runtime/Types.h"

namespace OXClass {

/// The type library as interface-definition text, which a standard interface compiler makes a binary type
/// library and a header of: enumerations, records, the dual interface of each class with its members in
/// slot order, the classes. Objects of the database layer and plain collections are `IDispatch`. Any
/// thread may call.
Platform::String TypeLibraryText();

}  // namespace OXClass
