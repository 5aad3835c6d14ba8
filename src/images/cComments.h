#pragma once

#include "people/cStringItem.h"

namespace OXClass {

/// The signed and dated comments of an image. `Item` and `Remove` raise on a missing member. An object
/// belongs to one thread.
class cComments final : public Keyed<cStringItem> {
public:
    static constexpr const char* ClassName = "cComments";

    /// Makes a comment that isn't stored, adds it at the end, under `sKey` if that is not empty, and
    /// gives it. Raises 457 for a key that is present.
    Ref<cStringItem> Add(const String& str, const Long& ID, const Date& DateStamp, const String& Signature,
                         const String& sKey = {});

    /// Puts a comment before position `Index`, under `sKey` if that is not empty; without a key into an
    /// empty list, whatever the index. Raises 9 for a position that isn't there, 457 for a key that is
    /// present.
    void AddObj(const Ref<cStringItem>& Obj, const Long& Index, const String& sKey = {});

    const Interface& Describe() const override;
};

}  // namespace OXClass
