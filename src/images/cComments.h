#pragma once

#include "people/cStringItem.h"

namespace OXClass {

/// The signed and dated comments of an image, as a keyed list that is counted from 1. `cImage` loads and
/// stores the comments, and keeps the newest first; this class does not read the database or sort.
///
/// `Item` and `Remove` raise 9 for a position and 5 for a key that doesn't exist. An object belongs to the
/// thread that created it.
class cComments final : public Keyed<cStringItem> {
public:
    static constexpr const char* ClassName = "cComments";

    /// Creates a comment with these values whose `bSaved` is false, adds it at the end, under `sKey` unless
    /// that is empty, and returns it. Raises 457 if the key exists; the list stays unchanged then.
    Ref<cStringItem> Add(const String& str, const Long& ID, const Date& DateStamp, const String& Signature,
                         const String& sKey = {});

    /// Inserts an existing comment before the position `Index`, under `sKey` unless that is empty. Without a
    /// key, an empty list accepts any index.
    ///
    /// The list refers to the comment and doesn't copy it. Raises 9 for a position that doesn't exist and 457
    /// if the key exists; the list stays unchanged then.
    void AddObj(const Ref<cStringItem>& Obj, const Long& Index, const String& sKey = {});

    const Interface& Describe() const override;
};

}  // namespace OXClass
