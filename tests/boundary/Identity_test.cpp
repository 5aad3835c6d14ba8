#include "boundary/Client.h"
#include "kit/ForeignObject.h"
#include "platform/component/binary/Identifier.h"
#include "platform/component/dispatch/Interface.h"

#include <thread>

/// The identity and the lifetime of objects at the COM interface: an object lives as long as it is referenced.
namespace {

using namespace Client;
using TestKit::ForeignObject;

IUnknown* IdentityOf(IUnknown* object) { return Ask<IUnknown>(object, IID_IUnknown).Get(); }

TEST(Identity, AnObjectHasOneIdentityThroughEveryInterface) {
    const Dispatch patient = Create("OXClass.cPatient");
    EXPECT_EQ(IdentityOf(patient.Get()), IdentityOf(patient.Get()));
    const auto errors = Ask<ISupportErrorInfo>(patient.Get(), IID_ISupportErrorInfo);
    EXPECT_EQ(IdentityOf(errors.Get()), IdentityOf(patient.Get()));
    const auto back = Ask<IDispatch>(errors.Get(), IID_IDispatch);
    EXPECT_EQ(back.Get(), patient.Get());
    EXPECT_FALSE(Ask<IUnknown>(patient.Get(), IID_IClassFactory));
    EXPECT_FALSE(Ask<IUnknown>(patient.Get(), IID_NULL));
    EXPECT_EQ(patient->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(Identity, AnObjectHasItsOwnDualInterfaceAndNoOthers) {
    const Dispatch patient = Create("OXClass.cPatient");
    const GUID own = Platform::GuidOf("3dc52b67-ccee-53fe-9017-dbfb547bb273");
    EXPECT_EQ(Ask<IDispatch>(patient.Get(), own).Get(), patient.Get());
    EXPECT_FALSE(Ask<IDispatch>(Create("OXClass.cDoctor").Get(), own));
}

TEST(Identity, TheObjectSaysThatItLeavesErrorRecords) {
    const auto errors = Ask<ISupportErrorInfo>(Create("OXClass.cPatient").Get(), IID_ISupportErrorInfo);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IDispatch), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(Platform::GuidOf("3dc52b67-ccee-53fe-9017-dbfb547bb273")), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IClassFactory), S_FALSE);
}

TEST(Identity, ReferencesAreCounted) {
    const Dispatch patient = Create("OXClass.cPatient");
    EXPECT_EQ(patient->AddRef(), 2U);
    EXPECT_EQ(patient->Release(), 1U);
}

TEST(Identity, AnObjectPutAndGotBackIsTheSame) {
    const Dispatch entry = Create("OXClass.cUniCard"), study = Create("OXClass.cStudy");
    const Outcome put = Invoke(entry.Get(), "Study", DISPATCH_PROPERTYPUTREF, {study});
    ASSERT_EQ(put.Code, S_OK) << put.Description;
    EXPECT_EQ(Get(entry, "Study").Object().Get(), study.Get());
}

TEST(Identity, AMemberOfACollectionIsTheSameEachTime) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    const Dispatch added = Call(teeth, "Add", {true, "16", "K"}).Object();
    EXPECT_EQ(Get(teeth, "Item", {1}).Object().Get(), added.Get());
    EXPECT_EQ(Get(teeth, "Item", {"k"}).Object().Get(), added.Get());
}

TEST(Identity, AReleasedCollectionDeletesItsMembersUnlessTheyAreReferenced) {
    Dispatch teeth = Create("OXClass.cTeeth");
    Dispatch held = Call(teeth, "Add", {true, "16"}).Object();
    Call(teeth, "Add", {true, "17"});
    teeth = Dispatch();
    EXPECT_EQ(held->AddRef(), 2U) << "one reference was left, ours";
    held->Release();
    EXPECT_EQ(Get(held, "TNumber").Integer(), 16);
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
    held = Dispatch();
    EXPECT_EQ(CanUnloadNow(), S_OK) << "the other member went with the collection";
}

// ---- foreign objects --------------------------------------------------------------------------------

Value ValueOf(ForeignObject& foreign) {
    foreign.AddRef();
    Value value = Value::OfType(VT_DISPATCH);
    value.Get().pdispVal = &foreign;
    return value;
}

TEST(ForeignObject, IsStoredAndReturnedUnchanged) {
    ForeignObject foreign(true);
    {
        const Dispatch collection = Create("Collection");
        Call(collection, "Add", {ValueOf(foreign)});
        EXPECT_EQ(Call(collection, "Item", {1}).Object().Get(), &foreign);
    }
    EXPECT_EQ(foreign.references, 1U);
}

TEST(ForeignObject, IsRejectedWhereAnObjectOfAClassIsRequired) {
    ForeignObject foreign(true);
    const Dispatch entry = Create("OXClass.cUniCard");
    const Outcome put = Invoke(entry.Get(), "Study", DISPATCH_PROPERTYPUTREF, {ValueOf(foreign)});
    EXPECT_EQ(put.Code, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(put.Wrong, 0U);
    EXPECT_EQ(Invoke(Create("OXClass.cPatient").Get(), "Save", DISPATCH_METHOD, {ValueOf(foreign)}).Code,
              DISP_E_TYPEMISMATCH);
    BSTR json = nullptr;
    EXPECT_EQ(OxDescribe(&foreign, &json), E_NOINTERFACE);
    EXPECT_EQ(foreign.references, 1U);
}

TEST(ForeignObject, AnObjectOfAnotherClassIsRejectedToo) {
    const Dispatch entry = Create("OXClass.cUniCard");
    const Outcome put = Invoke(entry.Get(), "Study", DISPATCH_PROPERTYPUTREF, {Create("OXClass.cPatient")});
    EXPECT_EQ(put.Code, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Record(), "Runtime: Type mismatch");
}

// ---- enumerators ------------------------------------------------------------------------------------

Pointer<IEnumVARIANT> WalkOf(const Dispatch& collection) {
    std::vector<Value> none;
    const Outcome walk = Invoke(collection.Get(), DISPID_NEWENUM, DISPATCH_PROPERTYGET, none);
    EXPECT_EQ(walk.Code, S_OK);
    Value given = walk.Result;
    EXPECT_EQ(given.Type(), VT_UNKNOWN);
    return Ask<IEnumVARIANT>(given.Get().punkVal, IID_IEnumVARIANT);
}

Dispatch ThreeTeeth() {
    const Dispatch teeth = Create("OXClass.cTeeth");
    for (const char* number : {"11", "12", "13"}) Call(teeth, "Add", {true, number});
    return teeth;
}

int NumberOf(VARIANT& tooth) {
    Value value;
    std::swap(value.Get(), tooth);
    return Get(value.Object(), "TNumber").Integer();
}

TEST(Enumerator, ReturnsTheMembersInTheirOrder) {
    const auto walk = WalkOf(ThreeTeeth());
    VARIANT two[2]{};
    ULONG fetched = 99;
    EXPECT_EQ(walk->Next(2, two, &fetched), S_OK);
    EXPECT_EQ(fetched, 2U);
    EXPECT_EQ(NumberOf(two[0]), 11);
    EXPECT_EQ(NumberOf(two[1]), 12);
    EXPECT_EQ(walk->Next(2, two, &fetched), S_FALSE) << "one was left";
    EXPECT_EQ(fetched, 1U);
    EXPECT_EQ(NumberOf(two[0]), 13);
    EXPECT_EQ(walk->Next(1, two, nullptr), S_FALSE);
}

TEST(Enumerator, SkipsStartsAgainAndIsCopied) {
    const auto walk = WalkOf(ThreeTeeth());
    EXPECT_EQ(walk->Skip(1), S_OK);
    Pointer<IEnumVARIANT> copy;
    ASSERT_EQ(walk->Clone(copy.Place()), S_OK);
    VARIANT tooth{};
    EXPECT_EQ(walk->Next(1, &tooth, nullptr), S_OK);
    EXPECT_EQ(NumberOf(tooth), 12);
    EXPECT_EQ(copy->Next(1, &tooth, nullptr), S_OK);
    EXPECT_EQ(NumberOf(tooth), 12) << "the copy has the position of the original";
    EXPECT_EQ(walk->Reset(), S_OK);
    EXPECT_EQ(walk->Next(1, &tooth, nullptr), S_OK);
    EXPECT_EQ(NumberOf(tooth), 11);
    EXPECT_EQ(walk->Skip(3), S_FALSE);
}

TEST(Enumerator, WrongCallsGetTheStandardCodes) {
    const auto walk = WalkOf(ThreeTeeth());
    VARIANT two[2]{};
    EXPECT_EQ(walk->Next(1, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(walk->Next(2, two, nullptr), E_POINTER) << "more than one needs the count";
    EXPECT_EQ(walk->Clone(nullptr), E_POINTER);
    EXPECT_FALSE(Ask<IDispatch>(walk.Get(), IID_IDispatch));
}

// ---- threads ----------------------------------------------------------------------------------------

TEST(Threads, AnObjectOfAnotherThreadRejectsCalls) {
    const Dispatch patient = Create("OXClass.cPatient");
    const auto walk = WalkOf(ThreeTeeth());
    std::thread([&] {
        EXPECT_EQ(Invoke(patient.Get(), "LastName", DISPATCH_PROPERTYGET).Code, RPC_E_WRONG_THREAD);
        VARIANT value{};
        EXPECT_EQ(walk->Next(1, &value, nullptr), RPC_E_WRONG_THREAD);
        EXPECT_EQ(walk->Skip(1), RPC_E_WRONG_THREAD);
        EXPECT_EQ(walk->Reset(), RPC_E_WRONG_THREAD);
    }).join();
    EXPECT_EQ(Get(patient, "LastName").String(), "");
}

TEST(Threads, EachHasItsOwnSharedInstance) {
    std::thread([] {
        const Dispatch first = Global("OXClass.cStudy");
        Put(first, "description", "of the first thread");
        EXPECT_EQ(Global("oxclass.CSTUDY").Get(), first.Get()) << "one instance a thread, whatever the case";
        std::thread([] { EXPECT_EQ(Get(Global("OXClass.cStudy"), "description").String(), ""); }).join();
        EXPECT_EQ(Get(Global("OXClass.cStudy"), "description").String(), "of the first thread");
        EXPECT_NE(Create("OXClass.cStudy").Get(), first.Get());
    }).join();
}

TEST(Threads, TheSharedInstancesEndWithTheirThread) {
    std::thread([] {
        for (const std::string& name : ClassNames()) {
            Dispatch shared;
            OxGlobal(Value::Units(name).c_str(), shared.Place());
        }
        EXPECT_EQ(CanUnloadNow(), S_FALSE);
    }).join();
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

TEST(Threads, OnlySevenClassesAreShared) {
    std::thread([] {
        std::vector<std::string> shared;
        for (const std::string& name : ClassNames()) {
            Dispatch object;
            const HRESULT code = OxGlobal(Value::Units(name).c_str(), object.Place());
            if (code == S_OK)
                shared.push_back(name);
            else
                EXPECT_EQ(code, static_cast<HRESULT>(0x800A01AD)) << name;
        }
        EXPECT_THAT(shared,
                    ::testing::ElementsAre("OXClass.cGlobalList", "OXClass.cGlobalLists", "OXClass.cImagecardAttribute",
                                           "OXClass.cStudy", "OXClass.OtherPatIDs", "OXClass.cImageManipulation",
                                           "OXClass.cSerie"));
    }).join();
}

TEST(Names, AnUnknownClassIsReportedByItsName) {
    EXPECT_EQ(CreateCode("OXClass.cNobody"), static_cast<HRESULT>(0x800A01AD));
    EXPECT_EQ(Record(),
              "Runtime: ActiveX component can't create object: no class is registered as "
              "\"OXClass.cNobody\". \"oxclass register\" registers the library");
    Dispatch object;
    EXPECT_EQ(OxGlobal(u"Collection", object.Place()), static_cast<HRESULT>(0x800A01AD));
    EXPECT_EQ(OxCreateObject(nullptr, object.Place()), E_POINTER);
    EXPECT_EQ(OxCreateObject(u"Collection", nullptr), E_POINTER);
    EXPECT_EQ(OxUseLibrary("/nowhere/libOXClass.so"), CO_E_DLLNOTFOUND);
    EXPECT_EQ(OxUseLibrary(nullptr), E_POINTER);
    EXPECT_EQ(OxUseLibrary("libm.so.6"), CO_E_ERRORINDLL);
}

}  // namespace
