#pragma once

#include "people/cStringItem.h"

namespace OXClass {

/// A patient's other identifiers: in memory a collection of texts, in Patient_T one delimited text.
///
/// `Item` and `Remove` raise on a missing member. An object belongs to one thread.
class OtherPatIDs final : public Keyed<cStringItem> {
public:
    static constexpr const char* ClassName = "OtherPatIDs";
    static constexpr bool IsGlobal = true;  ///< `Global<OtherPatIDs>()` gives the thread's shared instance

    String Delimiter = "\\";  ///< stands between two identifiers; any text

    /// Adds an identifier at the end, trimmed and in upper case, under `sKey` if that is not empty.
    ///
    /// A member that equals `str` exactly, as it was handed in, is given back instead. A blank text gives
    /// nothing. Unless a member was found, `str` comes back trimmed and in upper case. Raises 457 for a
    /// key that is present.
    Ref<cStringItem> Add(String& str, const Long& ID, const String& sKey = {});

    /// All identifiers, each with the delimiter behind it, and the last character cut: one character,
    /// however long the delimiter is. The empty text for an empty list.
    String GetAllAsString() const;

    /// The length that `GetAllAsString` would have with a delimiter of one character.
    Long TotalLengthWithDelimiter() const;

    /// Fills the list anew from a delimited text. Each part gets its place in the text, from 0, as `ID`
    /// and "K" + that place as key; empty parts are left out, and their places stay free.
    void FillFromString(const String& sDelimitedString);

    const Interface& Describe() const override;
};

}  // namespace OXClass
