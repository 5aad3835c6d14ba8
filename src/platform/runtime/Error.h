#pragma once

#include "platform/runtime/Types.h"

#include <exception>

namespace Platform {

/// The one exception of the system: a failure with the number, source and text that a client reads.
///
/// `Number` is short for failures of the runtime (6, 13, 94) and of the database layer itself (3021,
/// 3265, 3704), and the full signed number for what a database engine reports (-2147217865, no such
/// table). `Source` names who failed; an operation with a prefixed handler puts its own name in front.
/// A plain value: it may be copied, kept and thrown by any thread.
class Error : public std::exception {
public:
    Error() = default;
    Error(Long number, String source, String description)
        : Number(number), Source(std::move(source)), Description(std::move(description)) {}
    Error(const Error&) = default;
    Error(Error&&) = default;
    Error& operator=(const Error&) = default;
    Error& operator=(Error&&) = default;
    ~Error() override;

    Long Number = 0;
    String Source;
    String Description;

    // For a person who debugs; empty or 0 where the failure did not come from a database engine.
    String Provider;       ///< name of the engine's provider, "SQLite"
    Long NativeError = 0;  ///< the engine's own code
    String SQLState;       ///< five characters, or empty where the engine has none
    String Statement;      ///< the statement that failed, as it was written

    String Column;  ///< the column whose value could not be read; empty for every other failure

    /// `Description`; valid as long as this object.
    const char* what() const noexcept override { return Description.c_str(); }
};

/// Numbers of the runtime's failures, as far as this system meets or raises them.
namespace err {
constexpr Long InvalidCall = 5;  ///< an argument that the operation cannot work with
constexpr Long Overflow = 6;     ///< a number outside the range of its type
constexpr Long OutOfMemory = 7;
constexpr Long OutOfBounds = 9;    ///< a position that an array or a collection doesn't have
constexpr Long TypeMismatch = 13;  ///< a value that has no form of the wanted type
constexpr Long FileNotFound = 53;
constexpr Long PermissionDenied = 70;
constexpr Long PathFileAccess = 75;
constexpr Long ObjectNotSet = 91;  ///< a member of nothing was asked for
constexpr Long InvalidNull = 94;   ///< a null where a value is needed
constexpr Long ObjectRequired = 424;
constexpr Long CannotCreate = 429;  ///< no class of this name, or its library fails
constexpr Long NoSuchMember = 438;  ///< a name that the object's interface doesn't have
constexpr Long ArgumentNotOptional = 449;
constexpr Long WrongArguments = 450;  ///< too many arguments, or a put of what can only be read
constexpr Long DuplicateKey = 457;    ///< a key that the collection already has
}  // namespace err

/// The English text that belongs to a runtime number; "Application-defined or object-defined error"
/// for a number that has none.
String DescriptionOf(Long number);

/// Throws an `Error` with this number, the source "Runtime" and the number's own text.
[[noreturn]] void Raise(Long number);

/// As above with a text that says more than the number's own.
[[noreturn]] void Raise(Long number, const String& description);

}  // namespace Platform
