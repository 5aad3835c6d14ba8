#include "boundary/SlotCall.h"

#include <map>
#include <stdexcept>

namespace Client {

const std::vector<SlotOf>& SlotsOf(IUnknown* object) {
    static std::map<const void*, std::vector<SlotOf>> ofTables;
    std::vector<SlotOf>& slots = ofTables[*reinterpret_cast<const void**>(object)];
    if (!slots.empty()) return slots;
    int index = 7;
    const Json description = Describe(object);
    for (const Json& member : description["members"]) slots.push_back({member, index++});
    return slots;
}

SlotOf FindSlot(IUnknown* object, const std::string& name, const std::string& kind) {
    for (const SlotOf& slot : SlotsOf(object))
        if (slot.Member["name"] == name && slot.Member["kind"] == kind) return slot;
    throw std::runtime_error("no member " + name);
}

bool IsPlace(const Json& member, const Json& argument) { return argument["byReference"] && member["kind"] != "putref"; }

bool HasResult(const Json& member) { return member["result"] != "none"; }

HRESULT CallSlot(IUnknown* object, const SlotOf& slot, std::vector<Binary> arguments) {
    return CallForeignSlot(object, object, slot, std::move(arguments));
}

}  // namespace Client
