#include "platform/adodb/providers/byname/SystemRecordset.h"

#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/ByName.h"

namespace ADODB {

using namespace Platform;

namespace {

constexpr GUID OfSystemLayer(unsigned long number) {
    return {number, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};
}

constexpr IID SystemConnection = OfSystemLayer(0x00000515);  // of its first version, which each later one has, too
constexpr CLSID SystemRecordset = OfSystemLayer(0x00000535);

/// A reference that is released with its owner.
struct Released {
    explicit Released(IUnknown* owned) : pointer(owned) {}
    Released(const Released&) = delete;
    ~Released() {
        if (pointer) pointer->Release();
    }
    IUnknown* pointer;
};

bool IsOfSystemLayer(const Ref<Object>& connection) {
    const Released held(Boundary::ToPointer(connection));
    void* found = nullptr;
    if (FAILED(held.pointer->QueryInterface(SystemConnection, &found)) || !found) return false;
    static_cast<IUnknown*>(found)->Release();
    return true;
}

}  // namespace

Ref<Object> NewSystemRecordset(const Ref<Object>& connection) {
    if (!IsOfSystemLayer(connection)) return nullptr;
    void* made = nullptr;
    if (FAILED(CoCreateInstance(SystemRecordset, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made)) || !made)
        return nullptr;
    const Released held(static_cast<IUnknown*>(made));
    Ref<Object> recordset = Boundary::FromPointer(held.pointer);
    ByName(recordset).Put("ActiveConnection", connection);
    return recordset;
}

}  // namespace ADODB
