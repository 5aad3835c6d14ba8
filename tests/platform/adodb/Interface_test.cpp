#include "platform/adodb/Errors.h"
#include "platform/adodb/Fields.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/component/dispatch/Interface.h"
#include "platform/runtime/Collection.h"

namespace {

using namespace ADODB;
using namespace Platform;
using testing::ElementsAre;
using TestKit::FailureOf;

using Values = std::vector<Variant>;

Variant Do(const Ref<Object>& object, const char* name, Values arguments = {}) {
    return Invoke(*object, name, MemberKind::Operation, arguments);
}

Variant Get(const Ref<Object>& object, const char* name, Values arguments = {}) {
    return Invoke(*object, name, MemberKind::Get, arguments);
}

void Put(const Ref<Object>& object, const char* name, Values arguments, MemberKind kind = MemberKind::Put) {
    Invoke(*object, name, kind, arguments);
}

Ref<Object> ObjectIn(const Variant& value) { return To<Ref<Object>>(value); }

/// The number that a call by name raises; 0 if it raises none.
Long FailureOfDo(const Ref<Object>& object, const char* name, Values arguments = {}) {
    return FailureOf([&] { Do(object, name, std::move(arguments)); }).Number;
}
Long FailureOfGet(const Ref<Object>& object, const char* name, Values arguments = {}) {
    return FailureOf([&] { Get(object, name, std::move(arguments)); }).Number;
}
Long FailureOfPut(const Ref<Object>& object, const char* name, Values arguments, MemberKind kind = MemberKind::Put) {
    return FailureOf([&] { Put(object, name, std::move(arguments), kind); }).Number;
}

/// Returns the members that the enumerator of an object visits.
Values Walked(const Ref<Object>& object) {
    const auto walk = To<Ref<Enumerator>>(Do(object, "_NewEnum"));
    Values items;
    for (Variant item; walk->Next(item);) items.push_back(item);
    return items;
}

constexpr const char* AllClinics = "SELECT ClinicID, ClinicName, City FROM Clinic_T ORDER BY ClinicID";

class InterfaceTest : public TestKit::WithDatabase {
protected:
    InterfaceTest() {
        Run("INSERT INTO Clinic_T (ClinicID, ClinicName, City) VALUES "
            "(1,'A','Lund'),(2,'B',NULL),(3,'C','Ystad')");
    }

    /// An open recordset that scrolls and can be changed.
    Ref<Recordset> Clinics() {
        const Ref<Recordset> rs = New<Recordset>();
        Put(rs, "CursorLocation", {adUseClient});
        Do(rs, "Open", {AllClinics, con, adOpenStatic, adLockOptimistic, adCmdText});
        return rs;
    }

    /// The cursor and lock types with which `con` opens statements.
    class Modes {
    public:
        explicit Modes(const Ref<Connection>& con) : con_(con) { con_->Advise(log_); }
        ~Modes() { con_->Unadvise(log_); }
        Modes(const Modes&) = delete;
        const String& Last() const { return log_.seen.back(); }

    private:
        const Ref<Connection> con_;
        TestKit::ModeLog log_;
    };
};

// ---- tables -----------------------------------------------------------------------------------------

TEST_F(InterfaceTest, AConnectionDescribesItsMembers) {
    EXPECT_THAT(TestKit::MembersOf(*con),
                ElementsAre("put ConnectionString(string)", "get ConnectionString -> string",
                            "put CursorLocation(CursorLocationEnum)", "get CursorLocation -> CursorLocationEnum",
                            "put ConnectionTimeout(int32)", "get ConnectionTimeout -> int32",
                            "put CommandTimeout(int32)", "get CommandTimeout -> int32", "get State -> ObjectStateEnum",
                            "Open([ConnectionString: string&], [UserID: string&], [Password: string&], "
                            "[Options: int32])",
                            "Close()",
                            "Execute(CommandText: string&, [RecordsAffected: variant&], [Options: int32]) -> Recordset",
                            "BeginTrans() -> int32", "CommitTrans()", "RollbackTrans()", "get Errors -> Errors",
                            "NewRecordset() -> Recordset"));
    EXPECT_THAT(
        TestKit::MembersOf(*ObjectIn(Get(con, "Errors"))),
        ElementsAre("get Count -> int32", "get Item(Index: int32) -> Error", "Clear()", "_NewEnum() -> Enumerator"));
    EXPECT_THAT(TestKit::MembersOf(*New<ErrorObject>(Error())),
                ElementsAre("get Number -> int32", "get Source -> string", "get Description -> string",
                            "get NativeError -> int32", "get SQLState -> string"));
}

TEST_F(InterfaceTest, ARecordsetDescribesItsMembers) {
    EXPECT_THAT(
        TestKit::MembersOf(*New<Recordset>()),
        ElementsAre("put Source(string)", "get Source -> string", "get ActiveConnection -> Connection",
                    "put ActiveConnection(variant)", "putref ActiveConnection(Connection&)",
                    "put CursorType(CursorTypeEnum)", "get CursorType -> CursorTypeEnum", "put LockType(LockTypeEnum)",
                    "get LockType -> LockTypeEnum", "put CursorLocation(CursorLocationEnum)",
                    "get CursorLocation -> CursorLocationEnum", "get State -> ObjectStateEnum",
                    "Open([Source: variant&], [ActiveConnection: variant&], [CursorType: CursorTypeEnum], "
                    "[LockType: LockTypeEnum], [Options: int32])",
                    "Close()", "Requery()", "get EOF -> boolean", "get BOF -> boolean", "get RecordCount -> int32",
                    "get AbsolutePosition -> PositionEnum", "MoveFirst()", "MoveLast()", "MoveNext()", "MovePrevious()",
                    "Move(NumRecords: int32)", "get Fields -> Fields", "get Collect(Index: variant) -> variant",
                    "put Collect(variant)", "get EditMode -> EditModeEnum", "AddNew()", "Update()", "CancelUpdate()",
                    "Delete([AffectRecords: AffectEnum])"));
    const Ref<Object> fields = ObjectIn(Get(Clinics(), "Fields"));
    EXPECT_THAT(TestKit::MembersOf(*fields),
                ElementsAre("get Count -> int32", "get Item(Index: variant&) -> Field", "_NewEnum() -> Enumerator"));
    EXPECT_THAT(TestKit::MembersOf(*ObjectIn(Get(fields, "Item", {Long{0}}))),
                ElementsAre("get Name -> string", "get Type -> DataTypeEnum", "get DefinedSize -> int32",
                            "put Value(variant)", "get Value -> variant", "get OriginalValue -> variant"));
}

/// The members of an identity, as their names.
std::vector<String> NamesOf(const Object& object, Long id) {
    std::vector<String> names;
    for (const Member& member : object.Describe().Members())
        if (member.DispId == id) names.push_back(member.Name);
    return names;
}

TEST_F(InterfaceTest, EachClassHasItsDefaultMemberAndItsWalk) {
    const Ref<Recordset> rs = Clinics();
    const Ref<Object> fields = ObjectIn(Get(rs, "Fields")), errors = ObjectIn(Get(con, "Errors"));
    EXPECT_THAT(NamesOf(*con, DefaultMember), ElementsAre("ConnectionString", "ConnectionString"));
    EXPECT_THAT(NamesOf(*rs, DefaultMember), ElementsAre("Fields"));
    EXPECT_THAT(NamesOf(*fields, DefaultMember), ElementsAre("Item"));
    EXPECT_THAT(NamesOf(*ObjectIn(Get(fields, "Item", {"City"})), DefaultMember), ElementsAre("Value", "Value"));
    EXPECT_THAT(NamesOf(*errors, DefaultMember), ElementsAre("Item"));
    EXPECT_THAT(NamesOf(*New<ErrorObject>(Error()), DefaultMember), ElementsAre("Description"));
    EXPECT_THAT(NamesOf(*fields, EnumeratorMember), ElementsAre("_NewEnum"));
    EXPECT_THAT(NamesOf(*errors, EnumeratorMember), ElementsAre("_NewEnum"));
    const Interface& members = rs->Describe();
    for (const char* name : {"ActiveConnection", "Collect"})
        EXPECT_EQ(members.Find(name, MemberKind::Get)->DispId, members.Find(name, MemberKind::Put)->DispId) << name;
}

// ---- connection -------------------------------------------------------------------------------------

TEST_F(InterfaceTest, AConnectionIsOpenedAndClosed) {
    const Ref<Connection> other = New<Connection>();
    EXPECT_EQ(Get(other, "State"), Variant(adStateClosed));
    EXPECT_EQ(FailureOfDo(other, "Close"), adErrObjectClosed);
    EXPECT_EQ(FailureOfDo(other, "Execute", {"SELECT 1"}), adErrObjectClosed);
    EXPECT_EQ(FailureOfDo(other, "Open"), adErrProviderNotFound) << "nothing tells what to open";
    Put(other, "ConnectionString", {con->ConnectionString()});
    Do(other, "Open");
    EXPECT_EQ(Get(other, "State"), Variant(adStateOpen));
    EXPECT_EQ(Get(other, "ConnectionString"), Variant(con->ConnectionString()));
    EXPECT_EQ(FailureOfPut(other, "ConnectionString", {"x"}), adErrObjectOpen);
    EXPECT_EQ(FailureOfDo(other, "Open"), adErrObjectOpen);
    Do(other, "Close");
    EXPECT_EQ(Get(other, "State"), Variant(adStateClosed));
    Do(other, "Open", {con->ConnectionString(), "", "", Long{-1}});
    EXPECT_EQ(other->State(), adStateOpen);
    EXPECT_EQ(FailureOfDo(New<Connection>(), "Open", {"Provider=SQLite;Data Source=:memory:", "", "secret"}),
              MultipleStepFailed)
        << "the password reaches the provider, which has none";
}

TEST_F(InterfaceTest, AStatementIsExecutedAndItsCountIsWrittenBack) {
    Values action{"UPDATE Clinic_T SET City='Eslöv' WHERE ClinicID<3", Variant()};
    const auto closed = To<Ref<Recordset>>(Invoke(*con, "Execute", MemberKind::Operation, action));
    EXPECT_EQ(action[1], Variant(Long{2}));
    ASSERT_TRUE(closed);
    EXPECT_EQ(closed->State(), adStateClosed);
    const auto rows = To<Ref<Recordset>>(Do(con, "Execute", {AllClinics}));
    EXPECT_EQ(Get(rows, "Collect", {"City"}), Variant("Eslöv"));
    EXPECT_FALSE(ObjectIn(Do(con, "Execute", {"DELETE FROM Clinic_T", Variant(), adExecuteNoRecords})));
    EXPECT_EQ(Ask("SELECT count(*) FROM Clinic_T"), Variant(Long{0}));
    Values failing{"DELETE FROM Nowhere", Long{77}};
    EXPECT_EQ(FailureOf([&] { Invoke(*con, "Execute", MemberKind::Operation, failing); }).Number, NoTable);
    EXPECT_EQ(failing[1], Variant(Long{77})) << "a failure sets no count";
    EXPECT_EQ(FailureOfDo(con, "Execute"), err::ArgumentNotOptional);
}

TEST_F(InterfaceTest, TransactionsAreEndedByName) {
    EXPECT_EQ(Do(con, "BeginTrans"), Variant(Long{1}));
    EXPECT_EQ(Do(con, "BeginTrans"), Variant(Long{2}));
    Do(con, "Execute", {"DELETE FROM Clinic_T"});
    Do(con, "RollbackTrans");
    Do(con, "Execute", {"DELETE FROM Clinic_T WHERE ClinicID=1"});
    EXPECT_EQ(FailureOfDo(con, "Close"), adErrInTransaction);
    Do(con, "CommitTrans");
    EXPECT_EQ(Ask("SELECT count(*) FROM Clinic_T"), Variant(Long{2}));
    EXPECT_EQ(FailureOfDo(con, "CommitTrans"), NoTransaction);
    EXPECT_EQ(FailureOfDo(con, "RollbackTrans"), NoTransaction);
}

TEST_F(InterfaceTest, AConnectionsCursorLocationIsOneOfThree) {
    EXPECT_EQ(Get(con, "CursorLocation"), Variant(adUseServer));
    Put(con, "CursorLocation", {"3"});
    EXPECT_EQ(Get(con, "CursorLocation"), Variant(adUseClient));
    EXPECT_EQ(Get(ObjectIn(Do(con, "Execute", {AllClinics})), "RecordCount"), Variant(Long{3}));
    for (const Long wrong : {0, 4, -1, 0x7FFFFFFF})
        EXPECT_EQ(FailureOfPut(con, "CursorLocation", {wrong}), adErrInvalidArgument) << wrong;
    EXPECT_EQ(FailureOfPut(con, "CursorLocation", {"client"}), err::TypeMismatch);
    EXPECT_EQ(Get(con, "CursorLocation"), Variant(adUseClient)) << "a failure changes nothing";
}

// ---- errors -----------------------------------------------------------------------------------------

TEST_F(InterfaceTest, ErrorsContainTheFailuresOfTheEngine) {
    const Ref<Object> errors = ObjectIn(Get(con, "Errors"));
    EXPECT_EQ(Get(errors, "Count"), Variant(Long{0}));
    EXPECT_EQ(FailureOfGet(errors, "Item", {Long{0}}), adErrItemNotFound);
    FailureOfDo(con, "Execute", {"SELECT Nix FROM Clinic_T"});
    EXPECT_EQ(Get(errors, "Count"), Variant(Long{1})) << "the object has the current errors";
    const Ref<Object> failure = ObjectIn(Get(errors, "Item", {Long{0}}));
    const Error& native = con->Errors().front();
    EXPECT_EQ(Get(failure, "Number"), Variant(UnknownName));
    EXPECT_EQ(Get(failure, "Source"), Variant(native.Source));
    EXPECT_EQ(Get(failure, "Description"), Variant(TestKit::NoSuchColumn("Nix")));
    EXPECT_EQ(Get(failure, "NativeError"), Variant(native.NativeError));
    EXPECT_NE(native.NativeError, 0);
    EXPECT_EQ(Get(failure, "SQLState"), Variant(TestKit::NoSuchColumnState()));
    const Values walked = Walked(errors);
    ASSERT_EQ(walked.size(), 1U);
    EXPECT_EQ(Get(ObjectIn(walked[0]), "Number"), Variant(UnknownName));
    EXPECT_EQ(FailureOfGet(errors, "Item", {Long{1}}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(errors, "Item", {Long{-1}}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(errors, "Item", {"first"}), err::TypeMismatch);
    EXPECT_EQ(FailureOfPut(failure, "Number", {Long{1}}), err::NoSuchMember);
}

TEST_F(InterfaceTest, ErrorsOutliveASuccessAndAreClearedByName) {
    const Ref<Object> errors = ObjectIn(Get(con, "Errors"));
    FailureOfDo(con, "Execute", {"SELEKT"});
    Do(con, "Execute", {"SELECT 1"});
    FailureOfDo(con, "CommitTrans");
    const Ref<Object> kept = ObjectIn(Get(errors, "Item", {Long{0}}));
    Do(errors, "Clear");
    EXPECT_EQ(Get(errors, "Count"), Variant(Long{0}));
    EXPECT_TRUE(con->Errors().empty());
    EXPECT_TRUE(Walked(errors).empty());
    EXPECT_EQ(Get(kept, "Number"), Variant(ErrorsInCommand)) << "what was taken out of the list stays";
}

TEST_F(InterfaceTest, ErrorsKeepTheirConnection) {
    Ref<Connection> other = Connect();
    const Ref<Object> errors = ObjectIn(Get(other, "Errors"));
    FailureOfDo(other, "Execute", {"SELEKT"});
    other = nullptr;
    EXPECT_EQ(Get(errors, "Count"), Variant(Long{1}));
    EXPECT_EQ(Get(ObjectIn(Get(errors, "Item", {Long{0}})), "Number"), Variant(ErrorsInCommand));
}

// ---- opening a recordset ----------------------------------------------------------------------------

TEST_F(InterfaceTest, ARecordsetIsOpenedWithAllItsArguments) {
    const Modes modes(con);
    const Ref<Recordset> rs = New<Recordset>();
    Do(rs, "Open", {"Clinic_T", con, adOpenKeyset, adLockOptimistic, adCmdTable});
    EXPECT_EQ(modes.Last(), "1 3 2");
    EXPECT_EQ(Sent().back(), "select * from Clinic_T");
    EXPECT_EQ(Get(rs, "State"), Variant(adStateOpen));
    EXPECT_EQ(ObjectIn(Get(rs, "ActiveConnection")), con);
    EXPECT_EQ(FailureOfDo(rs, "Open", {AllClinics, con}), adErrObjectOpen);
    Do(rs, "Close");
    EXPECT_EQ(Get(rs, "State"), Variant(adStateClosed));
    EXPECT_EQ(FailureOfDo(rs, "Close"), adErrObjectClosed);
}

TEST_F(InterfaceTest, AnOmittedArgumentOfOpenIsTakenFromTheProperty) {
    const Modes modes(con);
    const Ref<Recordset> rs = New<Recordset>();
    Put(rs, "Source", {AllClinics});
    Put(rs, "ActiveConnection", {con}, MemberKind::PutRef);
    Put(rs, "CursorType", {adOpenStatic});
    Put(rs, "LockType", {adLockPessimistic});
    Do(rs, "Open");
    EXPECT_EQ(modes.Last(), "3 2 -1");
    EXPECT_EQ(Sent().back(), AllClinics);
    Do(rs, "Close");
    Do(rs, "Open", {Variant(), Variant(), adOpenUnspecified, adLockUnspecified});
    EXPECT_EQ(modes.Last(), "3 2 -1") << "unspecified is as good as left out";
    Do(rs, "Close");
    Do(rs, "Open", {"SELECT 1", Variant(), adOpenKeyset, adLockReadOnly});
    EXPECT_EQ(modes.Last(), "1 1 -1") << "what is given wins";
    Do(rs, "Close");
    EXPECT_EQ(Get(rs, "Source"), Variant("SELECT 1")) << "and is the property's from then on";
    EXPECT_EQ(Get(rs, "CursorType"), Variant(adOpenKeyset));
    const Ref<Recordset> plain = New<Recordset>();
    Do(plain, "Open", {AllClinics, con});
    EXPECT_EQ(modes.Last(), "0 1 -1");
}

TEST_F(InterfaceTest, AConnectionStringOpensAConnectionForThisRecordsetOnly) {
    const Ref<Recordset> rs = New<Recordset>();
    Do(rs, "Open", {AllClinics, con->ConnectionString()});
    const auto own = To<Ref<Connection>>(Get(rs, "ActiveConnection"));
    EXPECT_NE(own, con);
    EXPECT_EQ(own->State(), adStateOpen);
    EXPECT_EQ(Get(rs, "Collect", {"ClinicName"}), Variant("A"));
    EXPECT_EQ(FailureOfDo(New<Recordset>(), "Open", {AllClinics, "Provider=Nope"}), adErrProviderNotFound);
}

TEST_F(InterfaceTest, OpenRaisesAndStaysClosed) {
    const auto number = [&](Values arguments) {
        const Ref<Recordset> rs = New<Recordset>();
        const Long raised = FailureOfDo(rs, "Open", std::move(arguments));
        EXPECT_EQ(rs->State(), adStateClosed);
        return raised;
    };
    EXPECT_EQ(number({}), adErrInvalidConnection);
    EXPECT_EQ(number({AllClinics}), adErrInvalidConnection);
    EXPECT_EQ(number({AllClinics, Ref<Object>()}), adErrInvalidConnection) << "a null reference is not a connection";
    EXPECT_EQ(number({AllClinics, New<Connection>()}), adErrInvalidConnection);
    EXPECT_EQ(number({AllClinics, New<Recordset>()}), err::TypeMismatch);
    EXPECT_EQ(number({AllClinics, Long{5}}), err::ObjectRequired);
    EXPECT_EQ(number({Null{}, con}), err::InvalidNull);
    for (const Long wrong : {-2, 4, 0x7FFFFFFF})
        EXPECT_EQ(number({AllClinics, con, wrong}), adErrInvalidArgument) << wrong;
    for (const Long wrong : {-2, 0, 5})
        EXPECT_EQ(number({AllClinics, con, Long{0}, wrong}), adErrInvalidArgument) << wrong;
    EXPECT_EQ(number({AllClinics, con, "static"}), err::TypeMismatch);
    EXPECT_EQ(number({AllClinics, con, 1e12}), err::Overflow);
    EXPECT_EQ(number({AllClinics, con, Long{0}, Long{1}, adExecuteNoRecords}), adErrInvalidArgument);
    EXPECT_EQ(number({"SELECT * FROM Nowhere", con}), NoTable);
}

TEST_F(InterfaceTest, TheWayToOpenIsSetWhileClosedOnly) {
    const Ref<Recordset> rs = New<Recordset>();
    EXPECT_EQ(Get(rs, "Source"), Variant(""));
    EXPECT_EQ(Get(rs, "CursorType"), Variant(adOpenForwardOnly));
    EXPECT_EQ(Get(rs, "LockType"), Variant(adLockReadOnly));
    EXPECT_EQ(Get(rs, "CursorLocation"), Variant(adUseServer));
    EXPECT_FALSE(ObjectIn(Get(rs, "ActiveConnection")));
    for (const char* name : {"CursorType", "LockType", "CursorLocation"}) {
        Put(rs, name, {Long{3}});
        EXPECT_EQ(Get(rs, name), Variant(Long{3})) << name;
        for (const Long wrong : {-2, 5, 0x7FFFFFFF})
            EXPECT_EQ(FailureOfPut(rs, name, {wrong}), adErrInvalidArgument) << name << wrong;
        EXPECT_EQ(FailureOfPut(rs, name, {"x"}), err::TypeMismatch) << name;
        EXPECT_EQ(Get(rs, name), Variant(Long{3})) << name << ": a failure changes nothing";
    }
    Do(rs, "Open", {AllClinics, con});
    for (const char* name : {"Source", "CursorType", "LockType", "CursorLocation"})
        EXPECT_EQ(FailureOfPut(rs, name, {Long{1}}), adErrObjectOpen) << name;
    EXPECT_EQ(Get(rs, "Source"), Variant(AllClinics));
}

TEST_F(InterfaceTest, TheWayToOpenIsSetNativelyByTheSameRules) {
    const Ref<Recordset> rs = New<Recordset>();
    rs->SetSource(AllClinics);
    rs->SetCursorType(adOpenDynamic);
    rs->SetLockType(adLockBatchOptimistic);
    EXPECT_EQ(rs->Source(), AllClinics);
    EXPECT_EQ(rs->CursorType(), adOpenDynamic);
    EXPECT_EQ(rs->LockType(), adLockBatchOptimistic);
    EXPECT_EQ(FailureOf([&] { rs->SetCursorType(static_cast<CursorTypeEnum>(4)); }).Number, adErrInvalidArgument);
    EXPECT_EQ(FailureOf([&] { rs->SetLockType(static_cast<LockTypeEnum>(0)); }).Number, adErrInvalidArgument);
    rs->Open("SELECT 1", con);
    EXPECT_EQ(rs->CursorType(), adOpenForwardOnly) << "a native opening has its own defaults";
    EXPECT_EQ(FailureOf([&] { rs->SetSource("SELECT 2"); }).Number, adErrObjectOpen);
    EXPECT_EQ(FailureOf([&] { rs->SetCursorType(adOpenStatic); }).Number, adErrObjectOpen);
    EXPECT_EQ(FailureOf([&] { rs->SetLockType(adLockReadOnly); }).Number, adErrObjectOpen);
    EXPECT_EQ(rs->Source(), "SELECT 1");
}

TEST_F(InterfaceTest, TheActiveConnectionIsReplacedInBothForms) {
    const Ref<Recordset> rs = Clinics();
    const Ref<Connection> other = Connect();
    for (const MemberKind kind : {MemberKind::Put, MemberKind::PutRef}) {
        Put(rs, "ActiveConnection", {Ref<Object>()}, kind);
        EXPECT_FALSE(ObjectIn(Get(rs, "ActiveConnection")));
        EXPECT_EQ(FailureOfDo(rs, "Requery"), adErrInvalidConnection);
        Put(rs, "ActiveConnection", {other}, kind);
        EXPECT_EQ(ObjectIn(Get(rs, "ActiveConnection")), other);
        EXPECT_EQ(FailureOfPut(rs, "ActiveConnection", {New<Connection>()}, kind), adErrInvalidConnection);
        EXPECT_EQ(FailureOfPut(rs, "ActiveConnection", {rs}, kind), err::TypeMismatch);
        EXPECT_EQ(FailureOfPut(rs, "ActiveConnection", {Long{1}}, kind), err::ObjectRequired);
        EXPECT_EQ(ObjectIn(Get(rs, "ActiveConnection")), other) << "a failure changes nothing";
    }
    Put(rs, "ActiveConnection", {con->ConnectionString()});
    EXPECT_EQ(To<Ref<Connection>>(Get(rs, "ActiveConnection"))->ConnectionString(), con->ConnectionString());
    Do(rs, "Requery");
    const Ref<Recordset> server = New<Recordset>();
    Do(server, "Open", {AllClinics, con});
    EXPECT_EQ(FailureOfPut(server, "ActiveConnection", {Ref<Object>()}), adErrObjectOpen);
}

// ---- position ---------------------------------------------------------------------------------------

TEST_F(InterfaceTest, ARecordsetIsMovedByName) {
    const Ref<Recordset> rs = Clinics();
    const auto position = [&] { return CLng(Get(rs, "AbsolutePosition")); };
    EXPECT_EQ(Get(rs, "RecordCount"), Variant(Long{3}));
    EXPECT_EQ(position(), 1);
    Do(rs, "MoveNext");
    EXPECT_EQ(position(), 2);
    Do(rs, "MoveLast");
    EXPECT_EQ(position(), 3);
    EXPECT_EQ(Get(rs, "EOF"), Variant(false));
    Do(rs, "Move", {Long{1}});
    EXPECT_EQ(Get(rs, "EOF"), Variant(true));
    EXPECT_EQ(position(), adPosEOF);
    EXPECT_EQ(FailureOfDo(rs, "MoveNext"), adErrNoCurrentRecord);
    EXPECT_EQ(FailureOfGet(rs, "EditMode"), adErrNoCurrentRecord);
    Do(rs, "MovePrevious");
    EXPECT_EQ(position(), 3);
    Do(rs, "MoveFirst");
    EXPECT_EQ(position(), 1);
    EXPECT_EQ(Get(rs, "BOF"), Variant(false));
    Do(rs, "Move", {Long{-1}});
    EXPECT_EQ(Get(rs, "BOF"), Variant(true));
    EXPECT_EQ(position(), adPosBOF);
    EXPECT_EQ(FailureOfDo(rs, "Move"), err::ArgumentNotOptional);
    EXPECT_EQ(FailureOfPut(rs, "AbsolutePosition", {Long{1}}), err::NoSuchMember);
}

TEST_F(InterfaceTest, AClosedRecordsetRaisesButReturnsItsOpenSettings) {
    const Ref<Recordset> rs = New<Recordset>();
    for (const char* name : {"EOF", "BOF", "RecordCount", "AbsolutePosition", "EditMode"})
        EXPECT_EQ(FailureOfGet(rs, name), adErrObjectClosed) << name;
    for (const char* name : {"MoveFirst", "MoveLast", "MoveNext", "MovePrevious", "AddNew", "Update", "CancelUpdate",
                             "Delete", "Requery", "Close"})
        EXPECT_EQ(FailureOfDo(rs, name), adErrObjectClosed) << name;
    EXPECT_EQ(FailureOfGet(rs, "Collect", {"City"}), adErrObjectClosed);
    EXPECT_EQ(FailureOfPut(rs, "Collect", {"City", "x"}), adErrObjectClosed);
    for (const char* name : {"State", "Source", "CursorType", "LockType", "CursorLocation", "ActiveConnection"})
        EXPECT_EQ(FailureOfGet(rs, name), 0) << name;
}

// ---- changing rows ----------------------------------------------------------------------------------

TEST_F(InterfaceTest, RowsAreChangedByName) {
    const Ref<Recordset> rs = Clinics();
    EXPECT_EQ(Get(rs, "EditMode"), Variant(adEditNone));
    Put(rs, "Collect", {"City", "Malmö"});
    EXPECT_EQ(Get(rs, "EditMode"), Variant(adEditInProgress));
    EXPECT_EQ(FailureOfDo(rs, "Close"), adErrIllegalOperation);
    EXPECT_EQ(FailureOfDo(rs, "Requery"), adErrIllegalOperation);
    Do(rs, "CancelUpdate");
    EXPECT_EQ(Get(rs, "Collect", {"City"}), Variant("Lund"));
    Do(rs, "AddNew");
    EXPECT_EQ(Get(rs, "EditMode"), Variant(adEditAdd));
    Put(rs, "Collect", {"ClinicName", "D"});
    Do(rs, "Update");
    EXPECT_EQ(Get(rs, "EditMode"), Variant(adEditNone));
    EXPECT_EQ(Ask("SELECT ClinicID FROM Clinic_T WHERE ClinicName='D'"), Get(rs, "Collect", {Long{0}}));
    for (const Long wrong : {2, 3, 9, -1}) EXPECT_EQ(FailureOfDo(rs, "Delete", {wrong}), adErrInvalidArgument) << wrong;
    Do(rs, "Delete");
    Do(rs, "MoveFirst");
    Do(rs, "Delete", {adAffectCurrent});
    EXPECT_EQ(FailureOfGet(rs, "Collect", {"City"}), DeletedRow);
    EXPECT_EQ(AskAll("SELECT ClinicName FROM Clinic_T ORDER BY ClinicName"), "B,C");
    Run("UPDATE Clinic_T SET City='Ystad'");
    Do(rs, "Requery");
    EXPECT_EQ(Get(rs, "Collect", {"City"}), Variant("Ystad"));
}

TEST_F(InterfaceTest, AReadOnlyRecordsetRejectsEachChange) {
    const Ref<Recordset> rs = New<Recordset>();
    Do(rs, "Open", {AllClinics, con});
    EXPECT_EQ(FailureOfDo(rs, "AddNew"), adErrFeatureNotAvailable);
    EXPECT_EQ(FailureOfDo(rs, "Delete"), adErrFeatureNotAvailable);
    EXPECT_EQ(FailureOfPut(rs, "Collect", {"City", "x"}), adErrFeatureNotAvailable);
    const Ref<Object> city = ObjectIn(Get(ObjectIn(Get(rs, "Fields")), "Item", {"City"}));
    EXPECT_EQ(FailureOfPut(city, "Value", {"x"}), adErrFeatureNotAvailable);
    EXPECT_EQ(Get(city, "Value"), Variant("Lund"));
}

TEST_F(InterfaceTest, CollectFindsByNameOrByOrdinal) {
    const Ref<Recordset> rs = Clinics();
    EXPECT_EQ(Get(rs, "Collect", {"clinicNAME"}), Variant("A"));
    EXPECT_EQ(Get(rs, "Collect", {Long{2}}), Variant("Lund"));
    EXPECT_EQ(Get(rs, "Collect", {1.5}), Variant("Lund")) << "an ordinal goes to the nearest, a tie to the even one";
    EXPECT_EQ(FailureOfGet(rs, "Collect", {"1"}), adErrItemNotFound) << "a text is a name";
    EXPECT_EQ(FailureOfGet(rs, "Collect", {"Town"}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(rs, "Collect", {Long{3}}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(rs, "Collect", {Long{-1}}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(rs, "Collect", {Null{}}), err::InvalidNull);
    EXPECT_EQ(FailureOfGet(rs, "Collect", {std::vector<String>{"City"}}), err::TypeMismatch);
    EXPECT_EQ(FailureOfGet(rs, "Collect"), err::ArgumentNotOptional);
    Put(rs, "Collect", {Long{2}, Null{}});
    EXPECT_EQ(Get(rs, "Collect", {"City"}), Variant(Null{}));
    Do(rs, "Update");
    EXPECT_EQ(Ask("SELECT City FROM Clinic_T WHERE ClinicID=1"), Variant(Null{}));
    EXPECT_EQ(FailureOfPut(rs, "Collect", {"Town", "x"}), adErrItemNotFound);
    EXPECT_EQ(FailureOfPut(rs, "Collect", {"City"}), err::ArgumentNotOptional);
    EXPECT_EQ(FailureOfPut(rs, "Collect", {"City", String(51, 'x')}), MultipleStepFailed);
    EXPECT_EQ(FailureOfPut(rs, "Collect", {"City", rs}), adErrDataConversion) << "an object is not a value";
}

TEST_F(InterfaceTest, CollectIsCalledThroughItsSlots) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    const Ref<Recordset> rs = Clinics();
    const Interface& members = rs->Describe();
    EXPECT_EQ(members.Find("Collect", MemberKind::Put)->Arguments.size(), 2U);
    auto* const face = reinterpret_cast<InterfacePointer*>(Boundary::ToPointer(rs));
    using PutSlot = HRESULT(STDMETHODCALLTYPE*)(InterfacePointer*, VARIANT, VARIANT) noexcept;
    using GetSlot = HRESULT(STDMETHODCALLTYPE*)(InterfacePointer*, VARIANT, VARIANT*) noexcept;
    VARIANT ordinal{}, text{}, got{};
    ordinal.vt = VT_I4, ordinal.lVal = 2;
    text.vt = VT_BSTR, text.bstrVal = SysAllocString(reinterpret_cast<LPCOLESTR>(u"Höör"));
    const auto put = reinterpret_cast<PutSlot>(const_cast<void*>(members.Find("Collect", MemberKind::Put)->Slot));
    const auto get = reinterpret_cast<GetSlot>(const_cast<void*>(members.Find("Collect", MemberKind::Get)->Slot));
    EXPECT_EQ(put(face, ordinal, text), S_OK);
    EXPECT_EQ(rs->Fields("City").Value(), Variant("Höör"));
    EXPECT_EQ(get(face, ordinal, &got), S_OK);
    ASSERT_EQ(got.vt, VT_BSTR);
    EXPECT_EQ(SysStringLen(got.bstrVal), 4U);
    VariantClear(&got);
    VariantClear(&text);
    Boundary::Release(*face);
}

// ---- fields -----------------------------------------------------------------------------------------

TEST_F(InterfaceTest, FieldsAreFoundCountedAndWalked) {
    OXCLASS_ONLY_IF(TestKit::KeepsCaseOfNames());
    const Ref<Object> fields = ObjectIn(Get(Clinics(), "Fields"));
    EXPECT_EQ(Get(fields, "Count"), Variant(Long{3}));
    EXPECT_EQ(Get(ObjectIn(Get(fields, "Item", {"CITY"})), "Name"), Variant("City"));
    EXPECT_EQ(Get(ObjectIn(Get(fields, "Item", {Long{1}})), "Name"), Variant("ClinicName"));
    EXPECT_EQ(FailureOfGet(fields, "Item", {"0"}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(fields, "Item", {Long{3}}), adErrItemNotFound);
    EXPECT_EQ(FailureOfGet(fields, "Item", {Long{-1}}), adErrItemNotFound);
    std::vector<String> names;
    for (const Variant& field : Walked(fields)) names.push_back(CStr(Get(ObjectIn(field), "Name")));
    EXPECT_THAT(names, ElementsAre("ClinicID", "ClinicName", "City"));
}

TEST_F(InterfaceTest, AFieldDescribesItsColumnAndChangesItsValue) {
    const Ref<Recordset> rs = Clinics();
    const Ref<Object> name = ObjectIn(Get(ObjectIn(Get(rs, "Fields")), "Item", {"ClinicName"}));
    EXPECT_EQ(Get(name, "Name"), Variant("ClinicName"));
    EXPECT_EQ(Get(name, "Type"), Variant(adVarWChar));
    EXPECT_EQ(Get(name, "DefinedSize"), Variant(Long{50}));
    EXPECT_EQ(Get(name, "Value"), Variant("A"));
    Put(name, "Value", {"Z"});
    EXPECT_EQ(Get(name, "Value"), Variant("Z"));
    EXPECT_EQ(Get(name, "OriginalValue"), Variant("A"));
    EXPECT_EQ(FailureOfPut(name, "Value", {String(51, 'x')}), MultipleStepFailed);
    EXPECT_EQ(FailureOfPut(name, "Name", {"x"}), err::NoSuchMember);
    EXPECT_EQ(FailureOfPut(name, "OriginalValue", {"x"}), err::NoSuchMember);
    Do(rs, "Update");
    EXPECT_EQ(Get(name, "OriginalValue"), Variant("Z"));
    EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T WHERE ClinicID=1"), Variant("Z"));
}

TEST_F(InterfaceTest, AFieldFollowsItsRecordset) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    const Ref<Recordset> rs = Clinics();
    const Ref<Object> fields = ObjectIn(Get(rs, "Fields"));
    const Ref<Object> name = ObjectIn(Get(fields, "Item", {"ClinicName"}));
    Do(rs, "MoveNext");
    EXPECT_EQ(Get(name, "Value"), Variant("B"));
    Do(rs, "MoveLast");
    Do(rs, "MoveNext");
    EXPECT_EQ(FailureOfGet(name, "Value"), adErrNoCurrentRecord);
    Do(rs, "Close");
    for (const char* member : {"Name", "Type", "DefinedSize", "Value", "OriginalValue"})
        EXPECT_EQ(FailureOfGet(name, member), adErrObjectClosed) << member;
    EXPECT_EQ(FailureOfPut(name, "Value", {"x"}), adErrObjectClosed);
    EXPECT_EQ(FailureOfGet(fields, "Count"), adErrObjectClosed);
    EXPECT_EQ(FailureOfGet(fields, "Item", {"ClinicName"}), adErrObjectClosed);
    EXPECT_EQ(FailureOfDo(fields, "_NewEnum"), adErrObjectClosed);
    Do(rs, "Open", {"SELECT ClinicID, City AS Town FROM Clinic_T ORDER BY ClinicID"});
    EXPECT_EQ(Get(name, "Name"), Variant("Town")) << "the column at the same place";
    EXPECT_EQ(Get(name, "Value"), Variant("Lund"));
    EXPECT_EQ(Get(fields, "Count"), Variant(Long{2}));
    Do(rs, "Close");
    Do(rs, "Open", {"SELECT ClinicID FROM Clinic_T"});
    EXPECT_EQ(FailureOfGet(name, "Value"), adErrItemNotFound);
    EXPECT_EQ(FailureOfPut(name, "Value", {"x"}), adErrItemNotFound);
}

TEST_F(InterfaceTest, AFieldKeepsItsRecordset) {
    Ref<Recordset> rs = Clinics();
    Ref<Object> fields = ObjectIn(Get(rs, "Fields"));
    const Ref<Object> name = ObjectIn(Get(fields, "Item", {"ClinicName"}));
    const Values walked = Walked(fields);
    rs = nullptr;
    EXPECT_EQ(Get(fields, "Count"), Variant(Long{3}));
    fields = nullptr;
    EXPECT_EQ(Get(name, "Value"), Variant("A"));
    EXPECT_EQ(Get(ObjectIn(walked[2]), "Value"), Variant("Lund"));
    Put(name, "Value", {"never posted"});
    EXPECT_EQ(Get(name, "Value"), Variant("never posted"));
}

TEST_F(InterfaceTest, NoReferenceCycleKeepsARecordsetAlive) {
    OXCLASS_ONLY_IF(TestKit::KeepsCaseOfNames());
    Ref<Connection> other = Connect();
    other->BeginTrans();
    other->Execute("DELETE FROM Clinic_T");
    {
        Ref<Recordset> rs = New<Recordset>();
        Do(rs, "Open", {AllClinics, other});
        const Ref<Object> fields = ObjectIn(Get(rs, "Fields")), errors = ObjectIn(Get(other, "Errors"));
        const Ref<Object> field = ObjectIn(Get(fields, "Item", {Long{0}}));
        EXPECT_EQ(Get(field, "Name"), Variant("ClinicID"));
        EXPECT_EQ(Get(errors, "Count"), Variant(Long{0}));
        other = nullptr;
    }
    EXPECT_EQ(Ask("SELECT count(*) FROM Clinic_T"), Variant(Long{3})) << "the last object took the connection along";
    Run("DELETE FROM Clinic_T");  // the file is not locked any more
}

}  // namespace
