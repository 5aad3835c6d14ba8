#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

#include <atomic>
#include <mutex>
#include <span>

namespace Platform {

/// One public class of a library.
struct ClassEntry {
    const char* Name;     ///< "cPatient"; its interface is "_cPatient"
    const char* ClassID;  ///< identifiers, fixed for ever: "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"
    const char* InterfaceID;
    bool IsGlobal;          ///< callers on a thread share one instance without creating it
    Ref<Object> (*Make)();  ///< a new object of the class
};

/// A new object of class `T`, for its entry.
template <class T>
Ref<Object> MakeNew() {
    return New<T>();
}

/// What a library says of itself. Its texts live as long as the program.
struct LibraryDescription {
    const char* Name;        ///< in front of the class names: "OXClass"
    const char* Identifier;  ///< of its type library
    const char* Version;     ///< of its type library, "1.30"
    LCID Locale;
    const char* HelpText;
    std::span<const ClassEntry> Classes;  ///< in their documented order
};

/// A library of classes behind the boundary: what its file's four exported functions hand on to.
///
/// One for each library, living as long as the program. Any thread may call.
class Library final : public ObjectCounter {
public:
    explicit Library(const LibraryDescription& description) : description_(description) {}

    const LibraryDescription& Description() const noexcept { return description_; }

    /// The class factory of a class: DllGetClassObject. CLASS_E_CLASSNOTAVAILABLE for an identifier that is
    /// none of the library's, E_NOINTERFACE for an interface that factories don't have, E_POINTER.
    HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory) noexcept;

    /// S_OK if no object of the library's classes lives, no factory and no lock is held; else S_FALSE:
    /// DllCanUnloadNow.
    HRESULT CanUnloadNow() const noexcept;

    /// Enters the library and its classes where classes are found by name, or removes them: DllRegisterServer
    /// and DllUnregisterServer. SELFREG_E_CLASS where the registry can't be written or read; it stays as it
    /// was then, and the error record says why.
    HRESULT RegisterServer() noexcept;
    HRESULT UnregisterServer() noexcept;

    // ---- counts: for Object and the factories ---------------------------------------------------
    void ObjectBegan() noexcept override { living_.fetch_add(1, std::memory_order_relaxed); }
    void ObjectEnded() noexcept override { living_.fetch_sub(1, std::memory_order_release); }

    /// Keeps the library in use until `Unlock`. An `Unlock` too many changes nothing.
    void Lock() noexcept { locks_.fetch_add(1, std::memory_order_relaxed); }
    void Unlock() noexcept;

    /// Enters the identities of the interfaces, once. Before that the library gives no object out.
    void Publish();

private:
    const LibraryDescription description_;
    std::once_flag published_;
    std::atomic<std::int64_t> living_ = 0;  ///< objects and factories
    std::atomic<std::int64_t> locks_ = 0;
};

}  // namespace Platform
