#pragma once

#include "boundary/Client.h"

namespace Client {

/// One member of a class's description and the slot that it has.
struct SlotOf {
    Json Member;
    int Index;  ///< in the interface's table of functions; the first member's is 7
};

/// All members of an object with their slots, in their documented order.
const std::vector<SlotOf>& SlotsOf(IUnknown* object);

/// The slot of a member by name and kind.
SlotOf FindSlot(IUnknown* object, const std::string& name, const std::string& kind);

/// One argument of a call by slot: a value, as the interface's definition has it, or the place of one.
union Binary {
    VARIANT_BOOL boolean;
    SHORT small;
    LONG number;
    FLOAT single;
    DOUBLE real;
    BSTR text;
    IUnknown* object;
    void* place;
    VARIANT variant;
};

/// Calls a slot with arguments of the interface's definition: each of the member's arguments, and the
/// result's place where it has a result. Nothing is converted and nothing is freed.
HRESULT CallSlot(IUnknown* object, const SlotOf& slot, std::vector<Binary> arguments);

/// The same with the function of another object's table.
HRESULT CallForeignSlot(IUnknown* object, IUnknown* tableOf, const SlotOf& slot, std::vector<Binary> arguments);

/// True if an argument crosses as the place of its value.
bool IsPlace(const Json& member, const Json& argument);

/// True if the member has a result.
bool HasResult(const Json& member);

}  // namespace Client
