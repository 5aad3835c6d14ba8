#include "worklist/cMWLItem.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// One entry of a modality worklist.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::vector<String> textsBeforeTheLists = {"Key",
                                                 "DS_URL",
                                                 "PatientWeight",
                                                 "SchPerfPhysName",
                                                 "PatientComments",
                                                 "SchProcStepID",
                                                 "StudyUID",
                                                 "AddPatientHistory",
                                                 "OtherPatientID",
                                                 "EthnicGroup",
                                                 "IntendedRecipientsOfResults",
                                                 "ReqProcPrio",
                                                 "SchProcStepLocation",
                                                 "SchProcStepStatus",
                                                 "PatientAddress",
                                                 "PatientSex",
                                                 "PatientBirthDate",
                                                 "RefPhysName",
                                                 "ReqProcCodeMeaning",
                                                 "ReqProcDesc",
                                                 "ProtocolCodeMeaning",
                                                 "SchProcStepStartTime",
                                                 "SchProcStepDesc",
                                                 "Modality",
                                                 "SchProcStepStartDate",
                                                 "SchStatAE",
                                                 "ReqProcID",
                                                 "Accession",
                                                 "PatientID",
                                                 "PatientName",
                                                 "ReqPhys"};
const std::vector<String> textsBehindTheLists = {"AdmissionID", "RefPhysAddress"};

std::vector<String> AllTexts() {
    std::vector<String> names = textsBeforeTheLists;
    names.insert(names.end(), textsBehindTheLists.begin(), textsBehindTheLists.end());
    return names;
}

class WorklistItem : public ::testing::Test {
protected:
    Variant Get(const String& name) {
        std::vector<Variant> none;
        return Invoke(*item, name, MemberKind::Get, none);
    }
    void Put(const String& name, const Variant& value, MemberKind kind = MemberKind::Put) {
        std::vector<Variant> values{value};
        Invoke(*item, name, kind, values);
    }
    String AddOther(String text) {
        item->AddOtherPID(text);
        return text;
    }

    /// The members of a list, "text ID" each.
    template <class List>
    static std::vector<String> MembersIn(const Ref<List>& list) {
        std::vector<String> members;
        for (const cStringItem& member : *list) members.push_back(member.str + " " + CStr(member.ID));
        return members;
    }

    Ref<cMWLItem> item = New<cMWLItem>();
};

TEST_F(WorklistItem, HasThe72DocumentedMembers) {
    std::vector<String> expected;
    const auto add = [&](const std::vector<String>& names) {
        for (const String& name : names) {
            expected.push_back("put " + name + "(string)");
            expected.push_back("get " + name + " -> string");
        }
    };
    add(textsBeforeTheLists);
    for (const char* member :
         {"AddRecipient(NewRecipient: string&)", "AddOtherPID(NewPID: string&)",
          "get IntendedRecipients -> IntendedRecipients", "putref IntendedRecipients(IntendedRecipients&)",
          "get OtherPatIDs -> OtherPatIDs", "putref OtherPatIDs(OtherPatIDs&)"})
        expected.emplace_back(member);
    add(textsBehindTheLists);
    EXPECT_THAT(expected, SizeIs(72));
    EXPECT_THAT(MembersOf(*item), ElementsAreArray(expected));
}

TEST_F(WorklistItem, HasNeitherADefaultMemberNorAnEnumerator) {
    for (const Member& member : item->Describe().Members()) {
        EXPECT_NE(member.DispId, DefaultMember) << member.Name;
        EXPECT_NE(member.DispId, EnumeratorMember) << member.Name;
    }
}

TEST_F(WorklistItem, StartsWithEmptyTexts) {
    for (const String& name : AllTexts()) EXPECT_EQ(Get(name), Variant("")) << name;
}

TEST_F(WorklistItem, StartsWithEmptyLists) {
    ASSERT_TRUE(item->IntendedRecipients());
    ASSERT_TRUE(item->OtherPatIDs());
    EXPECT_EQ(item->IntendedRecipients()->Count(), 0);
    EXPECT_EQ(item->OtherPatIDs()->Count(), 0);
}

TEST_F(WorklistItem, KeepsEachTextAsItWasPut) {
    for (const String& name : AllTexts()) Put(name, " '" + name + "\t");
    for (const String& name : AllTexts()) EXPECT_EQ(Get(name), Variant(" '" + name + "\t"));
}

TEST_F(WorklistItem, TheMembersOfTheObjectAreThoseOfTheInterface) {
    item->PatientWeight = "not a number";
    item->PatientBirthDate = "not a date";
    item->RefPhysAddress = "Lane 1";
    EXPECT_EQ(Get("PatientWeight"), Variant("not a number"));
    EXPECT_EQ(Get("patientbirthdate"), Variant("not a date"));
    EXPECT_EQ(Get("RefPhysAddress"), Variant("Lane 1"));
}

// ---- recipients ---------------------------------------------------------------------------------

TEST_F(WorklistItem, RecipientsGetTheNextNumberAndItsKey) {
    item->AddRecipient("b");
    item->AddRecipient(" a ");
    EXPECT_THAT(MembersIn(item->IntendedRecipients()), ElementsAre("b 1", " a  2"));
    EXPECT_EQ(item->IntendedRecipients()->Item("K1")->str, "b");
    EXPECT_EQ(item->IntendedRecipients()->Item("K2")->str, " a ");
}

TEST_F(WorklistItem, AddingARecipientLeavesTheTextOfRecipients) {
    item->AddRecipient("a");
    item->AddRecipient("b");
    EXPECT_EQ(item->IntendedRecipients()->Count(), 2);
    EXPECT_EQ(item->IntendedRecipientsOfResults, "");
}

TEST_F(WorklistItem, PuttingTheTextOfRecipientsLeavesTheirList) {
    item->IntendedRecipientsOfResults = "a\\b";
    EXPECT_EQ(item->IntendedRecipients()->Count(), 0);
}

TEST_F(WorklistItem, EqualAndBlankRecipientsAreAllAdded) {
    for (const char* text : {"a", "a", "", "  "}) item->AddRecipient(text);
    EXPECT_THAT(MembersIn(item->IntendedRecipients()), ElementsAre("a 1", "a 2", " 3", "   4"));
}

TEST_F(WorklistItem, ARecipientAfterARemovalCollidesWithAnExistingKey) {
    item->AddRecipient("a");
    item->AddRecipient("b");
    item->IntendedRecipients()->Remove("K1");
    const Error failure = FailureOf([&] { item->AddRecipient("c"); });
    EXPECT_EQ(failure.Number, 457);
    EXPECT_THAT(MembersIn(item->IntendedRecipients()), ElementsAre("b 2"));
}

TEST_F(WorklistItem, ARecipientAfterTheRemovalOfTheLastTakesItsNumber) {
    item->AddRecipient("a");
    item->AddRecipient("b");
    item->IntendedRecipients()->Remove("K2");
    item->AddRecipient("c");
    EXPECT_THAT(MembersIn(item->IntendedRecipients()), ElementsAre("a 1", "c 2"));
}

TEST_F(WorklistItem, AListOfThreeThatWasPutTakesTheFourthRecipient) {
    const Ref<IntendedRecipients> list = New<IntendedRecipients>();
    for (const char* text : {"a", "b", "c"}) list->Add(text, 0);
    item->AddRecipient("dropped");
    item->SetIntendedRecipients(list);
    item->AddRecipient("d");
    EXPECT_EQ(item->IntendedRecipients(), list);
    EXPECT_THAT(MembersIn(list), ElementsAre("a 0", "b 0", "c 0", "d 4"));
    EXPECT_EQ(list->Item("K4")->str, "d");
}

TEST_F(WorklistItem, ALateBoundPutReplacesBothLists) {
    const Ref<IntendedRecipients> recipients = New<IntendedRecipients>();
    const Ref<OtherPatIDs> others = New<OtherPatIDs>();
    Put("IntendedRecipients", Variant(recipients), MemberKind::PutRef);
    Put("OtherPatIDs", Variant(others), MemberKind::PutRef);
    EXPECT_EQ(Get("IntendedRecipients"), Variant(recipients));
    EXPECT_EQ(Get("OtherPatIDs"), Variant(others));
}

TEST_F(WorklistItem, AListSetToNullIsCreatedAgainAndEmpty) {
    item->AddRecipient("a");
    AddOther("a");
    const Ref<IntendedRecipients> recipients = item->IntendedRecipients();
    const Ref<OtherPatIDs> others = item->OtherPatIDs();
    item->SetIntendedRecipients(nullptr);
    item->SetOtherPatIDs(nullptr);
    item->AddRecipient("b");
    AddOther("b");
    EXPECT_THAT(MembersIn(item->IntendedRecipients()), ElementsAre("b 1"));
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("B 1"));
    EXPECT_THAT(MembersIn(recipients), ElementsAre("a 1"));
    EXPECT_THAT(MembersIn(others), ElementsAre("A 1"));
}

TEST_F(WorklistItem, AGetterReturnsTheSameListEachTime) {
    EXPECT_EQ(item->IntendedRecipients(), Ref<IntendedRecipients>(item->IntendedRecipients()));
    const Ref<OtherPatIDs> others = item->OtherPatIDs();
    EXPECT_EQ(item->OtherPatIDs(), others);
    EXPECT_NE(New<cMWLItem>()->OtherPatIDs(), others);
}

TEST_F(WorklistItem, AListOutlivesItsItem) {
    item->AddRecipient("a");
    const Ref<IntendedRecipients> recipients = item->IntendedRecipients();
    item = nullptr;
    EXPECT_THAT(MembersIn(recipients), ElementsAre("a 1"));
}

// ---- other identifiers ------------------------------------------------------------------------------------

TEST_F(WorklistItem, OtherIdentifiersGetTheNextNumberAndItsKey) {
    AddOther("A");
    AddOther("B");
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("A 1", "B 2"));
    EXPECT_EQ(item->OtherPatIDs()->Item("K1")->str, "A");
    EXPECT_EQ(item->OtherPatIDs()->Item("K2")->str, "B");
}

TEST_F(WorklistItem, PuttingTheTextOfOtherIdentifiersLeavesTheirList) {
    item->OtherPatientID = "A\\B";
    EXPECT_EQ(item->OtherPatIDs()->Count(), 0);
}

TEST_F(WorklistItem, AddingAnotherIdentifierLeavesTheirText) {
    AddOther("A");
    EXPECT_EQ(item->OtherPatientID, "");
}

TEST_F(WorklistItem, AnIdentifierInLowerCaseIsStoredAndReturnedInUpperCase) {
    EXPECT_EQ(AddOther(" abc "), "ABC");
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("ABC 1"));
}

TEST_F(WorklistItem, ALateBoundCallersIdentifierIsWrittenBackToo) {
    std::vector<Variant> arguments{Variant("abc")};
    EXPECT_EQ(Invoke(*item, "AddOtherPID", MemberKind::Operation, arguments), Variant());
    EXPECT_EQ(arguments[0], Variant("ABC"));
}

TEST_F(WorklistItem, ALateBoundRecipientIsUnchanged) {
    std::vector<Variant> arguments{Variant(" abc ")};
    EXPECT_EQ(Invoke(*item, "AddRecipient", MemberKind::Operation, arguments), Variant());
    EXPECT_EQ(arguments[0], Variant(" abc "));
}

TEST_F(WorklistItem, AnIdentifierInUpperCaseIsAddedOnce) {
    AddOther("A");
    EXPECT_EQ(AddOther("A"), "A");
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("A 1"));
}

TEST_F(WorklistItem, AnIdentifierInLowerCaseIsAddedTwice) {
    AddOther("a");
    AddOther("a");
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("A 1", "A 2"));
}

TEST_F(WorklistItem, ABlankIdentifierIsNotAdded) {
    EXPECT_EQ(AddOther("  "), "");
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), IsEmpty());
}

TEST_F(WorklistItem, AnIdentifierAfterARemovalCollidesWithAnExistingKey) {
    AddOther("A");
    AddOther("B");
    item->OtherPatIDs()->Remove("K1");
    EXPECT_EQ(FailureOf([&] { AddOther("C"); }).Number, 457);
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("B 2"));
}

TEST_F(WorklistItem, AnExistingIdentifierDoesNotCollideWithAKey) {
    AddOther("A");
    AddOther("B");
    item->OtherPatIDs()->Remove("K1");
    EXPECT_EQ(AddOther("B"), "B");
    EXPECT_THAT(MembersIn(item->OtherPatIDs()), ElementsAre("B 2"));
}

TEST_F(WorklistItem, APutListOfIdentifiersTakesTheNextOne) {
    const Ref<OtherPatIDs> list = New<OtherPatIDs>();
    list->FillFromString("A\\B");
    item->SetOtherPatIDs(list);
    AddOther("c");
    EXPECT_THAT(MembersIn(list), ElementsAre("A 0", "B 1", "C 3"));
    EXPECT_EQ(list->Item("K3")->str, "C");
}

}  // namespace
}  // namespace OXClass
