#pragma once

#include "platform/adodb/Recordset.h"
#include "platform/runtime/Collection.h"
#include "platform/runtime/Services.h"

/// What all classes share besides the statements: escaping, the null-safe read, the module data of a
/// thread. No client can reach it.
namespace OXClass {

// The names of the platform that the classes, and programs that use them, are written with.
namespace err = Platform::err;
using ADODB::Connection, ADODB::Recordset;
using Platform::CBool, Platform::CDate, Platform::CDbl, Platform::CInt, Platform::CLng, Platform::CSng,
    Platform::CStr, Platform::Format, Platform::IsDate, Platform::ParseDate, Platform::To, Platform::Val;
using Platform::Collection, Platform::Each, Platform::Enumerable, Platform::Enumerator, Platform::Keyed;
using Platform::Contains, Platform::EqualsIgnoringCase, Platform::FromUtf16, Platform::LCase, Platform::Left,
    Platform::Len, Platform::Mid, Platform::Replace, Platform::Right, Platform::SplitIgnoringCase,
    Platform::ToUtf16, Platform::Trim;
using Platform::CreateGuid, Platform::DoEvents, Platform::FileExists, Platform::Guid, Platform::MsgBox,
    Platform::Now, Platform::Sleep, Platform::TheHost, Platform::TickCount, Platform::Timer;
using Platform::Date, Platform::DateFrom, Platform::FormatDate;
using Platform::Empty, Platform::Integer, Platform::Long, Platform::Null, Platform::String, Platform::Variant;
using Platform::EnumerationOf, Platform::EnumerationValue, Platform::Interface;
using Platform::Error, Platform::Raise;
using Platform::New, Platform::Object, Platform::Ref;

/// True makes `FixSqlString` double backslashes, for an engine that takes them for escapes. One flag a
/// thread, false, and nothing in the library sets it.
extern thread_local bool bEscapeBackslash;

/// The root of the thread's DICOM identifiers; empty until `Class1::GetInstanceUID` has read it.
extern thread_local String sDicomRootUID;

/// A text that may stand between single quotes in a statement. Made by `FixSqlString` alone.
class Escaped {
public:
    const String& Text() const noexcept { return text_; }
    operator const String&() const noexcept { return text_; }

private:
    friend Escaped FixSqlString(std::string_view);
    friend Escaped UCase(const Escaped&);
    explicit Escaped(String text) : text_(std::move(text)) {}
    String text_;
};

/// The text with each single quote doubled, and each backslash where `bEscapeBackslash` is true. The
/// caller writes the enclosing quotes.
Escaped FixSqlString(std::string_view s);

/// Upper case leaves an escaped text escaped.
using Platform::UCase;
Escaped UCase(const Escaped& text);

/// A value for a caller that can't take a null: the 16-bit 0 for a null, an empty value, a text of
/// blanks, and anything that has no text; every other value as it is, its type unchanged. Never raises.
Variant NzValue(Variant v);

/// A whole DICOM identifier under `sDicomRootUID`: the root, a dot and 41 digits made of the clock, the
/// tick counter and random numbers. At most 64 characters: a long root costs digits at the suffix's
/// front. Raises 5 for a root of 64 characters or more, which leaves no room.
String MakeUIDSuffix();

/// The upper or the lower 16 bits of `v` in decimal, with zeros in front up to `width` characters.
String HighWordText(Long v, Integer width);
String LowWordText(Long v, Integer width);

}  // namespace OXClass
