#include "platform/oxplatform.h"

#include "platform/HostClasses.h"
#include "platform/adodb/Connection.h"
#include "platform/component/ClassRegistry.h"
#include "platform/component/Description.h"
#include "platform/component/LibraryFile.h"
#include "platform/component/Marshal.h"
#include "platform/component/ReturnCode.h"
#include "platform/runtime/Services.h"

#include <cmath>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>

using namespace Platform;

namespace {

String Name(LPCOLESTR text) { return FromUtf16(reinterpret_cast<const char16_t*>(text)); }

/// Runs `make`, whose result goes to `object`.
template <class Make>
HRESULT Creating(LPCOLESTR name, IDispatch** object, Make make) noexcept {
    return Guarded([&]() -> HRESULT {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (!name) return E_POINTER;
        *object = make(Name(name));
        return S_OK;
    });
}

/// Runs a library's own entry; its failure keeps its record.
template <class Entry>
HRESULT CallingLibrary(const char* path, Entry entry) noexcept {
    return Guarded([&]() -> HRESULT {
        if (!path) return E_POINTER;
        return entry(LoadedLibrary(path));
    });
}

}  // namespace

// ---- classes by name --------------------------------------------------------------------------------

HRESULT OxCreateObject(LPCOLESTR name, IDispatch** object) { return Creating(name, object, CreateObject); }

HRESULT OxGlobal(LPCOLESTR name, IDispatch** object) { return Creating(name, object, GlobalObject); }

HRESULT OxUseLibrary(const char* path) {
    return CallingLibrary(path, [](const LibraryFile& library) {
        const ClassRegistry::EnteringHere here;
        return library.RegisterServer();
    });
}

HRESULT OxRegisterLibrary(const char* path) {
    return CallingLibrary(path, [](const LibraryFile& library) { return library.RegisterServer(); });
}

HRESULT OxUnregisterLibrary(const char* path) {
    return CallingLibrary(path, [](const LibraryFile& library) { return library.UnregisterServer(); });
}

HRESULT OxClasses(BSTR* json) {
    return Guarded([&]() -> HRESULT {
        if (!json) return E_POINTER;
        *json = nullptr;
        nlohmann::ordered_json classes = nlohmann::ordered_json::array();
        const auto add = [&classes](const String& name, const String& identifier, const String& library,
                                    const String& threading, const String& instancing) {
            classes.push_back({{"name", name},
                               {"identifier", identifier},
                               {"library", library},
                               {"threading", threading},
                               {"instancing", instancing}});
        };
        const String host = FileOfAddress(&IID_NULL);
        for (const ClassEntry& entry : HostClasses())
            add(entry.Name, entry.ClassID, host, "Apartment", "multi-use");
        for (const ClassRegistry::ClassRecord& record : ClassRegistry::All())
            add(record.Name, record.Identifier, record.Library, record.Threading, record.Instancing);
        *json = ToBstr(classes.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
        return S_OK;
    });
}

HRESULT OxDescribe(IUnknown* object, BSTR* json) {
    return Guarded([&]() -> HRESULT {
        if (!json) return E_POINTER;
        *json = nullptr;
        if (!object) return E_POINTER;
        const Object* own = Boundary::Own(object);
        if (!own) return E_NOINTERFACE;
        *json = ToBstr(DescriptionText(own->Describe()));
        return S_OK;
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

void CallMsgBox(const String& prompt, Long buttons) {
    const auto [handler, context] = theMsgBox.Get();
    if (!handler) return Host().MsgBox(prompt, buttons);
    const OwnedText text(ToBstr(prompt));
    handler(context, text.get(), buttons);
}

void CallDoEvents() {
    const auto [handler, context] = theDoEvents.Get();
    if (handler) handler(context);
}

Date CallNow() {
    const auto [handler, context] = theNow.Get();
    return handler ? Date{handler(context)} : Host().Now();
}

float CallTimer() {
    constexpr double secondsOfDay = 86400;
    const auto [handler, context] = theNow.Get();
    if (!handler) return Host().Timer();
    const double days = handler(context);
    return static_cast<float>(std::abs(days - std::trunc(days)) * secondsOfDay);
}

/// Lets the host's services ask the handlers, from the first handler on.
void InstallHandlers() {
    static std::once_flag installed;
    std::call_once(installed, [] {
        Host& host = TheHost();
        host.MsgBox = CallMsgBox;
        host.DoEvents = CallDoEvents;
        host.Now = CallNow;
        host.Timer = CallTimer;
    });
}

template <class Function>
HRESULT Install(Handler<Function>& handler, Function function, void* context) noexcept {
    return Guarded([&]() -> HRESULT {
        InstallHandlers();
        handler.Set(function, context);
        return S_OK;
    });
}

}  // namespace

HRESULT OxSetMsgBox(OxMsgBoxHandler handler, void* context) { return Install(theMsgBox, handler, context); }

HRESULT OxSetDoEvents(OxDoEventsHandler handler, void* context) {
    return Install(theDoEvents, handler, context);
}

HRESULT OxSetNow(OxNowHandler handler, void* context) { return Install(theNow, handler, context); }

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
        const OwnedText source(ToBstr(request.Source));
        if (events_.WillExecute(context_, source.get()) != 0) request.Status = ADODB::adStatusCancel;
    }

    void ExecuteComplete(const ADODB::ExecuteReport& report) override {
        if (!events_.ExecuteComplete) return;
        const OwnedText source(ToBstr(report.Source));
        OwnedText failureSource, failureText;
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
    Object* own = pointer ? Boundary::Own(pointer) : nullptr;
    auto* connection = dynamic_cast<ADODB::Connection*>(own);
    if (!connection) throw Error(E_NOINTERFACE, "ADODB.Connection", "The object is no ADODB.Connection");
    return *connection;
}

}  // namespace

HRESULT OxAdvise(IUnknown* connection, const OxConnectionEvents* events, void* context, ULONG* cookie) {
    return Guarded([&]() -> HRESULT {
        static std::atomic<ULONG> last = 0;
        if (!events || !cookie) return E_POINTER;
        ADODB::Connection& target = ConnectionOf(connection);
        *cookie = ++last;
        target.Advise(std::make_unique<ClientEvents>(*events, context, *cookie));
        return S_OK;
    });
}

HRESULT OxUnadvise(IUnknown* connection, ULONG cookie) {
    return Guarded([&]() -> HRESULT {
        ADODB::Connection& target = ConnectionOf(connection);
        for (ADODB::ConnectionEvents* handler : target.Handlers()) {
            auto* events = dynamic_cast<ClientEvents*>(handler);
            if (!events || events->Cookie != cookie) continue;
            target.Unadvise(*events);
            return S_OK;
        }
        return E_INVALIDARG;
    });
}
