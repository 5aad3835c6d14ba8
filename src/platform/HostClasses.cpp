#include "platform/HostClasses.h"

#include "platform/adodb/Errors.h"
#include "platform/adodb/Fields.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/registry/ClassRegistry.h"
#include "platform/component/registry/LibraryFile.h"
#include "platform/runtime/System.h"

#include <array>
#include <map>
#include <memory>
#include <utility>

namespace Platform {
namespace {

[[noreturn]] void RaiseCannotCreate(const String& reason) {
    Raise(err::CannotCreate, DescriptionOf(err::CannotCreate) + ": " + reason);
}

ClassRegistry::ClassRecord RecordOf(const String& name) {
    if (const auto record = ClassRegistry::Find(name)) return *record;
    RaiseCannotCreate("no class is registered as \"" + name + "\". \"oxclass register\" registers the library");
}

/// Returns the dispatch interface of one of this host's objects, in place of the reference given.
IDispatch* DispatchOf(IUnknown* object) {
    void* dispatch = nullptr;
    const HRESULT code = object->QueryInterface(IID_IDispatch, &dispatch);
    object->Release();
    if (FAILED(code)) throw Error(code, "Runtime", "The object has no members that can be called by name");
    return static_cast<IDispatch*>(dispatch);
}

IDispatch* CreateFrom(const ClassRegistry::ClassRecord& record) {
    void *factory = nullptr, *object = nullptr;
    HRESULT code = E_FAIL;
    try {
        code = LoadedLibrary(record.Library).GetClassObject(GuidOf(record.Identifier), IID_IClassFactory, &factory);
    } catch (const Error& failure) {
        RaiseCannotCreate(failure.Description);
    }
    if (SUCCEEDED(code)) {
        auto* maker = static_cast<IClassFactory*>(factory);
        code = maker->CreateInstance(nullptr, IID_IDispatch, &object);
        maker->Release();
    }
    if (FAILED(code)) RaiseCannotCreate(record.Library + " does not contain the class " + record.Name);
    return static_cast<IDispatch*>(object);
}

const ClassEntry* HostClass(const String& name) {
    for (const ClassEntry& entry : HostClasses())
        if (EqualsIgnoringCase(entry.Name, name)) return &entry;
    return nullptr;
}

/// The shared instances of a thread. Plain data, which stays readable while the thread's other data end.
struct SharedObjects {
    std::map<String, IDispatch*>* byName = nullptr;
    bool ended = false;
};
thread_local SharedObjects shared;

/// Releases a thread's shared instances.
void EndSharedObjects() {
    shared.ended = true;
    const std::unique_ptr<std::map<String, IDispatch*>> byName(std::exchange(shared.byName, nullptr));
    for (const auto& [name, object] : *byName) object->Release();
}

std::map<String, IDispatch*>& SharedByName() {
    if (shared.ended) RaiseCannotCreate("the thread is ending");
    if (!shared.byName) {
        shared.byName = new std::map<String, IDispatch*>;
        AtEndOfThread(EndSharedObjects);
    }
    return *shared.byName;
}

}  // namespace

std::span<const ClassEntry> HostClasses() {
    static constexpr std::array classes{
        ClassEntry{"Collection", "b07496b6-c795-5704-a72a-0e5087592d58", "6d0f13c2-8228-54a7-a028-362f19c437b7", false,
                   MakeNew<Collection>},
        ClassEntry{"ADODB.Connection", "af08d789-e2f0-562b-9693-87a87dec653a", "fbdb9dc4-5416-51fa-a01c-f900d5ae8b84",
                   false, MakeNew<ADODB::Connection>},
        ClassEntry{"ADODB.Recordset", "306e5bc6-1782-561a-83de-05525f9ef451", "69a26778-88e4-5199-9dea-f06960e2e3ca",
                   false, MakeNew<ADODB::Recordset>},
    };
    return classes;
}

Library& HostLibrary() {
    static Library library(LibraryDescription{"OXPlatform", "5bdb6692-a1cf-5836-abe1-2368bef44fad", "1.30", "1.00.0088",
                                              1033, "The platform's classes", HostClasses()});
    return library;
}

std::vector<const Interface*> HostInterfaces() {
    std::vector<const Interface*> interfaces;
    for (const ClassEntry& entry : HostClasses()) interfaces.push_back(&entry.Make()->Describe());
    const Ref<ADODB::Recordset> rows = New<ADODB::Recordset>();
    const Ref<ADODB::Connection> connection = New<ADODB::Connection>();
    interfaces.push_back(&New<ADODB::FieldsObject>(*rows)->Describe());
    interfaces.push_back(&New<ADODB::FieldObject>(rows, ADODB::Field(*rows, 0))->Describe());
    interfaces.push_back(&New<ADODB::ErrorsObject>(*connection)->Describe());
    interfaces.push_back(&New<ADODB::ErrorObject>(Error())->Describe());
    return interfaces;
}

std::span<const Enumeration> HostEnumerations() {
    using namespace ADODB;
    static constexpr std::array enumerations{
        EnumerationFor<CursorLocationEnum>(), EnumerationFor<CursorTypeEnum>(),  EnumerationFor<LockTypeEnum>(),
        EnumerationFor<CommandTypeEnum>(),    EnumerationFor<ObjectStateEnum>(), EnumerationFor<EditModeEnum>(),
        EnumerationFor<AffectEnum>(),         EnumerationFor<PositionEnum>(),    EnumerationFor<EventStatusEnum>(),
        EnumerationFor<DataTypeEnum>(),
    };
    return enumerations;
}

const LibraryFile& LoadedLibrary(const String& path) {
    static std::mutex guard;
    static auto& loaded = *new std::map<String, std::unique_ptr<LibraryFile>>;  // for calls until the process is gone
    const std::scoped_lock lock(guard);
    std::unique_ptr<LibraryFile>& file = loaded[path];
    if (!file) file = std::make_unique<LibraryFile>(path);
    return *file;
}

IDispatch* CreateObject(const String& name) {
    const ClassEntry* own = HostClass(name);
    if (!own) return CreateFrom(RecordOf(name));
    HostLibrary().Publish();
    return DispatchOf(Boundary::ToPointer(own->Make()));
}

IDispatch* GlobalObject(const String& name) {
    std::map<String, IDispatch*>& known = SharedByName();
    auto found = known.find(LCase(name));
    if (found == known.end()) {
        if (HostClass(name)) RaiseCannotCreate("the class " + name + " is not global");
        const ClassRegistry::ClassRecord record = RecordOf(name);
        if (record.Instancing != "global") RaiseCannotCreate("the class " + record.Name + " is not global");
        found = known.emplace(LCase(name), CreateFrom(record)).first;
    }
    found->second->AddRef();
    return found->second;
}

}  // namespace Platform
