#include "boundary/SlotCall.h"

#include <ffi.h>

#include <stdexcept>

namespace Client {
namespace {

ffi_type* VariantType() {
    static ffi_type* parts[] = {&ffi_type_uint64, &ffi_type_uint64, &ffi_type_uint64, nullptr};
    static ffi_type type{0, 0, FFI_TYPE_STRUCT, parts};
    return &type;
}

ffi_type* TypeOf(const std::string& type) {
    if (type == "boolean" || type == "short") return &ffi_type_sint16;
    if (type == "long" || type == "enumeration") return &ffi_type_sint32;
    if (type == "single") return &ffi_type_float;
    if (type == "double" || type == "date") return &ffi_type_double;
    return type == "variant" ? VariantType() : &ffi_type_pointer;
}

}  // namespace

HRESULT CallForeignSlot(IUnknown* object, IUnknown* tableOf, const SlotOf& slot, std::vector<Binary> arguments) {
    std::vector<ffi_type*> types{&ffi_type_pointer};
    for (const Json& argument : slot.Member["arguments"])
        types.push_back(IsPlace(slot.Member, argument) ? &ffi_type_pointer : TypeOf(argument["type"]));
    if (HasResult(slot.Member)) types.push_back(&ffi_type_pointer);
    if (types.size() != arguments.size() + 1) throw std::logic_error("another number of arguments");

    void* self = object;
    std::vector<void*> places{&self};
    for (Binary& argument : arguments) places.push_back(&argument);
    ffi_cif call;
    if (ffi_prep_cif(&call, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()), &ffi_type_sint32, types.data()) !=
        FFI_OK)
        throw std::logic_error("ffi refuses the call");
    auto* const table = *reinterpret_cast<void (***)()>(tableOf);
    ffi_arg code = 0;
    ffi_call(&call, table[slot.Index], &code, places.data());
    return static_cast<HRESULT>(code);
}

}  // namespace Client
