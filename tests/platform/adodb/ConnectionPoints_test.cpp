#include "platform/component/binary/ConnectionPoints.h"
#include "kit/Database.h"
#include "platform/component/binary/Bstr.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/Boundary.h"
#include "platform/runtime/Convert.h"

#include <thread>

/// The events of a connection as a COM client receives them: IConnectionPointContainer.
namespace {

using namespace ADODB;
using namespace Platform;
using testing::ElementsAre;

constexpr IID EventsOfConnection = {0x00000400, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

/// A reference that is released with its owner.
template <class I>
struct Owned {
    Owned() = default;
    Owned(const Owned&) = delete;
    ~Owned() {
        if (pointer) pointer->Release();
    }
    I* operator->() const { return pointer; }
    I* pointer = nullptr;
};

/// A client's sink on the stack. It knows its members by the identifiers of the interface, or by its own names.
class Sink final : public IDispatch {
public:
    explicit Sink(bool hasNames = false) : hasNames_(hasNames) {}

    HRESULT QueryInterface(REFIID riid, void** object) override {
        const bool known = Same(riid, IID_IUnknown) || Same(riid, IID_IDispatch) || Same(riid, EventsOfConnection);
        *object = known ? this : nullptr;
        references += known;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        if (!hasNames_) return E_NOTIMPL;
        const String name = FromUnits(names[0]);
        if (name != "WillExecute") return DISP_E_UNKNOWNNAME;
        ids[0] = 77;
        return S_OK;
    }
    HRESULT Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT*, EXCEPINFO* failure, UINT*) override {
        seen.push_back(CStr(Long{id}));
        const auto argument = [&](UINT index) -> VARIANT& { return given->rgvarg[given->cArgs - 1 - index]; };
        if (id == 4 || id == 77) {
            EXPECT_EQ(given->cArgs, 8U);
            EXPECT_EQ(argument(0).vt, VT_BSTR | VT_BYREF);
            EXPECT_EQ(argument(4).vt, VT_I4 | VT_BYREF);
            seen.back() += " " + FromBstr(*argument(0).pbstrVal);
            if (!replacement.empty()) {
                SysFreeString(*argument(0).pbstrVal);
                *argument(0).pbstrVal = ToBstr(replacement);
            }
            if (cancels) *argument(4).plVal = 4;
            EXPECT_EQ(argument(7).pdispVal, connection);
        } else if (id == 5) {
            const VARIANT& status = argument(2);
            seen.back() += " " + CStr(Long{argument(0).lVal}) + " " + CStr(Long{*status.plVal});
            EXPECT_EQ(argument(1).pdispVal != nullptr, *status.plVal == 2);
        }
        if (!raises) return S_OK;
        failure->scode = static_cast<SCODE>(0x800A0005);
        return DISP_E_EXCEPTION;
    }

    ULONG references = 1;
    std::vector<String> seen;
    String replacement;
    bool cancels = false;
    bool raises = false;
    IDispatch* connection = nullptr;

private:
    bool hasNames_;
};

class ConnectionPoints : public TestKit::WithDatabase {
protected:
    ConnectionPoints() {
        plain->Open(database.Settings());
        face.pointer = Boundary::ToPointer(plain);
        sink.connection = named.connection = static_cast<IDispatch*>(face.pointer);
        EXPECT_EQ(face->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container.pointer)),
                  S_OK);
        EXPECT_EQ(container->FindConnectionPoint(EventsOfConnection, &point.pointer), S_OK);
    }

    Ref<Connection> plain = New<Connection>();
    Sink sink, named{true};
    Owned<IUnknown> face;
    Owned<IConnectionPointContainer> container;
    Owned<IConnectionPoint> point;
    DWORD cookie = 0;
};

TEST_F(ConnectionPoints, ASinkReceivesTheEventsByTheIdentifiersOfTheInterface) {
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    plain->BeginTrans();
    plain->Execute("INSERT INTO Clinic_T (ClinicName) VALUES ('Nord')");
    plain->CommitTrans();
    plain->BeginTrans();
    plain->RollbackTrans();
    EXPECT_NE(TestKit::NumberOf([&] { plain->Execute("SELECT x FROM Nowhere"); }), 0);
    EXPECT_THAT(sink.seen, ElementsAre("1", "4 INSERT INTO Clinic_T (ClinicName) VALUES ('Nord')", "5 1 1", "3", "1",
                                       "2", "4 SELECT x FROM Nowhere", "5 -1 2"));
}

TEST_F(ConnectionPoints, ASinkWithNamesIsCalledByItsOwnIdentifiers) {
    ASSERT_EQ(point->Advise(&named, &cookie), S_OK);
    plain->Execute("SELECT 1");
    EXPECT_THAT(named.seen, ElementsAre("77 SELECT 1", "5 -1 1"));
}

TEST_F(ConnectionPoints, ASinkMayChangeOrCancelAStatement) {
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    sink.replacement = "SELECT 2";
    EXPECT_EQ(plain->Execute("SELECT 1")->Fields(0).Value(), Variant(Long{2}));
    sink.cancels = true;
    EXPECT_EQ(TestKit::NumberOf([&] { plain->Execute("SELECT 1"); }), adErrOperationCancelled);
    sink.cancels = false;
    sink.raises = true;
    EXPECT_EQ(TestKit::NumberOf([&] { plain->Execute("SELECT 1"); }), adErrOperationCancelled);
}

TEST_F(ConnectionPoints, ASinkIsHeldUntilUnadviseOrTheEndOfTheConnection) {
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    EXPECT_EQ(sink.references, 2U);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(sink.references, 1U);
    plain->Execute("SELECT 1");
    EXPECT_TRUE(sink.seen.empty());
    EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);

    Ref<Connection> other = New<Connection>();
    {
        Owned<IUnknown> its;
        its.pointer = Boundary::ToPointer(other);
        Owned<IConnectionPointContainer> points;
        Owned<IConnectionPoint> events;
        its->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&points.pointer));
        ASSERT_EQ(points->FindConnectionPoint(EventsOfConnection, &events.pointer), S_OK);
        ASSERT_EQ(events->Advise(&named, &cookie), S_OK);
        EXPECT_EQ(named.references, 2U);
    }
    other = nullptr;
    EXPECT_EQ(named.references, 1U);
}

TEST_F(ConnectionPoints, WrongCallsGetTheStandardCodes) {
    Owned<IConnectionPoint> none;
    EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, &none.pointer), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(none.pointer, nullptr);
    EXPECT_EQ(container->FindConnectionPoint(EventsOfConnection, nullptr), E_POINTER);
    EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
    EXPECT_EQ(point->Advise(&sink, nullptr), E_POINTER);
    EXPECT_EQ(point->EnumConnections(nullptr), E_NOTIMPL);
    Owned<IUnknown> rows;
    rows.pointer = Boundary::ToPointer(New<ADODB::Recordset>());
    void* found = nullptr;
    EXPECT_EQ(rows->QueryInterface(IID_IConnectionPointContainer, &found), E_NOINTERFACE);
    HRESULT elsewhere = S_OK;
    std::thread([&] { elsewhere = point->Unadvise(1); }).join();
    EXPECT_EQ(elsewhere, RPC_E_WRONG_THREAD);
}

TEST_F(ConnectionPoints, TheContainerIsTheConnectionAndListsItsEvents) {
    Owned<IUnknown> identity, back;
    container->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity.pointer));
    EXPECT_EQ(identity.pointer, face.pointer);
    Owned<IConnectionPointContainer> again;
    EXPECT_EQ(point->GetConnectionPointContainer(&again.pointer), S_OK);
    again->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&back.pointer));
    EXPECT_EQ(back.pointer, face.pointer);

    Owned<IEnumConnectionPoints> points, copy;
    ASSERT_EQ(container->EnumConnectionPoints(&points.pointer), S_OK);
    IConnectionPoint* two[2] = {};
    ULONG fetched = 9;
    EXPECT_EQ(points->Next(2, two, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 1U);
    IID identifier{};
    EXPECT_EQ(two[0]->GetConnectionInterface(&identifier), S_OK);
    EXPECT_TRUE(Same(identifier, EventsOfConnection));
    two[0]->Release();
    EXPECT_EQ(points->Clone(&copy.pointer), S_OK);
    EXPECT_EQ(copy->Next(1, two, nullptr), S_FALSE);
    EXPECT_EQ(points->Skip(1), S_FALSE);
    points->Reset();
    EXPECT_EQ(points->Skip(1), S_OK);
}

}  // namespace
