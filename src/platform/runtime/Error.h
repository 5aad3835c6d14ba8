#pragma once

#include "platform/runtime/Types.h"

#include <exception>

namespace Platform {

/// The only exception type of the system: a failure with the number, source and text that a client reads.
///
/// `Number` is a short number for failures of the runtime (6, 13, 94) and of the database layer itself (3021, 3265,
/// 3704), and the full signed number for failures that a database engine reports (-2147217865, no such table). `Source`
/// names the operation that failed; an operation with a prefixed handler puts its own name in front. An error is a
/// plain value: any thread may copy, keep and throw it.
class Error : public std::exception {
public:
    /// No failure: number 0 and empty texts.
    Error() = default;
    Error(Long number, String source, String description)
        : Number(number), Source(std::move(source)), Description(std::move(description)) {}
    Error(const Error&) = default;
    Error(Error&&) = default;
    Error& operator=(const Error&) = default;
    Error& operator=(Error&&) = default;
    ~Error() override;

    Long Number = 0;     ///< what a handler decides by
    String Source;       ///< the operation that failed, "Runtime" for the runtime itself
    String Description;  ///< one or more sentences for a person; the engine's own text where an engine failed

    // For debugging. Empty or 0 where the failure does not come from a database engine.
    String Provider;       ///< name of the engine's provider, "SQLite"
    Long NativeError = 0;  ///< the engine's own code
    String SQLState;       ///< five characters, or empty where the engine has none
    String Statement;      ///< the statement that failed, as the client wrote it

    String Column;  ///< the column whose value could not be read; empty for every other failure

    /// Returns `Description`; the pointer is valid as long as this object.
    const char* what() const noexcept override { return Description.c_str(); }
};

/// The numbers of the runtime's failures that this system raises or handles.
namespace err {
constexpr Long InvalidCall = 5;            ///< an argument that the operation rejects, such as a negative count
constexpr Long Overflow = 6;               ///< a number outside the range of its type
constexpr Long OutOfMemory = 7;            ///< memory could not be allocated
constexpr Long OutOfBounds = 9;            ///< a position that an array or a collection does not have
constexpr Long TypeMismatch = 13;          ///< a value that can't be converted to the required type
constexpr Long FileNotFound = 53;          ///< a file that does not exist
constexpr Long PermissionDenied = 70;      ///< a file that may not be changed or deleted
constexpr Long PathFileAccess = 75;        ///< a path that can't be used, such as a folder in place of a file
constexpr Long ObjectNotSet = 91;          ///< a member of a null reference was used
constexpr Long InvalidNull = 94;           ///< a null where a value is required
constexpr Long ObjectRequired = 424;       ///< a value that is not an object where an object is required
constexpr Long CannotCreate = 429;         ///< a class that does not exist or can't be created
constexpr Long NoSuchMember = 438;         ///< a name that the object's interface does not have
constexpr Long ArgumentNotOptional = 449;  ///< a required argument was left out
constexpr Long WrongArguments = 450;       ///< too many arguments, or an assignment to a read-only property
constexpr Long DuplicateKey = 457;         ///< a key that the collection already contains
}  // namespace err

/// Returns the English text of a runtime number; "Application-defined or object-defined error" for a number without a
/// text. Any thread may call.
String DescriptionOf(Long number);

/// Throws an `Error` with this number, the source "Runtime" and the text of the number.
[[noreturn]] void Raise(Long number);

/// Throws an `Error` with this number, the source "Runtime" and this text.
[[noreturn]] void Raise(Long number, const String& description);

}  // namespace Platform
