#include "platform/adodb/providers/byname/ByNameSession.h"

#include "platform/adodb/providers/byname/SystemRecordset.h"

#include "platform/runtime/Convert.h"

#include <array>
#include <limits>

namespace ADODB {

using namespace Platform;

namespace {

using Argument = ByName::Argument;

/// Returns the rows of a recordset; none of null and of a closed one.
Outcome RowsOf(const Variant& recordset) {
    Outcome outcome;
    const Ref<Object> object = To<Ref<Object>>(recordset);
    if (object && !IsClosed(ByName(object))) outcome.cursor = CursorByName(object);
    return outcome;
}

/// Returns the options for the text of a statement, in which the name of a table has become a select.
Long OptionsOf(const RowsRequest& modes) {
    const bool ofTable = modes.Options > 0 && (modes.Options & adCmdTable) != 0;
    return ofTable ? Long{adCmdText} : modes.Options;
}

class ByNameSession final : public Session {
public:
    explicit ByNameSession(const Ref<Object>& connection) : object_(connection), connection_(connection) {}

    Outcome Run(std::string_view text) override {
        std::array arguments{Argument(String(text))};
        return Passed(text, [&] { return RowsOf(connection_.Call("Execute", arguments)); });
    }

    Outcome RunCounted(std::string_view text) override {
        std::array arguments{Argument(String(text)), Argument(Variant())};
        return Passed(text, [&] {
            Outcome outcome = RowsOf(connection_.Call("Execute", arguments, 0b10));
            outcome.affected = arguments[1]->Is<Empty>() ? -1 : CLng(*arguments[1]);
            return outcome;
        });
    }

    Outcome Open(std::string_view text, const RowsRequest& modes) override {
        return Passed(text, [&]() -> Outcome {
            const Ref<Object> object = NewRecordset();
            if (!object) return Run(text);
            const ByName recordset(object);
            if (modes.Location) recordset.Put("CursorLocation", Long{*modes.Location});
            std::array arguments{Argument(String(text)), Argument(), Argument(Long{modes.CursorType}),
                                 Argument(Long{modes.LockType}), Argument(OptionsOf(modes))};
            recordset.Call("Open", arguments);
            return RowsOf(object);
        });
    }

    void UseLocation(CursorLocationEnum location) override {
        if (connection_.Has("CursorLocation")) connection_.Put("CursorLocation", Long{location});
    }

    void Begin(Long) override { Command("BeginTrans"); }
    void Commit(Long) override { Command("CommitTrans"); }
    void RollBack(Long) override { Command("RollbackTrans"); }
    /// The other side knows, and raises its own failure.
    bool InTransaction() const override { return true; }
    Long MostLevels() const override { return std::numeric_limits<Long>::max(); }

    bool IsBroken() const override { return false; }
    void SetCommandTimeout(Long) override {}

    // A recordset passes its edits on to the other side's recordset, and does not call these.
    std::int64_t Change(std::string_view, std::span<const Variant>) override { RaiseNotStatements(); }
    std::int64_t Insert(std::string_view, std::span<const Variant>, std::string_view) override { RaiseNotStatements(); }
    String Quoted(std::string_view) const override { RaiseNotStatements(); }

private:
    [[noreturn]] static void RaiseNotStatements() { RaiseAdo(adErrFeatureNotAvailable, ConnectionSource); }

    /// Returns a closed recordset of the other side; null if only `Execute` makes one.
    Ref<Object> NewRecordset() const {
        if (connection_.Has("NewRecordset")) return To<Ref<Object>>(connection_.Call("NewRecordset"));
        return NewSystemRecordset(object_);
    }

    void Command(const char* operation) {
        Passed({}, [&] { return connection_.Call(operation); });
    }

    /// Returns what `call` returns. Adds to its failure what the other side reports about it.
    template <class F>
    auto Passed(std::string_view statement, F call) -> decltype(call()) {
        try {
            return call();
        } catch (Error& failure) {
            if (failure.Number < 0) Complete(failure, statement);
            throw;
        }
    }
    void Complete(Error& failure, std::string_view statement) const;

    Ref<Object> object_;
    ByName connection_;
};

void ByNameSession::Complete(Error& failure, std::string_view statement) const {
    failure.Provider = failure.Source;
    failure.Statement = String(statement);
    if (!connection_.Has("Errors")) return;
    try {
        const ByName errors(To<Ref<Object>>(connection_.Call("Errors")));
        if (CLng(errors.Call("Count")) == 0) return;
        const ByName first(To<Ref<Object>>(connection_.ItemOf("Errors", Long{0})));
        if (CLng(first.Call("Number")) != failure.Number) return;
        failure.SQLState = CStr(first.Call("SQLState"));
        failure.NativeError = CLng(first.Call("NativeError"));
    } catch (const Error&) {  // the failure itself matters more than what is reported about it
    }
}

}  // namespace

bool IsClosed(const ByName& object) { return object.Has("State") && CLng(object.Call("State")) == adStateClosed; }

std::unique_ptr<Session> OpenByName(const Ref<Object>& connection) {
    return std::make_unique<ByNameSession>(connection);
}

}  // namespace ADODB
