#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// One text with an identifier; as a comment of an image also with a date, a signature and the mark
/// that it is stored. A plain carrier. An object belongs to one thread.
class cStringItem final : public Object {
public:
    static constexpr const char* ClassName = "cStringItem";

    Long ID = 0;
    String str;
    bool bSaved = false;  ///< a comment that stands in Comments_T
    String Signature;
    Date DateStamp;

    const Interface& Describe() const override;
};

}  // namespace OXClass
