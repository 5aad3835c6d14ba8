#pragma once

#include "platform/component/dispatch/Interface.h"

namespace OXClass {

/// Returns the type library as interface-definition text (IDL), from which a standard IDL compiler produces a
/// binary type library and a C header.
///
/// The text contains the enumerations, the records, the dual interface of each class with its members in slot
/// order, and the classes. Objects of the database layer and plain collections have the type `IDispatch`. Any
/// thread may call.
Platform::String TypeLibraryText();

/// Returns the type library as JSON, for programs that generate wrappers of the classes in another language.
///
/// The members are "library", "enumerations", "classes" (each with its members in the form of `OxDescribe`),
/// and "host" with the enumerations and classes of the database layer and the host. Any thread may call.
Platform::String TypeLibraryJson();

/// Returns the enumerations of the type library, in its order. They exist until the process ends. Any thread
/// may call.
std::span<const Platform::Enumeration> PublicEnumerations();

}  // namespace OXClass
