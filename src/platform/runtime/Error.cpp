#include "platform/runtime/Error.h"

namespace Platform {

Error::~Error() = default;

String DescriptionOf(Long number) {
    switch (number) {
        case err::InvalidCall: return "Invalid procedure call or argument";
        case err::Overflow: return "Overflow";
        case err::OutOfMemory: return "Out of memory";
        case err::OutOfBounds: return "Subscript out of range";
        case err::TypeMismatch: return "Type mismatch";
        case err::FileNotFound: return "File not found";
        case err::PermissionDenied: return "Permission denied";
        case err::PathFileAccess: return "Path/File access error";
        case err::ObjectNotSet: return "Object variable or With block variable not set";
        case err::InvalidNull: return "Invalid use of Null";
        case err::ObjectRequired: return "Object required";
        case err::CannotCreate: return "ActiveX component can't create object";
        case err::NoSuchMember: return "Object doesn't support this property or method";
        case err::ArgumentNotOptional: return "Argument not optional";
        case err::WrongArguments: return "Wrong number of arguments or invalid property assignment";
        case err::DuplicateKey: return "This key is already associated with an element of this collection";
        default: return "Application-defined or object-defined error";
    }
}

void Raise(Long number) { throw Error(number, "Runtime", DescriptionOf(number)); }

void Raise(Long number, const String& description) { throw Error(number, "Runtime", description); }

}  // namespace Platform
