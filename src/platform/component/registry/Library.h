#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"

#include <atomic>
#include <mutex>
#include <span>

namespace Platform {

/// One public class of a library.
struct ClassEntry {
    const char* Name;         ///< "cPatient"; its interface is "_cPatient"
    const char* ClassID;      ///< never changes: "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"
    const char* InterfaceID;  ///< never changes
    bool IsGlobal;            ///< all callers on a thread share one instance, which they don't create
    Ref<Object> (*Make)();    ///< creates an object of the class
};

/// Creates an object of class `T`, for its entry.
template <class T>
Ref<Object> MakeNew() {
    return New<T>();
}

/// The description of a library. Its texts live as long as the program.
struct LibraryDescription {
    const char* Name;         ///< in front of the class names: "OXClass"
    const char* Identifier;   ///< of its type library
    const char* Version;      ///< of its type library, "1.30"
    const char* FileVersion;  ///< of the library file, "1.00.0088"
    LCID Locale;
    const char* HelpText;
    std::span<const ClassEntry> Classes;  ///< in their documented order
};

/// An in-process server: the implementation of the four functions that a library file exports.
///
/// There is one object for each library, which lives as long as the program. Any thread may call.
class Library final : public ObjectCounter {
public:
    /// Copies the description; its texts and its table of classes must live as long as the program.
    explicit Library(const LibraryDescription& description) : description_(description) {}

    const LibraryDescription& Description() const noexcept { return description_; }

    /// DllGetClassObject: returns the class factory of a class. CLASS_E_CLASSNOTAVAILABLE for a class of another
    /// library, E_NOINTERFACE for an interface that class factories don't have, E_POINTER for null.
    HRESULT GetClassObject(REFCLSID classID, REFIID riid, void** factory) noexcept;

    /// DllCanUnloadNow: returns S_OK if no object, class factory or lock of the library exists, otherwise S_FALSE.
    HRESULT CanUnloadNow() const noexcept;

    /// DllRegisterServer and DllUnregisterServer: add the library and its classes to the class registry, or remove
    /// them. SELFREG_E_CLASS if the registry can't be read or written; it is then unchanged, and the error record has
    /// the reason.
    HRESULT RegisterServer() noexcept;
    HRESULT UnregisterServer() noexcept;

    // ---- counts, for Object and the class factories ---------------------------------------------------

    /// Count the living objects and class factories. `CanUnloadNow` returns S_FALSE while the number is above 0.
    void ObjectBegan() noexcept override { living_.fetch_add(1, std::memory_order_relaxed); }
    void ObjectEnded() noexcept override { living_.fetch_sub(1, std::memory_order_release); }

    /// `Lock` keeps the library in use until `Unlock`. An `Unlock` without a `Lock` is ignored.
    void Lock() noexcept { locks_.fetch_add(1, std::memory_order_relaxed); }
    void Unlock() noexcept;

    /// Publishes the interface identifiers of the classes, once. It is called before the library creates an object for
    /// a client.
    void Publish();

private:
    const LibraryDescription description_;
    std::once_flag published_;
    std::atomic<std::int64_t> living_ = 0;  ///< objects and factories
    std::atomic<std::int64_t> locks_ = 0;
};

}  // namespace Platform
