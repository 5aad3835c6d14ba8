#pragma once

#include "platform/adodb/Recordset.h"
#include "platform/runtime/Collection.h"
#include "platform/runtime/Services.h"

/// What all classes share besides the statements: escaping, the null-safe read, DICOM identifiers, and the
/// two variables that each thread has. COM clients can't reach any of it. Any thread may call.
namespace OXClass {

// ---- the names of the platform that the classes use, and the programs that use the classes -------------

// Numbers of failures.
namespace err = Platform::err;
// The database.
using ADODB::Connection, ADODB::Recordset;
// Conversions.
using Platform::CBool, Platform::CDate, Platform::CDbl, Platform::CInt, Platform::CLng, Platform::CSng, Platform::CStr,
    Platform::Format, Platform::IsDate, Platform::ParseDate, Platform::To, Platform::Val;
// Lists.
using Platform::Collection, Platform::Each, Platform::Enumerable, Platform::Enumerator, Platform::Keyed;
// Texts, whose lengths and positions count UTF-16 units.
using Platform::Contains, Platform::EqualsIgnoringCase, Platform::FromUtf16, Platform::LCase, Platform::Left,
    Platform::Len, Platform::Mid, Platform::Replace, Platform::Right, Platform::SplitIgnoringCase, Platform::ToUtf16,
    Platform::Trim;
// Services of the host.
using Platform::CreateGuid, Platform::DoEvents, Platform::FileExists, Platform::Guid, Platform::MsgBox, Platform::Now,
    Platform::Sleep, Platform::TheHost, Platform::TickCount, Platform::Timer;
// Dates and values.
using Platform::Date, Platform::DateFrom, Platform::FormatDate;
using Platform::Empty, Platform::Integer, Platform::Long, Platform::Null, Platform::String, Platform::Variant;
// Interfaces, failures, objects.
using Platform::EnumerationOf, Platform::EnumerationValue, Platform::Interface;
using Platform::Error, Platform::Raise;
using Platform::New, Platform::Object, Platform::Ref;

// ---- data of the thread --------------------------------------------------------------------------------

/// If true, `FixSqlString` also doubles backslashes, for an engine that reads them as escapes. Each thread
/// has its own flag, initially false. Nothing in the library sets it.
extern thread_local bool bEscapeBackslash;

/// The root UID of the thread's DICOM identifiers. Empty until `Class1::GetInstanceUID` has read it.
extern thread_local String sDicomRootUID;

// ---- escaping ------------------------------------------------------------------------------------------

/// A text that is escaped for use between single quotes in a statement. Only `FixSqlString` and `UCase` of an
/// escaped text create one, so that no function that takes an `Escaped` can receive a plain text.
class Escaped {
public:
    /// Returns the escaped text, without the enclosing quotes.
    const String& Text() const noexcept { return text_; }
    operator const String&() const noexcept { return text_; }

private:
    friend Escaped FixSqlString(std::string_view);
    friend Escaped UCase(const Escaped&);
    explicit Escaped(String text) : text_(std::move(text)) {}
    String text_;
};

/// Returns the text with each single quote doubled, and each backslash too if `bEscapeBackslash` is true. The
/// caller writes the enclosing quotes. Raises nothing.
Escaped FixSqlString(std::string_view s);

using Platform::UCase;

/// Returns the text in upper case. It stays escaped, because quotes and backslashes have no case.
Escaped UCase(const Escaped& text);

// ---- reading nulls -------------------------------------------------------------------------------------

/// Returns a value for a member that can't hold a null: the 16-bit 0 for a null, an empty value, a text of
/// blanks, an object, an array, and a date that can't be formatted. Returns every other value unchanged,
/// with its type. Raises nothing.
Variant NzValue(Variant v);

// ---- DICOM identifiers ---------------------------------------------------------------------------------

/// Returns a whole DICOM UID below `sDicomRootUID`: the root UID, a dot and 41 digits that depend on the
/// system time, the tick counter and random numbers.
///
/// The UID has at most 64 characters: a root of more than 22 characters shortens the digits from the front,
/// and one of 63 leaves only the dot. Raises 5 for a root of 64 characters or more, and 6 for a system time
/// from about the year 30810 to 30828, whose upper half overflows.
String MakeUIDSuffix();

/// Returns the upper or the lower 16 bits of `v`, without sign, in decimal. Zeros in front fill the text up
/// to `width` characters; a longer number isn't cut. Raises nothing.
String HighWordText(Long v, Integer width);
String LowWordText(Long v, Integer width);

}  // namespace OXClass
