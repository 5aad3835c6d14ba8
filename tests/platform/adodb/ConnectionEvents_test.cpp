#include "platform/adodb/Recordset.h"

#include "kit/FaultyProvider.h"

namespace {

using namespace ADODB;
using testing::ElementsAre;
using TestKit::FailureOf;

/// A handler that notes what is done with it, in a list that outlives it.
class Noting : public ConnectionEvents {
public:
    Noting(String name, std::vector<String>& notes) : name_(std::move(name)), notes_(notes) {}
    ~Noting() override { Note("ends"); }
    void WillExecute(ExecuteRequest&) override {
        Note("before");
        if (Before) Before();
        Note("and on");
    }
    void ExecuteComplete(const ExecuteReport&) override {
        if (After) After();
    }

    std::function<void()> Before, After;

private:
    void Note(const char* what) { notes_.push_back(name_ + " " + what); }

    const String name_;
    std::vector<String>& notes_;
};

class ConnectionEventsTest : public TestKit::WithDatabase {
protected:
    /// A handler that `other` owns.
    Noting& Owned(const char* name) {
        auto handler = std::make_unique<Noting>(name, notes);
        Noting& advised = *handler;
        other->Advise(std::move(handler));
        return advised;
    }

    std::vector<String> notes;
    Ref<Connection> other = Connect();
};

TEST_F(ConnectionEventsTest, AnOwnedHandlerIsDeletedWithItsConnection) {
    Owned("a");
    other->Execute("SELECT 1");
    other->Close();
    EXPECT_THAT(notes, ElementsAre("a before", "a and on")) << "a closed connection may be opened again";
    other->Open();
    other->Execute("SELECT 1");
    other = nullptr;
    EXPECT_THAT(notes, ElementsAre("a before", "a and on", "a before", "a and on", "a ends"));
}

TEST_F(ConnectionEventsTest, AnOwnedHandlerIsDeletedAfterTheSession) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    /// Asks at its end whether the transaction of the connection that owns it is still open.
    struct Asking : ConnectionEvents {
        Asking(Ref<Connection> asked, Variant& told) : con(std::move(asked)), answer(told) {}
        ~Asking() override {
            const Error failure = FailureOf([&] {
                answer = con->Execute("SELECT count(*) FROM Root_T")->Fields(0).Value();
                if (TestKit::IsFile()) con->Execute("PRAGMA busy_timeout=0");
                con->Execute("INSERT INTO Root_T (RootID) VALUES (2)");
            });
            if (failure.Number != 0) answer = failure.Description;
        }
        const Ref<Connection> con;
        Variant& answer;
    };
    Variant answer;
    other->BeginTrans();
    other->Execute("INSERT INTO Root_T (RootID) VALUES (1)");
    other->Advise(std::make_unique<Asking>(con, answer));
    other = nullptr;
    EXPECT_EQ(answer, Variant(Long{0}));
    EXPECT_EQ(Ask("SELECT RootID FROM Root_T"), Variant(Long{2})) << "nobody locks the table any more";
}

TEST_F(ConnectionEventsTest, AnOwnedHandlerThatIsRemovedIsDeletedAtOnce) {
    Noting& a = Owned("a");
    Owned("b");
    other->Unadvise(a);
    EXPECT_THAT(notes, ElementsAre("a ends"));
    other->Execute("SELECT 1");
    EXPECT_THAT(notes, ElementsAre("a ends", "b before", "b and on"));
}

TEST_F(ConnectionEventsTest, AHandlerThatRemovesItselfIsDeletedAfterItsCall) {
    Noting& a = Owned("a");
    Owned("b");
    a.Before = [&] { other->Unadvise(a); };
    other->Execute("SELECT 1");
    EXPECT_THAT(notes, ElementsAre("a before", "a and on", "b before", "b and on", "a ends"));
    notes.clear();
    other->Execute("SELECT 1");
    EXPECT_THAT(notes, ElementsAre("b before", "b and on"));
}

TEST_F(ConnectionEventsTest, AHandlerMayRemoveOneThatIsNotYetCalled) {
    Noting& a = Owned("a");
    Noting& b = Owned("b");
    a.Before = [&] { other->Unadvise(b); };
    other->Execute("SELECT 1");
    EXPECT_THAT(notes, ElementsAre("a before", "a and on", "b ends"));
}

TEST_F(ConnectionEventsTest, AHandlerThatThrowsAfterItTookItselfOutEndsAsWell) {
    Noting& a = Owned("a");
    a.Before = [&] {
        other->Unadvise(a);
        Raise(err::InvalidCall);
    };
    EXPECT_EQ(FailureOf([&] { other->Execute("SELECT 1"); }).Number, err::InvalidCall);
    EXPECT_THAT(notes, ElementsAre("a before", "a ends"));
}

TEST_F(ConnectionEventsTest, AHandlerRemovedInsideItsNestedCallIsDeletedAfterTheCall) {
    Noting& a = Owned("a");
    a.After = [&] {
        a.Before = [&] { other->Unadvise(a); };
        other->Execute("SELECT 2");
        notes.emplace_back("behind the inner statement");
    };
    other->Execute("SELECT 1");
    EXPECT_THAT(notes,
                ElementsAre("a before", "a and on", "a before", "a and on", "behind the inner statement", "a ends"));
}

TEST_F(ConnectionEventsTest, AHandlerMayTakeItselfOutAtItsEnd) {
    struct Leaving : ConnectionEvents {
        explicit Leaving(Connection& from) : con(from) {}
        ~Leaving() override { con.Unadvise(*this); }
        Connection& con;
    };
    other->Advise(std::make_unique<Leaving>(*other));
    auto second = std::make_unique<Leaving>(*other);
    Leaving& taken = *second;
    other->Advise(std::move(second));
    Owned("a");
    other->Unadvise(taken);
    other = nullptr;
    EXPECT_THAT(notes, ElementsAre("a ends"));
}

TEST_F(ConnectionEventsTest, ANullHandlerIsRejected) {
    EXPECT_EQ(FailureOf([&] { other->Advise(std::unique_ptr<ConnectionEvents>()); }).Number, err::ObjectNotSet);
    other->Execute("SELECT 1");
    EXPECT_EQ(other->State(), adStateOpen);
}

}  // namespace
