#include "images/cComments.h"

#include "images/cImage.h"
#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The list of an image's comments, and how an image loads it. Writing them is tested with the save.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

Ref<cStringItem> Comment(const String& text) {
    const Ref<cStringItem> item = New<cStringItem>();
    item->str = text;
    return item;
}

std::vector<String> TextsOf(const cComments& comments) {
    std::vector<String> texts;
    for (const cStringItem& item : comments) texts.push_back(item.str);
    return texts;
}

Date Day(int day) { return DateFrom({2024, 3, day, 10, 30, 15}); }

// ---- the list -------------------------------------------------------------------------------------

TEST(CommentList, HasTheDocumentedMembers) {
    EXPECT_THAT(MembersOf(cComments()),
                ElementsAre("Add(str: string&, ID: int32&, DateStamp: date&, Signature: string&, [sKey: string&])"
                            " -> cStringItem",
                            "get Item(vntIndexKey: variant) -> cStringItem", "get Count -> int32",
                            "Remove(vntIndexKey: variant)", "get NewEnum -> Enumerator",
                            "AddObj(Obj: cStringItem&, Index: int32&, [sKey: string&])"));
}

TEST(CommentList, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    const cComments comments;
    EXPECT_EQ(comments.Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(comments.Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

TEST(CommentList, AddKeepsItsValuesAndLeavesTheCommentUnsaved) {
    const Ref<cComments> comments = New<cComments>();
    const Ref<cStringItem> added = comments->Add("Caries", 17, Day(4), "Dr. May");
    EXPECT_EQ(added->str, "Caries");
    EXPECT_EQ(added->ID, 17);
    EXPECT_EQ(added->DateStamp, Day(4));
    EXPECT_EQ(added->Signature, "Dr. May");
    EXPECT_FALSE(added->bSaved);
    EXPECT_EQ(comments->Item(Long{1}), added);
}

TEST(CommentList, AddAppends) {
    const Ref<cComments> comments = New<cComments>();
    comments->Add("first", 1, Day(1), "a");
    comments->Add("second", 1, Day(1), "a", "key");
    comments->Add("third", 1, Day(1), "a");
    EXPECT_THAT(TextsOf(*comments), ElementsAre("first", "second", "third"));
}

TEST(CommentList, AKeyFindsItsCommentWithoutRegardToCase) {
    const Ref<cComments> comments = New<cComments>();
    comments->Add("plain", 1, Day(1), "a");
    const Ref<cStringItem> keyed = comments->Add("keyed", 1, Day(1), "a", "Key");
    EXPECT_EQ(comments->Item("kEY"), keyed);
}

TEST(CommentList, ASecondAddUnderAKeyRaisesAndDropsTheNewMember) {
    const Ref<cComments> comments = New<cComments>();
    comments->Add("old", 1, Day(1), "a", "K");
    EXPECT_EQ(FailureOf([&] { comments->Add("new", 1, Day(2), "b", "k"); }).Number, 457);
    EXPECT_THAT(TextsOf(*comments), ElementsAre("old"));
}

TEST(CommentList, ItemOfAMissingMemberRaises) {
    const Ref<cComments> comments = New<cComments>();
    comments->Add("only", 1, Day(1), "a");
    EXPECT_EQ(FailureOf([&] { comments->Item(Long{0}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { comments->Item(Long{2}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { comments->Item("missing"); }).Number, 5);
}

TEST(CommentList, RemoveClosesUp) {
    const Ref<cComments> comments = New<cComments>();
    for (const char* text : {"a", "b", "c"}) comments->Add(text, 1, Day(1), "s", String("key ") + text);
    comments->Remove(Long{1});
    comments->Remove("key c");
    EXPECT_THAT(TextsOf(*comments), ElementsAre("b"));
    EXPECT_EQ(FailureOf([&] { comments->Remove(Long{2}); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { comments->Remove("key c"); }).Number, 5);
}

TEST(CommentList, NewEnumVisitsTheMembersInOrder) {
    const Ref<cComments> comments = New<cComments>();
    for (const char* text : {"a", "b"}) comments->Add(text, 1, Day(1), "s");
    const Ref<Enumerator> walk = comments->NewEnum();
    Variant member;
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(To<Ref<cStringItem>>(member), comments->Item(Long{1}));
    ASSERT_TRUE(walk->Next(member));
    EXPECT_EQ(To<Ref<cStringItem>>(member), comments->Item(Long{2}));
    EXPECT_FALSE(walk->Next(member));
}

TEST(CommentList, AddObjIntoAnEmptyListIgnoresTheIndex) {
    for (const Long index : {0, 1, 5, -3}) {
        const Ref<cComments> comments = New<cComments>();
        comments->AddObj(Comment("first"), index);
        EXPECT_THAT(TextsOf(*comments), ElementsAre("first")) << index;
    }
}

TEST(CommentList, AddObjPutsACommentBeforeThePosition) {
    const Ref<cComments> comments = New<cComments>();
    comments->AddObj(Comment("c"), 0);
    comments->AddObj(Comment("a"), 1);
    comments->AddObj(Comment("b"), 2, "key");
    EXPECT_THAT(TextsOf(*comments), ElementsAre("a", "b", "c"));
    EXPECT_EQ(comments->Item("key")->str, "b");
}

TEST(CommentList, AddObjWithIndexZeroRaisesOnceThereAreMembers) {
    const Ref<cComments> comments = New<cComments>();
    comments->AddObj(Comment("first"), 0);
    EXPECT_EQ(FailureOf([&] { comments->AddObj(Comment("second"), 0); }).Number, 9);
    EXPECT_THAT(TextsOf(*comments), ElementsAre("first"));
}

TEST(CommentList, AddObjAfterTheLastPositionRaises) {
    const Ref<cComments> comments = New<cComments>();
    comments->AddObj(Comment("first"), 0);
    EXPECT_EQ(FailureOf([&] { comments->AddObj(Comment("second"), 2); }).Number, 9);
    EXPECT_THAT(TextsOf(*comments), ElementsAre("first"));
}

TEST(CommentList, AddObjWithAKeyReadsTheIndexEvenInAnEmptyList) {
    const Ref<cComments> comments = New<cComments>();
    EXPECT_EQ(FailureOf([&] { comments->AddObj(Comment("first"), 1, "key"); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { comments->AddObj(Comment("first"), 0, "key"); }).Number, 9);
    EXPECT_EQ(comments->Count(), 0);
}

TEST(CommentList, AddObjUnderAKeyThatIsPresentRaises) {
    const Ref<cComments> comments = New<cComments>();
    comments->AddObj(Comment("first"), 0);
    comments->AddObj(Comment("second"), 1, "K");
    EXPECT_EQ(FailureOf([&] { comments->AddObj(Comment("third"), 1, "k"); }).Number, 457);
    EXPECT_THAT(TextsOf(*comments), ElementsAre("second", "first"));
}

// ---- adding to an image ---------------------------------------------------------------------------

TEST(AddComment, SetsTheCommentAndTakesTheImagesIdentifier) {
    const Ref<cImage> image = New<cImage>();
    image->ID = 9;
    image->addComment("Caries", "Dr. May", Day(4), true);
    const Ref<cStringItem> comment = image->Comments()->Item(Long{1});
    EXPECT_EQ(comment->str, "Caries");
    EXPECT_EQ(comment->Signature, "Dr. May");
    EXPECT_EQ(comment->ID, 9);
    EXPECT_EQ(comment->DateStamp, Day(4));
    EXPECT_TRUE(comment->bSaved);
}

TEST(AddComment, OnAnImageWithoutARowHasIdentifierZero) {
    const Ref<cImage> image = New<cImage>();
    image->addComment("new", "a", Day(1), false);
    EXPECT_EQ(image->Comments()->Item(Long{1})->ID, 0);
    EXPECT_FALSE(image->Comments()->Item(Long{1})->bSaved);
}

TEST(AddComment, PutsEachNewCommentInFront) {
    const Ref<cImage> image = New<cImage>();
    for (const char* text : {"1", "2", "3"}) image->addComment(text, "a", Day(1), false);
    EXPECT_THAT(TextsOf(*image->Comments()), ElementsAre("3", "2", "1"));
}

TEST(AddComment, ActionAndPointerChangeNothing) {
    const Ref<cImage> plain = New<cImage>(), other = New<cImage>();
    plain->addComment("text", "a", Day(1), false);
    other->addComment("text", "a", Day(1), false, "DELETE", 4711);
    const Ref<cStringItem> a = plain->Comments()->Item(Long{1}), b = other->Comments()->Item(Long{1});
    EXPECT_EQ(a->str, b->str);
    EXPECT_EQ(a->Signature, b->Signature);
    EXPECT_EQ(a->ID, b->ID);
    EXPECT_EQ(a->DateStamp, b->DateStamp);
    EXPECT_EQ(a->bSaved, b->bSaved);
    EXPECT_EQ(other->Comments()->Count(), 1);
}

TEST(AddComment, CreatesAListIfItWasSetToNull) {
    const Ref<cImage> image = New<cImage>();
    image->SetComments(nullptr);
    image->addComment("text", "a", Day(1), false);
    EXPECT_EQ(image->Comments()->Count(), 1);
}

// ---- loading --------------------------------------------------------------------------------------

class GetComments : public WithDatabase {
protected:
    GetComments() { image->ID = 7; }

    void Store(const String& date, const String& text, Long object = 7, Long kind = 1,
               const String& signature = "'Dr. May'") {
        Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, commentString) VALUES (" + date + ", " +
            signature + ", " + CStr(kind) + ", " + CStr(object) + ", " + text + ")");
    }

    std::vector<String> Texts() { return TextsOf(*image->Comments()); }

    Ref<cImage> image = New<cImage>();
};

constexpr const char* SelectOfImage7 =
    "SELECT Comments_T.* From Comments_T "
    "Where (((Comments_T.tabelID)=1) AND ((Comments_T.objectID)=7))ORDER BY Comments_T.dates ASC;";

TEST_F(GetComments, SendsItsStatement) {
    image->GetComments(con);
    EXPECT_THAT(Sent(), ElementsAre(SelectOfImage7));
}

TEST_F(GetComments, OfTwoBadColumnsTheFirstInTheDocumentedOrderRaises) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Run("INSERT INTO Comments_T (tabelID, objectID, commentString, signature, dates) VALUES (1, 7, NULL, NULL, 'x')");
    const Error failure = FailureOf([&] { image->GetComments(con); });
    EXPECT_EQ(failure.Number, 94);
    EXPECT_EQ(failure.Column, "commentString");
}

TEST_F(GetComments, TwoEqualCommentsAreBothLoaded) {
    for (int i = 0; i < 2; ++i)
        Run("INSERT INTO Comments_T (tabelID, objectID, commentString, signature, dates) VALUES (1, 7, 'caries', 'Ek', "
            "'2024-03-05 14:07:09')");
    image->GetComments(con);
    ASSERT_EQ(image->Comments()->Count(), 2);
    EXPECT_EQ(image->Comments()->Item(Long{1})->str, "caries");
    EXPECT_EQ(image->Comments()->Item(Long{2})->str, "caries");
}

TEST_F(GetComments, WithoutRowsLeavesAnEmptyListAndReadsAgain) {
    image->GetComments(con);
    EXPECT_EQ(image->Comments()->Count(), 0);
    Store("'2024-03-01 08:00:00'", "'late'");
    image->GetComments(con);
    EXPECT_THAT(Texts(), ElementsAre("late"));
    EXPECT_THAT(Sent(), ElementsAre(SelectOfImage7, SelectOfImage7));
}

TEST_F(GetComments, ReadsAllFieldsAndMarksThemSaved) {
    Store("'2024-03-05 14:07:09'", "'Caries'");
    image->GetComments(con);
    ASSERT_EQ(image->Comments()->Count(), 1);
    const Ref<cStringItem> comment = image->Comments()->Item(Long{1});
    EXPECT_EQ(comment->str, "Caries");
    EXPECT_EQ(comment->Signature, "Dr. May");
    EXPECT_EQ(comment->ID, 7);
    EXPECT_EQ(comment->DateStamp, DateFrom({2024, 3, 5, 14, 7, 9}));
    EXPECT_TRUE(comment->bSaved);
}

TEST_F(GetComments, TwiceReturnsEachCommentOnceAndReadsOnce) {
    Store("'2024-03-01 08:00:00'", "'a'");
    image->GetComments(con);
    image->GetComments(con);
    EXPECT_THAT(Texts(), ElementsAre("a"));
    EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(GetComments, ReturnsTheNewestFirst) {
    Store("'2024-03-02 00:00:00'", "'two'");
    Store("'2024-03-01 00:00:00'", "'one'");
    Store("'2024-03-03 00:00:00'", "'three'");
    image->GetComments(con);
    EXPECT_EQ(image->Comments()->Item(Long{1})->str, "three");
    EXPECT_EQ(image->Comments()->Item(Long{2})->str, "two");
    EXPECT_EQ(image->Comments()->Item(Long{3})->str, "one");
}

TEST_F(GetComments, OfTwoRowsOfOneDateReturnsTheLaterFirst) {
    Store("'2024-03-01 00:00:00'", "'earlier row'");
    Store("'2024-03-01 00:00:00'", "'later row'");
    image->GetComments(con);
    EXPECT_THAT(Texts(), ElementsAre("later row", "earlier row"));
}

TEST_F(GetComments, DoesNotChangeOtherImagesAndOtherKindsOfOwners) {
    Store("'2024-03-01 00:00:00'", "'of another image'", 8);
    Store("'2024-03-01 00:00:00'", "'of another kind'", 7, 2);
    Store("'2024-03-01 00:00:00'", "'own'");
    image->GetComments(con);
    EXPECT_THAT(Texts(), ElementsAre("own"));
}

TEST_F(GetComments, OfAnImageWithoutARowReadsTheRowsOfObjectZero) {
    Store("'2024-03-01 00:00:00'", "'stray'", 0);
    image->ID = 0;
    image->GetComments(con);
    EXPECT_THAT(Texts(), ElementsAre("stray"));
    EXPECT_THAT(Sent(), ElementsAre("SELECT Comments_T.* From Comments_T "
                                    "Where (((Comments_T.tabelID)=1) AND ((Comments_T.objectID)=0))"
                                    "ORDER BY Comments_T.dates ASC;"));
}

TEST_F(GetComments, AfterACommentWasAddedReadsNothing) {
    Store("'2024-03-01 00:00:00'", "'stored'");
    image->addComment("new", "a", Day(1), false);
    image->GetComments(con);
    EXPECT_THAT(Texts(), ElementsAre("new"));
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(GetComments, ANullRaisesAndKeepsTheCommentsReadBefore) {
    struct Row {
        const char *date, *text, *signature;
    };
    // Behind a good row, in the order of the dates; without a date a row comes first.
    for (const auto& [date, text, signature] :
         {Row{"'2024-03-02 00:00:00'", "NULL", "'s'"}, Row{"'2024-03-02 00:00:00'", "'t'", "NULL"}}) {
        Run("DELETE FROM Comments_T");
        log.statements.clear();
        image = New<cImage>();
        image->ID = 7;
        Store("'2024-03-01 00:00:00'", "'good'");
        Store(date, text, 7, 1, signature);
        EXPECT_EQ(FailureOf([&] { image->GetComments(con); }).Number, 94) << text << signature;
        EXPECT_THAT(Texts(), ElementsAre("good"));
        image->GetComments(con);
        EXPECT_EQ(Sent().size(), 1U) << "a comment in the list keeps the next call from reading";
    }
}

TEST_F(GetComments, ANullDateRaises) {
    Store("NULL", "'t'");
    EXPECT_EQ(FailureOf([&] { image->GetComments(con); }).Number, 94);
    EXPECT_EQ(image->Comments()->Count(), 0);
}

TEST_F(GetComments, AFailureOfTheDatabasePassesUnchanged) {
    Run("DROP TABLE Comments_T");
    const Error plain = FailureOf([&] { con->Execute(SelectOfImage7); });
    const Error failure = FailureOf([&] { image->GetComments(con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, plain.Source);
    EXPECT_EQ(failure.Description, plain.Description);
}

}  // namespace
}  // namespace OXClass
