#pragma once

#include "kit/Database.h"

/// A provider that fails on demand: every call that reaches the database counts, and one of them fails.
///
/// Open a connection with the result of `FaultyVersionOf` after `InstallFaultyProvider()`.
namespace TestKit {

void InstallFaultyProvider();

/// Returns the connection string of the same database by the faulty provider.
String FaultyVersionOf(const String& settings);

/// Installs the provider and returns a connection by it to the database of a test.
Ref<Connection> FaultyConnectionTo(const TestDatabase& database);

/// E_FAIL "injected", and what the engine reports for a full disk.
Error Injected();
Error DiskFull();

/// Makes the call with this number fail with `failure`; calls are counted from 1, beginning with the next one. With 0
/// no call fails.
void FailAtCall(int number, const Error& failure = Injected());

/// Makes each later statement that returns rows fail before the row with this number, from 1, until `FailAtCall` is
/// called.
void FailAtRow(int row);

/// Runs `action` before each call from now on. The action simulates what other programs do between two calls; its own
/// calls are not counted.
void BeforeEachCall(std::function<void()> action);

/// Returns the number of calls that reached the database since `FailAtCall`.
int CallsSoFar();

/// A test with a second connection to its database, `faulty`, whose calls fail on demand.
class WithFaults : public WithDatabase {
protected:
    ~WithFaults() override { FailAtCall(0); }

    /// Fails the call of this number within `operation`, which must raise it with this source.
    template <class Operation>
    void FailOnce(int call, const String& source, Operation operation) {
        FailAtCall(call);
        const Error failure = FailureOf(operation);
        FailAtCall(0);
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80004005)) << "call " << call;
        EXPECT_EQ(failure.Source, source) << "call " << call;
        EXPECT_EQ(failure.Description, "injected") << "call " << call;
    }

    /// Returns the calls that `operation` makes when none fails.
    template <class Operation>
    int CallsOf(Operation operation) {
        FailAtCall(0);
        operation();
        return CallsSoFar();
    }

    Long CountOf(const String& table) { return CLng(Ask("SELECT COUNT(*) FROM " + table)); }

    const Ref<Connection> faulty = FaultyConnectionTo(database);
};

}  // namespace TestKit
