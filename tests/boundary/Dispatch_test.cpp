#include "boundary/Client.h"

#include "platform/component/dispatch/Interface.h"

/// Calls by name: arguments there and back, defaults, failures.
namespace {

using namespace Client;

// ---- names ------------------------------------------------------------------------------------------

TEST(GetIDsOfNames, FindsMembersWithoutRegardToCase) {
    const Dispatch patient = Create("OXClass.cPatient");
    EXPECT_NE(IdOf(patient.Get(), "LastName"), DISPID_UNKNOWN);
    EXPECT_EQ(IdOf(patient.Get(), "LASTNAME"), IdOf(patient.Get(), "lastname"));
    EXPECT_NE(IdOf(patient.Get(), "LastName"), IdOf(patient.Get(), "FirstName"));
}

TEST(GetIDsOfNames, FindsArgumentsAfterTheirMember) {
    const Dispatch patient = Create("OXClass.cPatient");
    std::u16string member = u"LoadOnPatientIDorPDBID", third = u"pdbid", first = u"Con", none = u"Nobody";
    LPOLESTR names[] = {member.data(), third.data(), first.data()};
    DISPID ids[3]{};
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
    EXPECT_EQ(ids[1], 2);
    EXPECT_EQ(ids[2], 0);
    names[1] = none.data();
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, names, 3, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[1], DISPID_UNKNOWN);
    EXPECT_EQ(ids[2], 0) << "the others are found";
}

TEST(GetIDsOfNames, WrongCallsGetTheStandardCodes) {
    const Dispatch patient = Create("OXClass.cPatient");
    std::u16string name = u"LastName", unknown = u"Nobody";
    LPOLESTR names[] = {name.data()}, unknowns[] = {unknown.data()}, nothing[] = {nullptr};
    DISPID id = 7;
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, unknowns, 1, 0, &id), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(id, DISPID_UNKNOWN);
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, nothing, 1, 0, &id), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(patient->GetIDsOfNames(IID_IUnknown, names, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_POINTER);
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_POINTER);
    EXPECT_EQ(patient->GetIDsOfNames(IID_NULL, names, 0, 0, &id), E_INVALIDARG);
}

TEST(TypeInfo, IsNotAvailable) {
    const Dispatch patient = Create("OXClass.cPatient");
    UINT count = 9;
    EXPECT_EQ(patient->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(patient->GetTypeInfoCount(nullptr), E_POINTER);
    ITypeInfo* info = nullptr;
    EXPECT_EQ(patient->GetTypeInfo(0, 0, &info), DISP_E_BADINDEX);
    EXPECT_EQ(patient->GetTypeInfo(0, 0, nullptr), E_POINTER);
}

// ---- properties -------------------------------------------------------------------------------------

TEST(Invoke, PropertiesArePutAndGot) {
    const Dispatch patient = Create("OXClass.cPatient");
    Put(patient, "LastName", "Åkesson 😀");
    Put(patient, "ID", 42);
    Put(patient, "BirthDate", 29221.5);
    EXPECT_EQ(Get(patient, "LastName").String(), "Åkesson 😀");
    EXPECT_EQ(Get(patient, "ID").Long(), 42);
    Value birth = Get(patient, "BirthDate");
    EXPECT_EQ(birth.Type(), VT_DATE);
    EXPECT_EQ(birth.Get().date, 29221.5);
}

TEST(Invoke, AFlagIsMinusOneOrZero) {
    const Dispatch tooth = Create("OXClass.cTooth");
    Put(tooth, "Selected", 5);
    Value flag = Get(tooth, "Selected");
    EXPECT_EQ(flag.Type(), VT_BOOL);
    EXPECT_EQ(flag.Get().boolVal, -1);
    Put(tooth, "Selected", 0);
    EXPECT_EQ(Get(tooth, "Selected").Get().boolVal, 0);
}

TEST(Invoke, APutByValueServesWhereAnObjectIsPut) {
    const Dispatch entry = Create("OXClass.cUniCard"), study = Create("OXClass.cStudy");
    EXPECT_EQ(Invoke(entry.Get(), "Study", DISPATCH_PROPERTYPUT, {study}).Code, S_OK);
    EXPECT_EQ(Invoke(entry.Get(), "Study", DISPATCH_PROPERTYPUTREF, {Dispatch()}).Code, S_OK);
    EXPECT_FALSE(Get(entry, "Study").Object()) << "nothing was put";
}

TEST(Invoke, ATextKeepsItsZeros) {
    const Dispatch patient = Create("OXClass.cPatient");
    Value text = Value::OfType(VT_BSTR);
    text.Get().bstrVal = SysAllocStringLen(u"a\0b", 3);
    Put(patient, "LastName", text);
    EXPECT_EQ(Get(patient, "LastName").String(), std::string("a\0b", 3));
    Value nullText = Value::OfType(VT_BSTR);
    Put(patient, "LastName", nullText);
    EXPECT_EQ(Get(patient, "LastName").String(), "");
}

// ---- arguments --------------------------------------------------------------------------------------

TEST(Invoke, ArgumentsByReferenceAreWrittenBack) {
    const Dispatch connection = OpenedConnection();
    Call(connection, "Execute", {"CREATE TABLE t (a INTEGER)"});
    Value count;
    Call(connection, "Execute", {"INSERT INTO t VALUES (1), (2)", Value::Reference(VT_VARIANT, &count.Get())});
    EXPECT_EQ(count.Long(), 2);
    LONG typed = 0;
    Call(connection, "Execute", {"DELETE FROM t", Value::Reference(VT_I4, &typed)});
    EXPECT_EQ(typed, 2);
}

TEST(Invoke, AnArgumentByReferenceIsWrittenBackByAnOperationThatRaises) {
    const Dispatch ids = Create("OXClass.OtherPatIDs");
    Call(ids, "Add", {"one", 1, "K"});
    Value text(" abc ");
    const Outcome failed =
        Invoke(ids.Get(), "Add", DISPATCH_METHOD, {Value::Reference(VT_BSTR, &text.Get().bstrVal), 2, "K"});
    EXPECT_EQ(failed.Code, DISP_E_EXCEPTION);
    EXPECT_EQ(text.String(), "ABC");
}

TEST(Invoke, AnObjectIsTakenThroughAReference) {
    const Dispatch comments = Create("OXClass.cComments");
    Dispatch item = Create("OXClass.cStringItem");
    Put(item, "str", "a comment");
    Value held = item;
    Call(comments, "AddObj", {Value::Reference(VT_VARIANT, &held.Get()), 0});
    EXPECT_EQ(Get(comments, "Item", {1}).Object().Get(), item.Get());
}

TEST(Invoke, OptionalArgumentsMayBeLeftOut) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    Call(teeth, "Add", {true, "16"});
    Call(teeth, "Add", {true, "17", Value::LeftOut()});
    Value leftOut = Value::LeftOut();
    Call(teeth, "Add", {true, "18", Value::Reference(VT_VARIANT, &leftOut.Get())});
    EXPECT_EQ(Get(teeth, "Count").Long(), 3);
    EXPECT_EQ(Invoke(teeth.Get(), "Add", DISPATCH_METHOD, {true}).Code, DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(Invoke(teeth.Get(), "Add", DISPATCH_METHOD, {true, Value::LeftOut()}).Code, DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(Get(teeth, "Count").Long(), 3);
}

TEST(Invoke, ArgumentsAreTakenByName) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    std::u16string add = u"Add", number = u"TNumber", selected = u"Selected", key = u"sKey";
    LPOLESTR names[] = {add.data(), number.data(), selected.data(), key.data()};
    DISPID ids[4]{};
    ASSERT_EQ(teeth->GetIDsOfNames(IID_NULL, names, 4, 0, ids), S_OK);
    Value given[] = {"26", true, "K"};
    VARIANT raw[] = {given[0].Get(), given[1].Get(), given[2].Get()};
    DISPPARAMS parameters{raw, &ids[1], 3, 3};
    ASSERT_EQ(teeth->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(Get(Get(teeth, "Item", {"K"}).Object(), "TNumber").Integer(), 26);

    DISPID twice[] = {ids[1], ids[1], ids[2]};
    DISPPARAMS wrong{raw, twice, 3, 3};
    UINT position = 9;
    EXPECT_EQ(teeth->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &wrong, nullptr, nullptr, &position),
              DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(position, 1U);
    DISPID unknown[] = {77};
    DISPPARAMS noSuch{raw, unknown, 1, 1};
    EXPECT_EQ(teeth->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &noSuch, nullptr, nullptr, &position),
              DISP_E_PARAMNOTFOUND);
}

TEST(Invoke, TheDefaultMemberHasTheIdentityZero) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    Call(teeth, "Add", {true, "16"});
    std::vector<Value> first{1};
    EXPECT_EQ(Get(Invoke(teeth.Get(), DISPID_VALUE, DISPATCH_PROPERTYGET, first).Result.Object(), "TNumber").Integer(),
              16);
    const Dispatch lists = Create("OXClass.cGlobalLists");
    Call(lists, "Add");
    EXPECT_EQ(Invoke(lists.Get(), DISPID_VALUE, DISPATCH_PROPERTYGET, first).Code, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(Get(lists, "Item", {1}).Type(), VT_DISPATCH);
}

TEST(Invoke, ArgumentsBeyondAnObjectAreThoseOfItsDefaultMember) {
    const Dispatch connection = Create("ADODB.Connection"), rows = Create("ADODB.Recordset");
    Call(connection, "Open", {"Provider=SQLite;Data Source=:memory:"});
    Call(connection, "Execute", {"CREATE TABLE t (a INTEGER PRIMARY KEY, b VARCHAR(9))"});
    Call(connection, "Execute", {"INSERT INTO t VALUES (1, 'before')"});
    Put(rows, "CursorLocation", 3);
    Call(rows, "Open", {"SELECT a, b FROM t", Value(connection), 3, 3});
    EXPECT_EQ(Get(Get(rows, "Fields", {"b"}).Object(), "Value").String(), "before");

    std::vector<Value> given{"b", "after"};  // rows("b") = "after"
    EXPECT_EQ(Invoke(rows.Get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, given).Code, S_OK);
    EXPECT_EQ(Get(rows, "Collect", {"b"}).String(), "after");

    std::vector<Value> tooMany{"b", "b"};
    EXPECT_EQ(Invoke(rows.Get(), "Fields", DISPATCH_PROPERTYGET, tooMany).Code, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Invoke(Create("OXClass.cUniCard").Get(), "Study", DISPATCH_PROPERTYGET, {1}).Code, DISP_E_BADPARAMCOUNT)
        << "there is no object";
}

TEST(Invoke, TheNineCollectionsWalkByTheEnumeratorsIdentity) {
    for (const char* name : {"cDoctors", "cClinics", "cImages", "cTeeth", "cComments", "cGlobalLists", "OtherPatIDs",
                             "IntendedRecipients", "cUniCards"}) {
        std::vector<Value> none;
        const Dispatch collection = Create(std::string("OXClass.") + name);
        const Outcome walk = Invoke(collection.Get(), DISPID_NEWENUM, DISPATCH_METHOD, none);
        EXPECT_EQ(walk.Code, S_OK) << name;
        EXPECT_EQ(walk.Result.Type(), VT_UNKNOWN) << name;
        std::vector<Value> index{1};
        EXPECT_EQ(Invoke(collection.Get(), DISPID_VALUE, DISPATCH_PROPERTYGET, index).Code == DISP_E_MEMBERNOTFOUND,
                  std::string(name) == "cGlobalLists")
            << name;
    }
}

// ---- wrong calls ------------------------------------------------------------------------------------

TEST(Invoke, WrongCallsGetTheStandardCodes) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    const auto code = [&](const char* name, int flags, std::vector<Value> arguments) {
        return Invoke(teeth.Get(), name, flags, std::move(arguments)).Code;
    };
    EXPECT_EQ(code("Nobody", DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(code("Count", DISPATCH_PROPERTYPUT, {1}), DISP_E_MEMBERNOTFOUND) << "it can only be read";
    EXPECT_EQ(code("Count", DISPATCH_PROPERTYGET, {1}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(code("Add", DISPATCH_METHOD, {true, "16", "K", "more"}), DISP_E_BADPARAMCOUNT);
    const Dispatch tooth = Create("OXClass.cTooth");
    Outcome wrong = Invoke(tooth.Get(), "Selected", DISPATCH_PROPERTYPUT, {"no flag"});
    EXPECT_EQ(wrong.Code, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(wrong.Wrong, 0U);
    const Dispatch patient = Create("OXClass.cPatient");
    EXPECT_EQ(Invoke(patient.Get(), "ID", DISPATCH_PROPERTYPUT, {3e9}).Code, DISP_E_OVERFLOW);
    EXPECT_EQ(Invoke(patient.Get(), "Save", DISPATCH_METHOD, {"no connection"}).Code, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Record(), "Runtime: Type mismatch");
    EXPECT_EQ(Invoke(patient.Get(), "ID", DISPATCH_PROPERTYPUT, {patient}).Code, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Record(), "Runtime: Type mismatch");
    EXPECT_EQ(Get(patient, "ID").Long(), 0);
}

TEST(Invoke, ReportsWhichArgumentIsWrong) {
    const Dispatch teeth = Create("OXClass.cTeeth");
    EXPECT_EQ(Invoke(teeth.Get(), "Add", DISPATCH_METHOD, {"no flag", "16"}).Wrong, 1U)
        << "the first argument is the last in the caller's array";
    Value array = Value::OfType(VT_ARRAY | VT_I4);
    array.Get().parray = SafeArrayCreateVector(VT_I4, 0, 1);
    const Outcome wrong = Invoke(teeth.Get(), "Add", DISPATCH_METHOD, {true, array});
    EXPECT_EQ(wrong.Code, DISP_E_BADVARTYPE);
    EXPECT_EQ(wrong.Wrong, 0U);
}

TEST(Invoke, ANullIsTheRuntimesOwnFailure) {
    const Outcome wrong = Invoke(Create("OXClass.cPatient").Get(), "LastName", DISPATCH_PROPERTYPUT, {Value::Null()});
    EXPECT_EQ(wrong.Code, DISP_E_EXCEPTION);
    EXPECT_EQ(wrong.Failure, static_cast<HRESULT>(0x800A005E));
    EXPECT_EQ(wrong.Description, "Invalid use of Null");
}

TEST(Invoke, AFailureOfAMemberIsAnException) {
    const Outcome missing = Invoke(Create("OXClass.cComments").Get(), "Item", DISPATCH_PROPERTYGET, {7});
    EXPECT_EQ(missing.Code, DISP_E_EXCEPTION);
    EXPECT_EQ(missing.Failure, static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(missing.Description, "Subscript out of range");
    EXPECT_EQ(missing.Result.Type(), VT_EMPTY);
}

TEST(Invoke, AnEnginesFailureKeepsItsNumberSourceAndText) {
    const Dispatch connection = OpenedConnection();
    Call(connection, "Execute", {"DROP TABLE Doctor_T"});
    const Dispatch doctors = Create("OXClass.cDoctors");
    const Outcome failed = Invoke(doctors.Get(), "GetAllDoctors", DISPATCH_METHOD, {connection});
    EXPECT_EQ(failed.Code, DISP_E_EXCEPTION);
    EXPECT_EQ(failed.Failure, static_cast<HRESULT>(0x80040E37));
    EXPECT_TRUE(failed.Source.starts_with("cDoctors.GetAllDoctors, ")) << failed.Source;
    EXPECT_EQ(failed.Description, "no such table: Doctor_T");
    EXPECT_EQ(Record(), failed.Source + ": " + failed.Description);
}

TEST(Invoke, ASuccessLeavesNoOldRecord) {
    const Dispatch comments = Create("OXClass.cComments");
    Invoke(comments.Get(), "Item", DISPATCH_PROPERTYGET, {7});
    Get(comments, "Count");
    EXPECT_EQ(Record(), "");
}

TEST(Invoke, WorksWithoutPlacesForResultAndFailure) {
    const Dispatch comments = Create("OXClass.cComments");
    DISPPARAMS none{};
    EXPECT_EQ(comments->Invoke(IdOf(comments.Get(), "Count"), IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr,
                               nullptr, nullptr),
              S_OK);
    Value seven(7);
    DISPPARAMS one{&seven.Get(), nullptr, 1, 0};
    EXPECT_EQ(comments->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_PROPERTYGET, &one, nullptr, nullptr, nullptr),
              DISP_E_EXCEPTION);
}

TEST(Invoke, UnsoundParametersAreRejected) {
    const Dispatch comments = Create("OXClass.cComments");
    const DISPID count = IdOf(comments.Get(), "Count");
    DISPPARAMS none{}, noArguments{nullptr, nullptr, 1, 0}, noNames{nullptr, nullptr, 0, 1};
    const auto code = [&](DISPPARAMS* parameters, REFIID riid = IID_NULL) {
        return comments->Invoke(count, riid, 0, DISPATCH_PROPERTYGET, parameters, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(code(&none), S_OK);
    EXPECT_EQ(code(nullptr), E_INVALIDARG);
    EXPECT_EQ(code(&noArguments), E_INVALIDARG);
    EXPECT_EQ(code(&noNames), E_INVALIDARG);
    EXPECT_EQ(code(&none, IID_IDispatch), DISP_E_UNKNOWNINTERFACE);
}

TEST(Invoke, AReferenceOfAWrongTypeIsRejectedBeforeTheMemberRuns) {
    const Dispatch others = Create("OXClass.OtherPatIDs");
    LONG number = 5;
    EXPECT_EQ(Invoke(others.Get(), "Add", DISPATCH_METHOD, {Value::Reference(VT_I4, &number), 7}).Code,
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Get(others, "Count").Long(), 0);
    Text text("19800101-1234");
    EXPECT_EQ(Invoke(others.Get(), "Add", DISPATCH_METHOD, {Value::Reference(VT_BSTR, text.Place()), 7}).Code, S_OK);
    EXPECT_EQ(Get(others, "Count").Long(), 1);
}

TEST(Invoke, ATextThatIsWrittenBackReplacesTheOldOne) {
    const Dispatch connection = OpenedConnection(), root = Create("OXClass.Class1");
    Call(root, "SaveGLSetting", {connection, 42, "the setting", false});
    Text typed("before");
    Value held = "before", lists = Dispatch();
    EXPECT_TRUE(
        Call(root, "GetGLSetting",
             {connection, 42, Value::Reference(VT_BSTR, typed.Place()), Value::Reference(VT_VARIANT, &lists.Get())})
            .Bool());
    EXPECT_EQ(typed.Utf8(), "the setting");
    EXPECT_EQ(Get(lists.Object(), "Count").Long(), 1) << "the object comes back too";
    Call(root, "GetGLSetting", {connection, 42, Value::Reference(VT_VARIANT, &held.Get()), Dispatch()});
    EXPECT_EQ(held.String(), "the setting");
}

TEST(Invoke, AReferenceIsReadThrough) {
    const Dispatch comments = Create("OXClass.cComments");
    LONG number = 1;
    EXPECT_EQ(Invoke(comments.Get(), "Item", DISPATCH_PROPERTYGET, {Value::Reference(VT_I4, nullptr)}).Code, E_POINTER);
    Call(comments, "AddObj", {Create("OXClass.cStringItem"), 0});
    EXPECT_EQ(Invoke(comments.Get(), "Item", DISPATCH_PROPERTYGET, {Value::Reference(VT_I4, &number)}).Code, S_OK);
}

TEST(Invoke, AnObjectThatEndsInsideItsOwnCallIsSafe) {
    const Dispatch collection = Create("Collection");
    Dispatch inner = Create("Collection");
    Call(collection, "Add", {inner});
    Call(inner, "Add", {collection});
    inner = Dispatch();
    std::vector<Value> first{1};
    const DISPID remove = IdOf(collection.Get(), "Remove");
    EXPECT_EQ(Invoke(collection.Get(), remove, DISPATCH_METHOD, first).Code, S_OK);
    EXPECT_EQ(collection->AddRef(), 2U) << "the ring is gone";
    collection->Release();
}

}  // namespace
