#include "boundary/Client.h"
#include "platform/component/binary/Identifier.h"

#include <array>
#include <cstdio>
#include <memory>

/// The library file: what it exports, its class factories, and when it can be unloaded.
namespace {

using namespace Client;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

std::string OutputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 256> part{};
    while (std::fgets(part.data(), part.size(), pipe.get())) text += part.data();
    return text;
}

TEST(LibraryFile, ExportsOnlyItsFourFunctions) {
    EXPECT_EQ(OutputOf("nm --dynamic --defined-only --format=posix '" LIBRARY "' | cut -d' ' -f1 | LC_ALL=C sort"),
              "DllCanUnloadNow\nDllGetClassObject\nDllRegisterServer\nDllUnregisterServer\n");
}

TEST(LibraryFile, HasTheTwentyEightClassesInTheirOrder) {
    EXPECT_THAT(
        ClassNames(),
        ElementsAre("OXClass.Class1", "OXClass.cComments", "OXClass.cAnatomics", "OXClass.cDoctor", "OXClass.cDoctors",
                    "OXClass.cGlobalList", "OXClass.cGlobalLists", "OXClass.cImagecard", "OXClass.cImagecardAttribute",
                    "OXClass.cMWLItem", "OXClass.cPatient", "OXClass.cStringItem", "OXClass.cStudy", "OXClass.cTeeth",
                    "OXClass.cTemplate", "OXClass.cTemplateAttribute", "OXClass.cTooth", "OXClass.IntendedRecipients",
                    "OXClass.OtherPatIDs", "OXClass.cAnatomicDescription", "OXClass.cImageManipulation",
                    "OXClass.cUniCard", "OXClass.cImages", "OXClass.cUniCards", "OXClass.cImage", "OXClass.cSerie",
                    "OXClass.cClinic", "OXClass.cClinics"));
}

const GUID PatientClass = Platform::GuidOf("4b7f6647-8a1a-58a2-a42e-8a831cf71482");

Pointer<IClassFactory> PatientFactory() {
    void* factory = nullptr;
    EXPECT_EQ(GetClassObject(PatientClass, IID_IClassFactory, &factory), S_OK);
    return Pointer<IClassFactory>(static_cast<IClassFactory*>(factory));
}

TEST(ClassFactory, MakesANewObjectEachTime) {
    const auto factory = PatientFactory();
    void *first = nullptr, *second = nullptr;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, &first), S_OK);
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, &second), S_OK);
    EXPECT_NE(first, second);
    EXPECT_EQ(Describe(static_cast<IUnknown*>(second))["class"], "cPatient");
    static_cast<IUnknown*>(first)->Release();
    static_cast<IUnknown*>(second)->Release();
}

TEST(ClassFactory, ReturnsTheDualInterfaceByItsIdentifier) {
    void* patient = nullptr;
    ASSERT_EQ(
        PatientFactory()->CreateInstance(nullptr, Platform::GuidOf("3dc52b67-ccee-53fe-9017-dbfb547bb273"), &patient),
        S_OK);
    static_cast<IUnknown*>(patient)->Release();
}

TEST(ClassFactory, WrongCallsGetTheStandardCodes) {
    void* object = this;
    EXPECT_EQ(GetClassObject(IID_IDispatch, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(GetClassObject(PatientClass, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(GetClassObject(PatientClass, IID_IClassFactory, nullptr), E_POINTER);

    const auto factory = PatientFactory();
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IEnumVARIANT, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory->QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
}

// ---- when nothing is in use -------------------------------------------------------------------------

TEST(CanUnloadNow, IsTrueUntilAnObjectIsCreatedAndAfterItIsDeleted) {
    ASSERT_EQ(CanUnloadNow(), S_OK);
    for (const std::string& name : ClassNames()) {
        Dispatch object = Create(name);
        EXPECT_EQ(CanUnloadNow(), S_FALSE) << name;
        object = Dispatch();
        EXPECT_EQ(CanUnloadNow(), S_OK) << name;
    }
}

TEST(CanUnloadNow, CountsFactoriesAndLocks) {
    {
        const auto factory = PatientFactory();
        EXPECT_EQ(CanUnloadNow(), S_FALSE);
        factory->LockServer(1);
    }
    EXPECT_EQ(CanUnloadNow(), S_FALSE) << "the lock is held";
    PatientFactory()->LockServer(0);
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

TEST(CanUnloadNow, AnUnlockWithoutALockIsIgnored) {
    {
        const auto factory = PatientFactory();
        factory->LockServer(0);
        EXPECT_EQ(CanUnloadNow(), S_FALSE) << "the factory is held";
        factory->LockServer(1);
    }
    EXPECT_EQ(CanUnloadNow(), S_FALSE) << "the lock is held";
    PatientFactory()->LockServer(0);
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

TEST(CanUnloadNow, AConnectionIsTheHostsOwn) {
    const Dispatch connection = Create("ADODB.Connection"), collection = Create("Collection");
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

TEST(CanUnloadNow, CountsObjectsThatOnlyACollectionOfThePlatformReferences) {
    const Dispatch collection = Create("Collection");
    Call(collection, "Add", {Create("OXClass.cTooth")});
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
    Call(collection, "Remove", {1});
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

TEST(CanUnloadNow, CountsMembersThatOnlyAnEnumeratorHolds) {
    Pointer<IUnknown> walk;
    {
        const Dispatch teeth = Create("OXClass.cTeeth");
        Call(teeth, "Add", {true, "16"});
        Value given = Get(teeth, "NewEnum");
        ASSERT_EQ(given.Type(), VT_UNKNOWN);
        given.Get().punkVal->AddRef();
        walk = Pointer<IUnknown>(given.Get().punkVal);
    }
    EXPECT_EQ(CanUnloadNow(), S_FALSE) << "the walk holds the tooth";
    walk = Pointer<IUnknown>();
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

TEST(CanUnloadNow, AFailedCreationLeavesNothing) {
    void* object = nullptr;
    EXPECT_EQ(PatientFactory()->CreateInstance(nullptr, IID_IEnumVARIANT, &object), E_NOINTERFACE);
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

}  // namespace
