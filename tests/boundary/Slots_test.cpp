#include "boundary/SlotCall.h"

#include <cmath>
#include <thread>

/// Calls by slot, as clients that were compiled against the interfaces make them.
namespace {

using namespace Client;

Binary Place(void* place) {
    Binary binary{};
    binary.place = place;
    return binary;
}

Binary Itself(const VARIANT& variant) {
    Binary binary{};
    binary.variant = variant;
    return binary;
}

Binary Object(const Dispatch& object) {
    Binary binary{};
    binary.object = object.Get();
    return binary;
}

// ---- every plain property, both ways ----------------------------------------------------------------

/// A value of a property's type, as it crosses by slot and by name.
struct Sample {
    Binary Slot{};
    Value Name;
};

class Samples {
public:
    /// The `which`th (0, 1) sample of a type; nothing for objects and variants.
    static bool For(const std::string& type, int which, Sample& sample) {
        if (type == "boolean") {
            sample.Slot.boolean = which ? VARIANT_FALSE : VARIANT_TRUE;
            sample.Name = Value(which == 0);
        } else if (type == "short") {
            sample.Slot.small = static_cast<SHORT>(which ? -32768 : 1234);
            sample.Name = Value::OfType(VT_I2);
            sample.Name.Get().iVal = sample.Slot.small;
        } else if (type == "long" || type == "enumeration") {
            sample.Slot.number = which ? -2147483647 - 1 : 2;
            sample.Name = Value(sample.Slot.number);
        } else if (type == "single") {
            sample.Slot.single = which ? -0.5F : 1.25F;
            sample.Name = Value::OfType(VT_R4);
            sample.Name.Get().fltVal = sample.Slot.single;
        } else if (type == "double") {
            sample.Slot.real = which ? -1e300 : 0.1;
            sample.Name = Value(sample.Slot.real);
        } else if (type == "date") {
            sample.Slot.real = which ? -1.5 : 45000.75;
            sample.Name = Value::OfType(VT_DATE);
            sample.Name.Get().date = sample.Slot.real;
        } else if (type == "text") {
            static const Text texts[] = {Text("Åkesson 😀"), Text("")};
            sample.Slot.text = texts[which].Get();
            sample.Name = Value(which ? "" : "Åkesson 😀");
        } else {
            return false;
        }
        return true;
    }
};

/// Equal in type and value.
void ExpectSame(Value& got, Value& expected, const std::string& what) {
    ASSERT_EQ(got.Type(), expected.Type()) << what;
    if (got.Type() == VT_BSTR)
        EXPECT_EQ(got.String(), expected.String()) << what;
    else
        EXPECT_EQ(std::memcmp(&got.Get().llVal, &expected.Get().llVal, got.Type() == VT_I2 ? 2 : 4), 0) << what;
}

/// Reads a property by slot into a variant of the type that a call by name returns.
Value ReadBySlot(const Dispatch& object, const SlotOf& slot, int variantType) {
    Value value = Value::OfType(variantType);
    EXPECT_EQ(CallSlot(object.Get(), slot, {Place(&value.Get().llVal)}), S_OK);
    return value;
}

TEST(Slots, EveryPlainPropertyIsTheSameBySlotAndByName) {
    int properties = 0, places = 0;
    for (const std::string& name : ClassNames()) {
        const Dispatch object = Create(name);
        for (const SlotOf& put : SlotsOf(object.Get())) {
            Sample sample;
            if (put.Member["kind"] != "put" || put.Member["arguments"].size() != 1) continue;
            const std::string member = put.Member["name"];
            for (const int which : {0, 1}) {
                if (!Samples::For(put.Member["arguments"][0]["type"], which, sample)) continue;
                const std::string what = name + "." + member;
                const SlotOf get = FindSlot(object.Get(), member, "get");

                Binary given = sample.Slot;
                if (IsPlace(put.Member, put.Member["arguments"][0])) given = Place(&sample.Slot), ++places;
                ASSERT_EQ(CallSlot(object.Get(), put, {given}), S_OK) << what;
                Value byName = Get(object, member);
                ExpectSame(byName, sample.Name, what + ", put by slot, got by name");
                Value bySlot = ReadBySlot(object, get, byName.Type());
                ExpectSame(bySlot, byName, what + ", got by slot");

                Sample other;
                Samples::For(put.Member["arguments"][0]["type"], 1 - which, other);
                Put(object, member, other.Name);
                Value again = ReadBySlot(object, get, byName.Type());
                ExpectSame(again, other.Name, what + ", put by name, got by slot");
                ++properties;
            }
        }
    }
    EXPECT_GT(properties, 300) << "the classes have plain properties by the hundred";
    EXPECT_EQ(places, 3 * 2) << "the keys of study and series and the group number are put by reference";
}

TEST(Slots, AnObjectIsPutByReferenceAndGot) {
    const Dispatch entry = Create("OXClass.cUniCard"), study = Create("OXClass.cStudy");
    ASSERT_EQ(CallSlot(entry.Get(), FindSlot(entry.Get(), "Study", "putref"), {Object(study)}), S_OK);
    Dispatch got;
    ASSERT_EQ(CallSlot(entry.Get(), FindSlot(entry.Get(), "Study", "get"), {Place(got.Place())}), S_OK);
    EXPECT_EQ(got.Get(), study.Get());
    ASSERT_EQ(CallSlot(entry.Get(), FindSlot(entry.Get(), "Study", "putref"), {Binary{}}), S_OK);
    ASSERT_EQ(CallSlot(entry.Get(), FindSlot(entry.Get(), "Study", "get"), {Place(got.Place())}), S_OK);
    EXPECT_FALSE(got) << "nothing was put";
}

// ---- operations -------------------------------------------------------------------------------------

TEST(Slots, AnOperationWorksOnTheDatabase) {
    const Dispatch connection = OpenedConnection();
    const Dispatch patient = Create("OXClass.cPatient");
    Put(patient, "PatientID", "19800101-1234");
    Put(patient, "LastName", "Ek");
    LONG saved = 0;
    Json save = FindSlot(patient.Get(), "Save", "operation").Member;
    std::vector<Binary> arguments{Object(connection)};
    for (std::size_t i = 1; i < save["arguments"].size(); ++i) arguments.push_back(Binary{});
    if (HasResult(save)) arguments.push_back(Place(&saved));
    ASSERT_EQ(CallSlot(patient.Get(), FindSlot(patient.Get(), "Save", "operation"), arguments), S_OK) << Record();

    const Dispatch again = Create("OXClass.cPatient");
    Text id("19800101-1234");
    LONG number = 0, found = 0;
    ASSERT_EQ(CallSlot(again.Get(), FindSlot(again.Get(), "LoadOnPatientIDorPDBID", "operation"),
                       {Object(connection), Place(id.Place()), Place(&number), Place(&found)}),
              S_OK)
        << Record();
    EXPECT_NE(found, 0);
    EXPECT_EQ(Get(again, "LastName").String(), "Ek");
}

TEST(Slots, AVariantByValueCrossesItself) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    const Dispatch added = Call(teeth, "Add", {true, "16", "K"}).Object();
    Value key("k");
    Dispatch got;
    ASSERT_EQ(CallSlot(teeth.Get(), FindSlot(teeth.Get(), "Item", "get"), {Itself(key.Get()), Place(got.Place())}),
              S_OK);
    EXPECT_EQ(got.Get(), added.Get());
}

TEST(Slots, AValueThatIsWrittenBackReplacesTheOldOne) {
    const Dispatch connection = OpenedConnection(), root = Create("OXClass.Class1");
    Call(root, "SaveGLSetting", {connection, 42, "the setting", false});
    LONG list = 42;
    Text text("before");
    Dispatch lists = Create("OXClass.cGlobalLists");
    IDispatch* held = lists.Get();
    held->AddRef();
    VARIANT_BOOL found = 7;
    ASSERT_EQ(CallSlot(root.Get(), FindSlot(root.Get(), "GetGLSetting", "operation"),
                       {Object(connection), Place(&list), Place(text.Place()), Place(&held), Place(&found)}),
              S_OK)
        << Record();
    EXPECT_EQ(found, VARIANT_TRUE);
    EXPECT_EQ(text.Utf8(), "the setting");
    const Dispatch given(held);
    EXPECT_NE(given.Get(), lists.Get());
    EXPECT_EQ(Get(given, "Count").Long(), 1);
    EXPECT_EQ(lists->AddRef(), 2U) << "the previous object was released";
    lists->Release();
}

TEST(Slots, AnArgumentByReferenceIsWrittenBackByAnOperationThatRaises) {
    const Dispatch ids = Create("OXClass.OtherPatIDs");
    Call(ids, "Add", {"one", 1, "K"});
    Text text(" abc "), key("K");
    LONG id = 2;
    IDispatch* item = nullptr;
    EXPECT_EQ(CallSlot(ids.Get(), FindSlot(ids.Get(), "Add", "operation"),
                       {Place(text.Place()), Place(&id), Place(key.Place()), Place(&item)}),
              static_cast<HRESULT>(0x800A01C9));
    EXPECT_EQ(text.Utf8(), "ABC");
    EXPECT_EQ(item, nullptr);
}

TEST(Slots, AFailureIsItsNumberWithARecord) {
    const Dispatch comments = Create("OXClass.cComments");
    Value index(7);
    Dispatch got;
    EXPECT_EQ(
        CallSlot(comments.Get(), FindSlot(comments.Get(), "Item", "get"), {Itself(index.Get()), Place(got.Place())}),
        static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(Record(), "Runtime: Subscript out of range");
    EXPECT_FALSE(got);
}

TEST(Slots, AMissingAddressIsReportedBeforeTheMemberRuns) {
    const Dispatch connection = OpenedConnection(), patient = Create("OXClass.cPatient");
    const SlotOf load = FindSlot(patient.Get(), "LoadOnPatientIDorPDBID", "operation");
    Text id("X");
    LONG number = 0, found = 7;
    EXPECT_EQ(CallSlot(patient.Get(), load, {Object(connection), Place(id.Place()), Place(&number), Place(nullptr)}),
              E_POINTER);
    EXPECT_EQ(CallSlot(patient.Get(), load, {Object(connection), Place(nullptr), Place(&number), Place(&found)}),
              E_POINTER);
    EXPECT_EQ(Record(), "Runtime: The argument PatientID points at nothing");
    EXPECT_EQ(found, 0) << "the result is cleared";
}

TEST(Slots, AnObjectOfAnotherClassIsRejected) {
    const Dispatch entry = Create("OXClass.cUniCard");
    EXPECT_EQ(CallSlot(entry.Get(), FindSlot(entry.Get(), "Study", "putref"), {Object(Create("OXClass.cPatient"))}),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Record(), "Runtime: Type mismatch");
}

TEST(Slots, AFunctionOfAnotherClassRejectsTheObject) {
    const Dispatch patient = Create("OXClass.cPatient"), doctor = Create("OXClass.cDoctor");
    LONG number = 7;
    EXPECT_EQ(CallForeignSlot(doctor.Get(), patient.Get(), FindSlot(patient.Get(), "ID", "get"), {Place(&number)}),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(number, 7);
}

TEST(Slots, AnotherThreadIsRejected) {
    const Dispatch patient = Create("OXClass.cPatient");
    const SlotOf get = FindSlot(patient.Get(), "ID", "get");
    std::thread([&] {
        LONG number = 7;
        EXPECT_EQ(CallSlot(patient.Get(), get, {Place(&number)}), RPC_E_WRONG_THREAD);
        EXPECT_EQ(number, 7);
    }).join();
}

TEST(Slots, AnInvalidDateIsRejected) {
    const Dispatch patient = Create("OXClass.cPatient");
    for (const double days : {std::nan(""), 1e300, -700000.0, 2958466.0}) {
        Binary date{};
        date.real = days;
        EXPECT_EQ(CallSlot(patient.Get(), FindSlot(patient.Get(), "BirthDate", "put"), {date}), DISP_E_OVERFLOW)
            << days;
    }
    EXPECT_EQ(Get(patient, "BirthDate").Get().date, 0);
}

TEST(Slots, TheLastReferenceMayGoInsideACall) {
    const Dispatch collection = Create("Collection");
    Call(collection, "Add", {Create("Collection")});
    Call(Call(collection, "Item", {1}).Object(), "Add", {collection});
    Value first(1);
    Binary index{};
    index.variant = first.Get();
    Json remove = FindSlot(collection.Get(), "Remove", "operation").Member;
    const bool place = IsPlace(remove, remove["arguments"][0]);
    EXPECT_EQ(CallSlot(collection.Get(), FindSlot(collection.Get(), "Remove", "operation"),
                       {place ? Place(&first.Get()) : index}),
              S_OK);
}

}  // namespace
