#include "platform/component/registry/Library.h"

#include "platform/component/binary/Counted.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/component/registry/ClassRegistry.h"
#include "platform/component/registry/LibraryFile.h"

namespace Platform {
namespace {

/// Makes the objects of one class.
class ClassFactory final : public Counted<ClassFactory, IClassFactory> {
public:
    ClassFactory(Library& library, const ClassEntry& entry) : library_(library), entry_(entry) {
        library_.ObjectBegan();
    }
    ~ClassFactory() { library_.ObjectEnded(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (!Same(riid, IID_IUnknown) && !Same(riid, IID_IClassFactory)) return E_NOINTERFACE;
        AddRef();
        *object = this;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
        return Guarded([&]() -> HRESULT {
            if (!object) return E_POINTER;
            *object = nullptr;
            if (outer) return CLASS_E_NOAGGREGATION;
            IUnknown* made = Boundary::ToPointer(entry_.Make());
            const HRESULT found = made->QueryInterface(riid, object);
            made->Release();
            return found;
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (lock)
            library_.Lock();
        else
            library_.Unlock();
        return S_OK;
    }

private:
    Library& library_;
    const ClassEntry& entry_;
};

/// Returns the name by which a class is registered: the library's, and the last part of its own.
String RegisteredName(const LibraryDescription& description, const ClassEntry& entry) {
    const std::string_view name = entry.Name;
    return String(description.Name) + "." + String(name.substr(name.rfind('.') + 1));
}

ClassRegistry::LibraryRecord RecordOf(const LibraryDescription& description) {
    const String file = FileOfAddress(description.Name);
    ClassRegistry::LibraryRecord record{description.Name,   description.Identifier, description.Version,
                                        description.Locale, description.HelpText,   {}};
    for (const ClassEntry& entry : description.Classes)
        record.Classes.push_back({RegisteredName(description, entry), entry.ClassID, file, "Apartment",
                                  entry.IsGlobal ? "global" : "multi-use"});
    return record;
}

/// Runs a change of the registry; what it fails with becomes the code of a failed self-registration.
template <class Change>
HRESULT ChangeRegistry(Change change) noexcept {
    const HRESULT code = Guarded([&]() -> HRESULT {
        change();
        return S_OK;
    });
    return SUCCEEDED(code) ? S_OK : SELFREG_E_CLASS;
}

}  // namespace

void Library::Publish() {
    std::call_once(published_, [this] {
        for (const ClassEntry& entry : description_.Classes) {
            const Interface& described = entry.Make()->Describe();
            described.Publish(GuidOf(entry.InterfaceID), *this);
        }
    });
}

HRESULT Library::GetClassObject(REFCLSID classID, REFIID riid, void** factory) noexcept {
    return Guarded([&]() -> HRESULT {
        if (!factory) return E_POINTER;
        *factory = nullptr;
        for (const ClassEntry& entry : description_.Classes) {
            if (!Same(GuidOf(entry.ClassID), classID)) continue;
            Publish();
            auto* made = new ClassFactory(*this, entry);
            const HRESULT found = made->QueryInterface(riid, factory);
            made->Release();
            return found;
        }
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

HRESULT Library::CanUnloadNow() const noexcept {
    const bool inUse = living_.load(std::memory_order_acquire) > 0 || locks_.load(std::memory_order_acquire) > 0;
    return inUse ? S_FALSE : S_OK;
}

void Library::Unlock() noexcept {
    std::int64_t held = locks_.load(std::memory_order_relaxed);
    while (held > 0 && !locks_.compare_exchange_weak(held, held - 1, std::memory_order_release)) {
    }
}

HRESULT Library::RegisterServer() noexcept {
    return ChangeRegistry([this] { ClassRegistry::Enter(RecordOf(description_)); });
}

HRESULT Library::UnregisterServer() noexcept {
    return ChangeRegistry([this] { ClassRegistry::Remove(RecordOf(description_)); });
}

}  // namespace Platform
