#include "platform/oxplatform.h"

#include "platform/HostClasses.h"
#include "platform/adodb/Connection.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/registry/ClassRegistry.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Description.h"
#include "platform/component/registry/LibraryFile.h"
#include "platform/component/binary/ReturnCode.h"
#include "platform/runtime/Services.h"

#include <atomic>
#include <cmath>
#include <memory>
#include <mutex>

using namespace Platform;

namespace {

[[noreturn]] void Fail(HRESULT code, const char* description) { throw Error(code, "Runtime", description); }

/// Returns the place that a result goes to, cleared.
template <class T>
T& Cleared(T* place) {
    if (!place) Fail(E_POINTER, "The place of the result is missing");
    return *place = T();
}

/// Runs an entry: no exception leaves it, and the thread's error record is its own.
template <class Body>
HRESULT Entry(Body body) noexcept {
    SetErrorInfo(0, nullptr);
    return Guarded([&]() -> HRESULT { return body(); });
}

/// Runs an entry whose body has no result.
template <class Body>
HRESULT RunEntry(Body body) noexcept {
    return Entry([&] {
        body();
        return S_OK;
    });
}

HRESULT CreateByName(LPCOLESTR name, IDispatch** object, IDispatch* (*make)(const String& name)) noexcept {
    return RunEntry([&] {
        IDispatch*& result = Cleared(object);
        if (!name) Fail(E_POINTER, "The name is missing");
        result = make(FromUnits(name));
    });
}

/// Runs a library's own function, which leaves its own record.
template <class Function>
HRESULT CallLibrary(const char* path, Function function) noexcept {
    return Entry([&] {
        if (!path) Fail(E_POINTER, "The path is missing");
        return function(LoadedLibrary(path));
    });
}

/// Returns the host's own classes that can be made by name.
std::vector<ClassRegistry::ClassRecord> OwnClasses() {
    const String host = HostFile();
    std::vector<ClassRegistry::ClassRecord> classes;
    for (const ClassEntry& entry : HostClasses())
        classes.push_back({entry.Name, entry.ClassID, host, "Apartment", "multi-use"});
    return classes;
}

}  // namespace

// ---- classes by name --------------------------------------------------------------------------------

HRESULT OxCreateObject(LPCOLESTR name, IDispatch** object) { return CreateByName(name, object, CreateObject); }

HRESULT OxGlobal(LPCOLESTR name, IDispatch** object) { return CreateByName(name, object, GlobalObject); }

HRESULT OxUseLibrary(const char* path) {
    return CallLibrary(path, [](const LibraryFile& library) {
        const ClassRegistry::RegisterInProcess here;
        return library.RegisterServer();
    });
}

HRESULT OxRegisterLibrary(const char* path) {
    return CallLibrary(path, [](const LibraryFile& library) { return library.RegisterServer(); });
}

HRESULT OxUnregisterLibrary(const char* path) {
    return CallLibrary(path, [](const LibraryFile& library) { return library.UnregisterServer(); });
}

HRESULT OxClasses(BSTR* json) {
    return RunEntry([&] {
        BSTR& result = Cleared(json);
        std::vector<ClassRegistry::ClassRecord> classes = OwnClasses();
        for (ClassRegistry::ClassRecord& record : ClassRegistry::All()) classes.push_back(std::move(record));
        result = ToBstr(ClassRegistry::PrintClasses(classes));
    });
}

HRESULT OxDescribe(IUnknown* object, BSTR* json) {
    return RunEntry([&] {
        BSTR& result = Cleared(json);
        if (!object) Fail(E_POINTER, "The object is missing");
        const Object* own = Boundary::OwnObject(object);
        if (!own) Fail(E_NOINTERFACE, "The object is somebody else's");
        result = ToBstr(DescriptionText(own->Describe()));
    });
}

// ---- services of the host ---------------------------------------------------------------------------

namespace {

/// A client's function for a service, which any thread may replace while others call it.
template <class Function>
class Handler {
public:
    void Set(Function function, void* context) {
        const std::scoped_lock lock(guard_);
        function_ = function;
        context_ = context;
    }
    std::pair<Function, void*> Get() const {
        const std::scoped_lock lock(guard_);
        return {function_, context_};
    }

private:
    mutable std::mutex guard_;
    Function function_ = nullptr;
    void* context_ = nullptr;
};

Handler<OxMsgBoxHandler> theMsgBox;
Handler<OxDoEventsHandler> theDoEvents;
Handler<OxNowHandler> theNow;

/// Returns the machine's own services, for when no handler is there.
const Host& TheMachine() {
    static const Host& machine = *new Host;
    return machine;
}

void CallMsgBox(const String& prompt, Long buttons) {
    const auto [handler, context] = theMsgBox.Get();
    if (!handler) return TheMachine().MsgBox(prompt, buttons);
    const OwnedBstr text(ToBstr(prompt));
    handler(context, text.get(), buttons);
}

void CallDoEvents() {
    const auto [handler, context] = theDoEvents.Get();
    if (handler) handler(context);
}

Date CallNow() {
    const auto [handler, context] = theNow.Get();
    return handler ? Date{handler(context)} : TheMachine().Now();
}

float CallTimer() {
    constexpr double secondsOfDay = 86400;
    const auto [handler, context] = theNow.Get();
    if (!handler) return TheMachine().Timer();
    const double days = handler(context);
    return static_cast<float>(std::abs(days - std::trunc(days)) * secondsOfDay);
}

/// Lets the host's services ask the handlers from the start, so that a handler may come at any time.
[[maybe_unused]] const bool handlersAreAsked = [] {
    Host& host = TheHost();
    host.MsgBox = CallMsgBox;
    host.DoEvents = CallDoEvents;
    host.Now = CallNow;
    host.Timer = CallTimer;
    return true;
}();

}  // namespace

HRESULT OxSetMsgBox(OxMsgBoxHandler handler, void* context) {
    return RunEntry([&] { theMsgBox.Set(handler, context); });
}

HRESULT OxSetDoEvents(OxDoEventsHandler handler, void* context) {
    return RunEntry([&] { theDoEvents.Set(handler, context); });
}

HRESULT OxSetNow(OxNowHandler handler, void* context) {
    return RunEntry([&] { theNow.Set(handler, context); });
}

// ---- connections ------------------------------------------------------------------------------------

namespace {

/// A client's functions as the events of a connection.
class ClientEvents final : public ADODB::ConnectionEvents {
public:
    ClientEvents(const OxConnectionEvents& events, void* context, ULONG cookie)
        : Cookie(cookie), events_(events), context_(context) {}
    ~ClientEvents() override {
        if (events_.Released) events_.Released(context_);
    }

    void WillExecute(ADODB::ExecuteRequest& request) override {
        if (!events_.WillExecute) return;
        const OwnedBstr source(ToBstr(request.Source));
        if (events_.WillExecute(context_, source.get()) != 0) request.Status = ADODB::adStatusCancel;
    }

    void ExecuteComplete(const ADODB::ExecuteReport& report) override {
        if (!events_.ExecuteComplete) return;
        const OwnedBstr source(ToBstr(report.Source));
        OwnedBstr failureSource, failureText;
        if (report.Failure) {
            failureSource.reset(ToBstr(report.Failure->Source));
            failureText.reset(ToBstr(report.Failure->Description));
        }
        events_.ExecuteComplete(context_, source.get(), report.RecordsAffected, report.Seconds,
                                report.Failure ? CodeOf(*report.Failure) : S_OK, failureSource.get(),
                                failureText.get());
    }

    const ULONG Cookie;

private:
    const OxConnectionEvents events_;
    void* const context_;
};

ADODB::Connection& ConnectionOf(IUnknown* pointer) {
    auto* connection = dynamic_cast<ADODB::Connection*>(pointer ? Boundary::OwnObject(pointer) : nullptr);
    if (!connection) Fail(E_NOINTERFACE, "The object is not an ADODB.Connection");
    if (!Boundary::IsOnItsThread(*reinterpret_cast<InterfacePointer*>(pointer)))
        Fail(RPC_E_WRONG_THREAD, "A connection is used only on the thread that made it");
    return *connection;
}

ClientEvents& EventsOf(const ADODB::Connection& connection, ULONG cookie) {
    for (ADODB::ConnectionEvents* handler : connection.Handlers())
        if (auto* events = dynamic_cast<ClientEvents*>(handler); events && events->Cookie == cookie) return *events;
    Fail(E_INVALIDARG, "The connection has no events of this cookie");
}

}  // namespace

HRESULT OxAdvise(IUnknown* connection, const OxConnectionEvents* events, void* context, ULONG* cookie) {
    return RunEntry([&] {
        static std::atomic<ULONG> last = 0;
        ULONG& result = Cleared(cookie);
        if (!events) Fail(E_POINTER, "The events are missing");
        ADODB::Connection& target = ConnectionOf(connection);
        const ULONG next = ++last;
        target.Advise(std::make_unique<ClientEvents>(*events, context, next));
        result = next;
    });
}

HRESULT OxUnadvise(IUnknown* connection, ULONG cookie) {
    return RunEntry([&] {
        ADODB::Connection& target = ConnectionOf(connection);
        target.Unadvise(EventsOf(target, cookie));
    });
}
