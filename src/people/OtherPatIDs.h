#pragma once

#include "people/cStringItem.h"

namespace OXClass {

/// The other identifiers of a patient: a keyed list of texts, counted from 1, that Patient_T.OtherIDs stores
/// as one text with a delimiter.
///
/// `Item` and `Remove` raise 9 for a position and 5 for a key that doesn't exist. An object belongs to the
/// thread that created it.
class OtherPatIDs final : public Keyed<cStringItem> {
public:
    static constexpr const char* ClassName = "OtherPatIDs";
    /// `Global<OtherPatIDs>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    // ---- members -----------------------------------------------------------------------------------

    /// Adds an identifier at the end, trimmed and in upper case, under `sKey` unless that is empty, and
    /// returns it. Returns null and adds nothing for a text of blanks.
    ///
    /// If a member equals `str` exactly, as the caller passed it, returns that member and changes nothing.
    /// Otherwise `str` is trimmed and in upper case afterwards, also if nothing was added. So an identifier
    /// in lower case can be added twice. Raises 457 if the key exists; only `str` is changed then.
    Ref<cStringItem> Add(String& str, const Long& ID, const String& sKey = {});

    // ---- the delimited text ------------------------------------------------------------------------

    /// The separator of the delimited text. Any text; compared without regard to case.
    String Delimiter = "\\";

    /// Replaces the members by the parts of a delimited text, added as by `Add`. The `ID` of a member is the
    /// position of its part, counted from 0, and its key is "K" + that position. Ignores empty and blank
    /// parts, whose positions stay unused.
    void FillFromString(const String& sDelimitedString);

    /// Returns all identifiers, trimmed, each followed by the delimiter, without the last character. Only one
    /// character is cut: a longer delimiter leaves its start at the end, and an empty one costs the last
    /// identifier its last character. Returns the empty text for an empty list.
    String GetAllAsString() const;

    /// Returns the length in characters that `GetAllAsString` has if the delimiter is one character long.
    Long TotalLengthWithDelimiter() const;

    const Interface& Describe() const override;
};

}  // namespace OXClass
