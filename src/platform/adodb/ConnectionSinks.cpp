// The events of a connection for COM clients: what `ConnectionEvents` reports, sent to a client's sink.

#include "platform/adodb/Errors.h"
#include "platform/adodb/Recordset.h"
#include "platform/component/dispatch/ByName.h"
#include "platform/component/dispatch/EventSource.h"
#include "platform/runtime/Convert.h"

#include <array>
#include <atomic>

namespace ADODB {

using namespace Platform;

namespace {

/// One client's sink. A member is called by the identifier that the sink itself has for its name, otherwise by the
/// identifier of the member in the interface.
class Sink final : public ConnectionEvents {
public:
    Sink(Connection& connection, const Ref<Object>& sink, ULONG cookie)
        : connection_(connection), sink_(sink), cookie_(cookie) {}

    ULONG Cookie() const noexcept { return cookie_; }

    void WillExecute(ExecuteRequest& request) override {
        std::array arguments{Given(request.Source),         Given(Long{request.CursorType}),
                             Given(Long{request.LockType}), Given(request.Options),
                             Given(Long{request.Status}),   Given(Ref<Object>()),
                             Given(Ref<Object>()),          Self()};
        if (!Send("WillExecute", 4, arguments, 0b11111)) request.Status = adStatusCancel;
        request.Source = CStr(*arguments[0]);
        request.CursorType = static_cast<CursorTypeEnum>(CLng(*arguments[1]));
        request.LockType = static_cast<LockTypeEnum>(CLng(*arguments[2]));
        request.Options = CLng(*arguments[3]);
        if (request.Status != adStatusCancel) request.Status = static_cast<EventStatusEnum>(CLng(*arguments[4]));
    }

    void ExecuteComplete(const ExecuteReport& report) override {
        std::array arguments{Given(static_cast<Long>(report.RecordsAffected)),
                             Failed(report.Failure),
                             Given(StatusOf(report.Failure)),
                             Given(Ref<Object>()),
                             Given(Ref<Object>()),
                             Self()};
        Send("ExecuteComplete", 5, arguments, 0b100);
    }

    void BeginTransComplete(Long level) override {
        std::array arguments{Given(level), Failed(nullptr), Given(StatusOf(nullptr)), Self()};
        Send("BeginTransComplete", 1, arguments, 0b100);
    }
    void CommitTransComplete() override { SendEnd("CommitTransComplete", 3); }
    void RollbackTransComplete() override { SendEnd("RollbackTransComplete", 2); }

private:
    static ByName::Argument Given(const Variant& value) { return value; }
    static ByName::Argument Failed(const Error* failure) {
        return Variant(failure ? Ref<Object>(New<ErrorObject>(*failure)) : Ref<Object>());
    }
    static Variant StatusOf(const Error* failure) { return failure ? adStatusErrorsOccurred : adStatusOK; }
    ByName::Argument Self() { return Variant(Ref<Object>(&connection_)); }

    void SendEnd(const char* event, DISPID identifier) {
        std::array arguments{Failed(nullptr), Given(StatusOf(nullptr)), Self()};
        Send(event, identifier, arguments, 0b010);
    }

    /// Calls the member of the sink. Returns false if it raised; a member that the sink does not have is ignored.
    bool Send(const char* event, DISPID identifier, std::span<ByName::Argument> arguments, std::uint32_t returned) {
        try {
            sink_.Call(sink_.IdOr(event, identifier), arguments, returned);
            return true;
        } catch (const Error& failure) {
            return failure.Number == err::NoSuchMember;
        }
    }

    Connection& connection_;
    ByName sink_;
    ULONG cookie_;
};

ULONG Advise(Object& object, const Ref<Object>& sink) {
    static std::atomic<ULONG> last = 0;
    const ULONG cookie = ++last;
    auto& connection = static_cast<Connection&>(object);
    connection.Advise(std::make_unique<Sink>(connection, sink, cookie));
    return cookie;
}

bool Unadvise(Object& object, ULONG cookie) {
    auto& connection = static_cast<Connection&>(object);
    for (ConnectionEvents* handler : connection.Handlers()) {
        const auto* sink = dynamic_cast<const Sink*>(handler);
        if (!sink || sink->Cookie() != cookie) continue;
        connection.Unadvise(*handler);
        return true;
    }
    return false;
}

constexpr EventSource Events{Connection::ClassName,
                             {0x00000400, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}},
                             Advise,
                             Unadvise};

[[maybe_unused]] const bool sinksRegistered = [] {
    RegisterEventSource(Events);
    return true;
}();

}  // namespace

}  // namespace ADODB
