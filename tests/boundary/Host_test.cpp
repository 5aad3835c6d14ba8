#include "boundary/Client.h"
#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

#include <filesystem>
#include <map>
#include <thread>

/// The plain entries of the host: services, events, descriptions.
namespace {

using namespace Client;
using ::testing::ElementsAre;

/// The calls that a client's handlers received, with their context.
struct Told {
    std::vector<std::string> lines;
    bool cancel = false;
    bool released = false;
};

// ---- services ---------------------------------------------------------------------------------------

TEST(Services, TextBoxesGoToTheClient) {
    Told told;
    ASSERT_EQ(OxSetMsgBox(
                  [](void* context, BSTR prompt, LONG buttons) {
                      static_cast<Told*>(context)->lines.push_back(Text(Taken(SysAllocString(prompt))).Utf8() + "/" +
                                                                   std::to_string(buttons));
                  },
                  &told),
              S_OK);
    const Dispatch patient = Create("OXClass.cPatient"), closed = Create("ADODB.Connection");
    EXPECT_EQ(Call(patient, "LoadOnPatientIDorPDBID", {closed, "X", 0}).Long(), 0);
    OxSetMsgBox(nullptr, nullptr);
    ASSERT_EQ(told.lines.size(), 1U);
    EXPECT_TRUE(told.lines[0].starts_with("OXClass.LoadOnPatientIDorpdbid error: 3709 ")) << told.lines[0];
    EXPECT_TRUE(told.lines[0].ends_with("/0")) << told.lines[0];
}

TEST(Services, TheClockIsTheClients) {
    ASSERT_EQ(OxSetNow([](void*) -> DATE { return 45000.5; }, nullptr), S_OK);
    const Dispatch connection = OpenedConnection();
    Call(connection, "Execute", {"DROP TABLE ImageAttribute_T"});
    Told told;
    OxSetMsgBox([](void* context, BSTR prompt,
                   LONG) { static_cast<Told*>(context)->lines.push_back(Taken(SysAllocString(prompt))); },
                &told);
    const Dispatch card = Create("OXClass.cImagecard");
    Invoke(card.Get(), "LoadImageAttributes", DISPATCH_METHOD, {connection});
    OxSetNow(nullptr, nullptr);
    OxSetMsgBox(nullptr, nullptr);
    ASSERT_EQ(told.lines.size(), 1U);
    EXPECT_NE(told.lines[0].find("(3/15/2023 12:00:00)"), std::string::npos) << told.lines[0];
}

TEST(Services, PendingMessagesAreHandledByTheClient) {
    static int pumped = 0;
    ASSERT_EQ(OxSetDoEvents([](void*) { ++pumped; }, nullptr), S_OK);
    const Dispatch connection = OpenedConnection(), placed = Create("OXClass.cImagecardAttribute");
    Put(placed, "ID", 7);
    Call(placed, "Save", {connection});
    OxSetDoEvents(nullptr, nullptr);
    EXPECT_EQ(pumped, 1);
}

// ---- connection events ------------------------------------------------------------------------------

const OxConnectionEvents Telling{
    [](void* context, BSTR source) -> LONG {
        auto& told = *static_cast<Told*>(context);
        told.lines.push_back("will " + Taken(SysAllocString(source)));
        return told.cancel ? 1 : 0;
    },
    [](void* context, BSTR source, LONGLONG records, DOUBLE seconds, HRESULT failure, BSTR, BSTR description) {
        EXPECT_GE(seconds, 0);
        static_cast<Told*>(context)->lines.push_back("did " + Taken(SysAllocString(source)) + " " +
                                                     std::to_string(records) + " " + std::to_string(failure == S_OK) +
                                                     Taken(SysAllocString(description)));
    },
    [](void* context) { static_cast<Told*>(context)->released = true; }};

TEST(Events, ReportEachStatement) {
    Told told;
    {
        const Dispatch connection = OpenedConnection();
        ULONG cookie = 0;
        ASSERT_EQ(OxAdvise(connection.Get(), &Telling, &told, &cookie), S_OK);
        Call(connection, "Execute", {"CREATE TABLE t (a INTEGER)"});
        Call(connection, "Execute", {"INSERT INTO t VALUES (1)"});
        EXPECT_EQ(Invoke(connection.Get(), "Execute", DISPATCH_METHOD, {"SELECT * FROM nowhere"}).Failure,
                  static_cast<HRESULT>(0x80040E37));
        EXPECT_THAT(told.lines,
                    ElementsAre("will CREATE TABLE t (a INTEGER)", ::testing::StartsWith("did CREATE"),
                                "will INSERT INTO t VALUES (1)", "did INSERT INTO t VALUES (1) 1 1",
                                "will SELECT * FROM nowhere", "did SELECT * FROM nowhere -1 0no such table: nowhere"));
        EXPECT_FALSE(told.released);
    }
    EXPECT_TRUE(told.released) << "the connection has ended";
}

TEST(Events, AHandlerCancelsAStatement) {
    Told told;
    told.cancel = true;
    const Dispatch connection = OpenedConnection();
    ULONG cookie = 0;
    OxAdvise(connection.Get(), &Telling, &told, &cookie);
    EXPECT_EQ(Invoke(connection.Get(), "Execute", DISPATCH_METHOD, {"CREATE TABLE t (a)"}).Failure,
              static_cast<HRESULT>(0x800A0E80));
    EXPECT_EQ(OxUnadvise(connection.Get(), cookie), S_OK);
    EXPECT_TRUE(told.released);
    Call(connection, "Execute", {"CREATE TABLE t (a)"});
    EXPECT_EQ(OxUnadvise(connection.Get(), cookie), E_INVALIDARG) << "it is out already";
}

TEST(Events, WrongCallsGetTheStandardCodes) {
    Told told;
    ULONG cookie = 0;
    const Dispatch connection = Create("ADODB.Connection"), collection = Create("Collection");
    EXPECT_EQ(OxAdvise(collection.Get(), &Telling, &told, &cookie), E_NOINTERFACE);
    EXPECT_EQ(OxAdvise(nullptr, &Telling, &told, &cookie), E_NOINTERFACE);
    EXPECT_EQ(OxAdvise(connection.Get(), nullptr, &told, &cookie), E_POINTER);
    EXPECT_EQ(OxAdvise(connection.Get(), &Telling, &told, nullptr), E_POINTER);
    EXPECT_FALSE(told.released);
    const OxConnectionEvents nothing{};
    ASSERT_EQ(OxAdvise(connection.Get(), &nothing, nullptr, &cookie), S_OK);
    Call(connection, "Open", {"Provider=SQLite;Data Source=:memory:"});
    Call(connection, "Execute", {"CREATE TABLE t (a)"});
}

TEST(Events, AnotherThreadIsRejected) {
    Told told;
    ULONG cookie = 0;
    const Dispatch connection = Create("ADODB.Connection");
    std::thread([&] {
        EXPECT_EQ(OxAdvise(connection.Get(), &Telling, &told, &cookie), RPC_E_WRONG_THREAD);
        EXPECT_EQ(OxUnadvise(connection.Get(), 1), RPC_E_WRONG_THREAD);
    }).join();
}

// ---- error records ----------------------------------------------------------------------------------

TEST(Entries, EachFailureHasItsOwnRecord) {
    BSTR json = nullptr;
    Dispatch object;
    CreateCode("OXClass.cNobody");
    EXPECT_EQ(OxDescribe(nullptr, &json), E_POINTER);
    EXPECT_EQ(Record(), "Runtime: The object is missing");
    CreateCode("OXClass.cNobody");
    EXPECT_EQ(OxCreateObject(u"Collection", nullptr), E_POINTER);
    EXPECT_EQ(Record(), "Runtime: The place of the result is missing");
    CreateCode("OXClass.cNobody");
    EXPECT_EQ(OxUnadvise(Create("ADODB.Connection").Get(), 12345), E_INVALIDARG);
    EXPECT_EQ(Record(), "Runtime: The connection has no events of this cookie");
    CreateCode("OXClass.cNobody");
    EXPECT_EQ(OxCreateObject(u"Collection", object.Place()), S_OK);
    EXPECT_EQ(Record(), "") << "a success leaves none";
}

// ---- descriptions -----------------------------------------------------------------------------------

TEST(Describe, ReturnsMembersArgumentsAndResults) {
    const Json patient = Describe(Create("OXClass.cPatient").Get());
    EXPECT_EQ(patient["class"], "cPatient");
    Json load;
    for (const Json& member : patient["members"])
        if (member["name"] == "LoadOnPatientIDorPDBID") load = member;
    EXPECT_EQ(load.dump(),
              R"({"name":"LoadOnPatientIDorPDBID","help":)"
              R"("Loads a patient. Returns 1, or 0 if there is none; a failure shows a message and returns 0.",)"
              R"("kind":"operation","id":1610809354,"arguments":[)"
              R"({"name":"Con","help":"The open connection to the database.",)"
              R"("type":"object","of":"Connection","byReference":false,"comesBack":false,"optional":false},)"
              R"({"name":"PatientID","help":"The patient identifier; empty to search by PDBID.",)"
              R"("type":"text","byReference":true,"comesBack":false,"optional":false},)"
              R"({"name":"PDBID","help":"The key of the row; ignored unless PatientID is empty.",)"
              R"("type":"long","byReference":true,"comesBack":false,"optional":false}],)"
              R"("result":"long"})");
    EXPECT_EQ(OxDescribe(nullptr, nullptr), E_POINTER);
}

TEST(Classes, NameTheLibraryOfEach) {
    ClassNames();
    BSTR text = nullptr;
    ASSERT_EQ(OxClasses(&text), S_OK);
    const Json classes = Json::parse(Taken(text));
    std::map<std::string, Json> byName;
    for (const Json& found : classes) byName[found["name"]] = found;
    EXPECT_EQ(byName["OXClass.cStudy"]["instancing"], "global");
    EXPECT_EQ(byName["OXClass.cPatient"]["instancing"], "multi-use");
    EXPECT_EQ(byName["OXClass.cPatient"]["threading"], "Apartment");
    EXPECT_EQ(byName["OXClass.cPatient"]["identifier"], "4b7f6647-8a1a-58a2-a42e-8a831cf71482");
    EXPECT_EQ(byName["OXClass.cPatient"]["library"], std::filesystem::canonical(LIBRARY).string());
    EXPECT_EQ(byName.count("ADODB.Connection"), 1U);
    EXPECT_EQ(OxClasses(nullptr), E_POINTER);
}

TEST(Classes, ALibraryThatIsInUseIsNotReplaced) {
    ClassNames();
    const TestKit::TemporaryFolder folder;
    const std::filesystem::path copy = folder.Path() / "libOXClass.so";
    std::filesystem::copy_file(LIBRARY, copy);
    ASSERT_EQ(OxUseLibrary(copy.string().c_str()), S_OK) << Record();
    BSTR text = nullptr;
    ASSERT_EQ(OxClasses(&text), S_OK);
    EXPECT_EQ(Taken(text).find(copy.string()), std::string::npos);
}

}  // namespace
