#include "series/StudyAndSeriesRows.h"

/// The row of a study and the row of a series: what loading, saving and deleting have in common.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <class Row>
using StudyAndSeriesRows = RowTest<Row>;

struct RowNames {
    template <class Row>
    static String GetName(int) {
        return Row::name;
    }
};

using BothRows = ::testing::Types<StudyRow, SeriesRow>;
TYPED_TEST_SUITE(StudyAndSeriesRows, BothRows, RowNames);

// ---- loading ------------------------------------------------------------------------------------------

TYPED_TEST(StudyAndSeriesRows, LoadsByKeyOrByUid) {
    this->StoreDistinct();
    EXPECT_TRUE(this->Load("5"));
    EXPECT_TRUE(this->Load("1.2.5"));
    EXPECT_FALSE(this->Load("-5"));
    EXPECT_THAT(this->Sent(), ElementsAre(TypeParam::loadByKey, TypeParam::loadByUid, TypeParam::loadByMinusKey));
}

TYPED_TEST(StudyAndSeriesRows, LoadOfAMissingRowReturnsFalseAndChangesNothing) {
    this->StoreDistinct();
    this->FillOtherwise();
    const std::vector<String> before = this->Values();
    EXPECT_FALSE(this->Load("6"));
    EXPECT_FALSE(this->Load("1.2"));
    EXPECT_EQ(this->Values(), before);
}

TYPED_TEST(StudyAndSeriesRows, TextsThatAreNeitherAKeyNorAUidRaiseBeforeAnythingIsSent) {
    this->StoreDistinct();
    this->FillOtherwise();
    const std::vector<String> before = this->Values();
    const String removal = String("; DELETE FROM ") + TypeParam::table;
    for (const String& text : {String("5 OR 1=1"), String("study_id"), String("series_id"), String("abc"), String(),
                               String(" "), "5" + removal, String("'5'"), String("5-1"), String("0x5"),
                               String("1.2' OR '1'='1"), String("1.2'"), String("'.'"), "1.2'" + removal + "; --"}) {
        const Error failure = FailureOf([&] { this->Load(text); });
        EXPECT_EQ(failure.Number, SyntaxError) << text;
        EXPECT_EQ(failure.Source, String(TypeParam::sourceOfLoad) + "ADODB.Connection") << text;
    }
    EXPECT_THAT(this->Sent(), IsEmpty());
    EXPECT_EQ(this->Values(), before);
    EXPECT_EQ(this->Count(), 1);
}

// ---- saving -------------------------------------------------------------------------------------------

TYPED_TEST(StudyAndSeriesRows, SaveSearchesByKeyOrByUid) {
    this->FillOtherwise();
    this->record->ID = 5;
    this->record->instanceUID = "1.2.5";
    this->Save(true);
    this->Save(false);
    EXPECT_THAT(this->Sent(), ElementsAre(TypeParam::saveByKey, TypeParam::saveByUid));
}

TYPED_TEST(StudyAndSeriesRows, SaveStoresEachPropertyAndTakesTheNewKey) {
    this->FillOtherwise();
    EXPECT_TRUE(this->Save(false));
    EXPECT_EQ(this->record->ID, 1);
    EXPECT_EQ(this->ContentOf(1), Variant(TypeParam::filledContent));
}

TYPED_TEST(StudyAndSeriesRows, WhatWasSavedIsLoadedAgain) {
    this->FillOtherwise();
    EXPECT_TRUE(this->Save(false));
    const std::vector<String> saved = this->Values();
    this->record = New<typename TypeParam::Class>();
    TypeParam::FillUnstored(*this->record);
    EXPECT_TRUE(this->Load("1"));
    EXPECT_EQ(this->Values(), saved);
}

TYPED_TEST(StudyAndSeriesRows, SaveByAKnownUidUpdatesItsRowAndTakesItsKey) {
    this->StoreDistinct();
    this->Set(TypeParam::uid, "'9.9'");
    this->FillOtherwise();
    EXPECT_TRUE(this->Save(false));
    EXPECT_EQ(this->record->ID, 5);
    EXPECT_EQ(this->Count(), 1);
    EXPECT_EQ(this->ContentOf(5), Variant(TypeParam::filledContent));
}

TYPED_TEST(StudyAndSeriesRows, SaveByANewUidInserts) {
    this->StoreDistinct();
    this->FillOtherwise();
    EXPECT_TRUE(this->Save(false));
    EXPECT_EQ(this->record->ID, 6);
    EXPECT_EQ(this->Count(), 2);
}

TYPED_TEST(StudyAndSeriesRows, SaveByKeyUpdatesTheRowOfTheKeyWhateverItsUid) {
    this->StoreDistinct();
    this->FillOtherwise();
    this->record->ID = 5;
    EXPECT_TRUE(this->Save(true));
    EXPECT_EQ(this->Count(), 1);
    EXPECT_EQ(this->ContentOf(5), Variant(TypeParam::filledContent));
}

TYPED_TEST(StudyAndSeriesRows, SaveByAMissingKeyInserts) {
    this->FillOtherwise();
    EXPECT_TRUE(this->Save(true));
    EXPECT_EQ(this->Count(), 1);
    EXPECT_EQ(this->record->ID, 1);
}

TYPED_TEST(StudyAndSeriesRows, TextsInAnyScriptComeBackAsTheyWere) {
    for (const String text : {"Παπαδόπουλος", "Щукина", "山田太郎", "🦷😬"}) {
        this->FillOtherwise();
        for (const auto member : TypeParam::texts) (*this->record).*member = text;
        EXPECT_TRUE(this->Save(false));
        const String key = CStr(this->record->ID);
        this->record = New<typename TypeParam::Class>();
        EXPECT_TRUE(this->Load(key));
        for (const auto member : TypeParam::texts) EXPECT_EQ((*this->record).*member, text);
    }
}

TYPED_TEST(StudyAndSeriesRows, AQuoteInTheUidRaisesBeforeAnythingIsSent) {
    this->StoreDistinct();
    this->FillOtherwise();
    this->record->instanceUID = "1.2.5' OR '1'='1";
    const std::vector<String> before = this->Values();
    const Error failure = FailureOf([&] { this->Save(false); });
    EXPECT_EQ(failure.Number, SyntaxError);
    EXPECT_EQ(failure.Source, String(TypeParam::sourceOfSave) + "ADODB.Connection");
    EXPECT_THAT(this->Sent(), IsEmpty());
    EXPECT_EQ(this->ContentOf(5), Variant(TypeParam::distinctContent));
    EXPECT_EQ(this->Values(), before);
}

TYPED_TEST(StudyAndSeriesRows, ADecimalCommaChangesNothing) {
    const InLocale comma(DecimalComma);
    this->StoreDistinct();
    EXPECT_TRUE(this->Load("5"));
    Date& date = (*this->record).*TypeParam::dateTime;
    EXPECT_EQ(date, DateFrom({2024, 3, 5, 14, 7, 9}));
    date = DateFrom({2024, 4, 3, 1, 2, 3});
    EXPECT_TRUE(this->Save(true));
    EXPECT_EQ(this->OfRow(TypeParam::date, 5), Variant(DateFrom({2024, 4, 3, 1, 2, 3})));
    EXPECT_EQ(this->OfRow(String("CAST(") + TypeParam::date + " AS CHAR(19))", 5), Variant("2024-04-03 01:02:03"));
    EXPECT_THAT(this->Sent(), ElementsAre(TypeParam::loadByKey, TypeParam::saveByKey));
}

TYPED_TEST(StudyAndSeriesRows, OnlyAKeyOfZeroShowsATextBox) {
    const TextBoxes boxes;
    this->StoreDistinct();
    this->Set(TypeParam::key, "0");
    this->Set(TypeParam::uid, "'9.9'");
    this->FillOtherwise();
    EXPECT_TRUE(this->Save(false));
    EXPECT_THAT(boxes.shown, ElementsAre(TypeParam::boxOfKeyZero));
    EXPECT_EQ(this->ContentOf(0), Variant(TypeParam::filledContent));
    this->record->instanceUID = "1.2.6";
    EXPECT_TRUE(this->Save(false));
    EXPECT_FALSE(this->Load("77"));
    EXPECT_THAT(boxes.shown, ElementsAre(TypeParam::boxOfKeyZero));
}

// ---- deleting -----------------------------------------------------------------------------------------

TYPED_TEST(StudyAndSeriesRows, DeleteRemovesTheRowAlone) {
    this->StoreDistinct();
    const String key = TypeParam::key;
    this->Run(String("INSERT INTO ") + TypeParam::table + " (" + key + ") VALUES (6)");
    for (const String table : TypeParam::below) this->Run("INSERT INTO " + table + " (" + key + ") VALUES (5)");
    this->record->ID = 5;
    this->record->Delete(this->con);
    EXPECT_THAT(this->Sent(), ElementsAre(TypeParam::remove));
    EXPECT_EQ(this->AskAll("SELECT " + key + " FROM " + TypeParam::table), "6");
    for (const String table : TypeParam::below)
        EXPECT_EQ(this->Ask("SELECT COUNT(*) FROM " + table), Variant(Long{1})) << table;
    EXPECT_EQ(this->record->ID, 5);
}

TYPED_TEST(StudyAndSeriesRows, DeleteOfAMissingRowDoesNothing) {
    this->StoreDistinct();
    this->record->ID = 6;
    this->record->Delete(this->con);
    EXPECT_EQ(this->Count(), 1);
}

// ---- failures -----------------------------------------------------------------------------------------

TYPED_TEST(StudyAndSeriesRows, AFailureOfTheDatabaseHasTheOperationInFrontOfItsSource) {
    this->Run(String("DROP TABLE ") + TypeParam::table);
    this->FillOtherwise();
    const Error plain = FailureOf([&] { this->con->Execute(TypeParam::loadByKey); });
    const Error load = FailureOf([&] { this->Load("5"); });
    const Error save = FailureOf([&] { this->Save(true); });
    const Error removal = FailureOf([&] { this->record->Delete(this->con); });
    for (const Error& failure : {load, save, removal}) EXPECT_EQ(failure.Number, MissingTable);
    EXPECT_EQ(load.Description, plain.Description);
    EXPECT_EQ(load.Source, TypeParam::sourceOfLoad + plain.Source);
    EXPECT_EQ(save.Source, TypeParam::sourceOfSave + plain.Source);
    EXPECT_EQ(removal.Source, plain.Source) << "a delete puts no name in front";
}

}  // namespace
}  // namespace OXClass
