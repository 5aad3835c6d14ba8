#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One text with an identifier: a member of `OtherPatIDs`, `IntendedRecipients` and `cComments`.
///
/// The object only holds its values: nothing here checks, converts or stores them. Each list fills the
/// members that it uses, and the others keep their initial values: 0, empty and false. An object belongs to
/// the thread that created it.
class cStringItem final : public Object {
public:
    static constexpr const char* ClassName = "cStringItem";

    /// For a comment of `cImage`, the key of the image; otherwise a number that the caller or the list
    /// assigns.
    Long ID = 0;
    /// The text itself. `cImage` stores the first 150 characters of a comment.
    String str;

    // ---- of a comment only -------------------------------------------------------------------------

    /// The person who signed the comment. `cImage` stores the first 150 characters, and compares with it when
    /// an image is imported a second time.
    String Signature;
    /// The date and time of the comment.
    Date DateStamp;
    /// True if the comment is a row of Comments_T. `cImage` stores a comment only if this is false, and sets
    /// it afterwards.
    bool bSaved = false;

    const Interface& Describe() const override;
};

}  // namespace OXClass
