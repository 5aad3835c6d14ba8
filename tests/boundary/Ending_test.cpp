#include "boundary/Client.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/Interface.h"

#include <thread>

/// Calls while something ends: an object, a thread, the process.
namespace {

using namespace Client;

// ---- an object --------------------------------------------------------------------------------------

/// An object of a client that calls a collection from its destructor.
class Asker final : public IUnknown {
public:
    explicit Asker(IDispatch* collection) : collection_(collection) {}
    HRESULT QueryInterface(REFIID riid, void** object) override {
        *object = Platform::Same(riid, IID_IUnknown) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override {
        if (--references == 0) count = Client::Invoke(collection_, "Count", DISPATCH_METHOD).Result.Long();
        return references;
    }
    ULONG references = 1;
    LONG count = -1;

private:
    IDispatch* collection_;
};

TEST(EndOfAnObject, AMemberMayAskItsCollectionThatEnds) {
    Dispatch collection = Create("Collection");
    Asker asker(collection.Get());
    Value member = Value::OfType(VT_UNKNOWN);
    member.Get().punkVal = &asker;
    asker.AddRef();
    Call(collection, "Add", {member});
    member = Value();
    asker.Release();
    collection = Dispatch();
    EXPECT_EQ(asker.references, 0U);
    EXPECT_GE(asker.count, 0) << "it was answered";
}

// ---- a thread ---------------------------------------------------------------------------------------

/// Works with the library when its thread's data end.
struct AtThreadEnd {
    bool* done = nullptr;
    ~AtThreadEnd() {
        if (!done) return;
        const Dispatch comments = Create("OXClass.cComments");
        EXPECT_EQ(Invoke(comments.Get(), "Item", DISPATCH_PROPERTYGET, {7}).Code, DISP_E_EXCEPTION);
        Get(comments, "Count");
        Dispatch shared;
        EXPECT_EQ(OxGlobal(u"OXClass.cStudy", shared.Place()), static_cast<HRESULT>(0x800A01AD));
        *done = true;
    }
};

TEST(EndOfAThread, CallsAreAnsweredAndNothingIsLost) {
    bool done = false;
    std::thread([&done] {
        thread_local AtThreadEnd end;  // made before the library's own data, and so ends after them
        end.done = &done;
        Global("OXClass.cStudy");
        const Dispatch comments = Create("OXClass.cComments");
        Invoke(comments.Get(), "Item", DISPATCH_PROPERTYGET, {7});
    }).join();
    EXPECT_TRUE(done);
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

// ---- the process ------------------------------------------------------------------------------------

/// Holds a reference to an object until all other static objects of the process are destroyed.
struct AtProcessEnd {
    Dispatch object;
    ~AtProcessEnd() {
        if (!object) return;
        const Outcome name = Invoke(object.Get(), "LastName", DISPATCH_PROPERTYGET);
        const Outcome missing = Invoke(object.Get(), "Nobody", DISPATCH_PROPERTYGET);
        Dispatch another;
        const HRESULT created = OxCreateObject(u"OXClass.cPatient", another.Place());
        if (name.Code != S_OK || missing.Code != DISP_E_MEMBERNOTFOUND || created != S_OK) std::_Exit(1);
    }
};

TEST(EndOfTheProcess, AnObjectInStaticStorageStillAnswers) {
    GTEST_FLAG_SET(death_test_style,
                   "threadsafe");  // a process of its own, which this one shares no file with
    EXPECT_EXIT(
        {
            static AtProcessEnd end;  // made before the library's own data, and so ends after them
            end.object = Create("OXClass.cPatient");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
