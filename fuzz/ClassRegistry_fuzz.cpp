#include "Check.h"

#include "platform/component/registry/ClassRegistry.h"
#include "platform/component/binary/Identifier.h"
#include "platform/runtime/Error.h"

using namespace Platform;

/// Any text is a registry file's or is refused with the one number for it; what was read has identifiers
/// that are some, and its own text reads as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text(reinterpret_cast<const char*>(data), size);
    std::vector<ClassRegistry::LibraryRecord> libraries;
    try {
        libraries = ClassRegistry::Parse(text);
    } catch (const Error& failure) {
        CHECK(failure.Number == err::PathFileAccess && !failure.Description.empty());
        return 0;
    }
    for (const auto& library : libraries) {
        CHECK(IsGuid(library.Identifier));
        for (const auto& found : library.Classes) CHECK(IsGuid(found.Identifier));
    }
    const String printed = ClassRegistry::Print(libraries);
    CHECK(ClassRegistry::Parse(printed) == libraries);
    CHECK(ClassRegistry::Print(ClassRegistry::Parse(printed)) == printed);
    return 0;
}
