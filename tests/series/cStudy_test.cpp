#include "series/cStudy.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// A study's row: loading, saving, deleting.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Long StatementError = static_cast<Long>(0x80040E14);

TEST(StudyRecord, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(cStudy()),
        ElementsAre("get Key -> string", "put Key(string&)", "put location(gdcmObjectLocation)",
                    "get location -> gdcmObjectLocation", "loadStudy(Study: string, Con: Connection&) -> boolean",
                    "savestudy(CheckExistOnID: boolean&, Con: Connection&) -> boolean", "put PatientID(int32)",
                    "get PatientID -> int32", "put referDrName(string)", "get referDrName -> string",
                    "put PhysOfRecord(string)", "get PhysOfRecord -> string", "put accessionNumber(string)",
                    "get accessionNumber -> string", "put instanceUID(string)", "get instanceUID -> string",
                    "put description(string)", "get description -> string", "put dateTime(date)",
                    "get dateTime -> date", "put studyID(string)", "get studyID -> string", "put ID(int32)",
                    "get ID -> int32", "Delete(Con: Connection&)"));
}

/// All properties with their values, one text each.
std::vector<String> ValuesOf(const Ref<cStudy>& study) {
    return {"Key " + study->Key,
            "location " + CStr(Long{study->location}),
            "PatientID " + CStr(study->PatientID),
            "referDrName " + study->referDrName,
            "PhysOfRecord " + study->PhysOfRecord,
            "accessionNumber " + study->accessionNumber,
            "instanceUID " + study->instanceUID,
            "description " + study->description,
            "dateTime " + FormatDate(study->dateTime, "yyyy-mm-dd hh:nn:ss"),
            "studyID " + study->studyID,
            "ID " + CStr(study->ID)};
}

TEST(StudyRecord, StartsWithZerosAndEmptyTexts) {
    EXPECT_THAT(ValuesOf(New<cStudy>()),
                ElementsAre("Key ", "location 0", "PatientID 0", "referDrName ", "PhysOfRecord ", "accessionNumber ",
                            "instanceUID ", "description ", "dateTime 1899-12-30 00:00:00", "studyID ", "ID 0"));
}

TEST(StudyRecord, PropertiesHoldTheirOwnValues) {
    const Ref<cStudy> study = New<cStudy>();
    Long n = 0;
    for (const Member& member : study->Describe().Members()) {
        if (member.Kind != MemberKind::Put) continue;
        const MemberType::Kind type = member.Arguments.back().Type.Is;
        Variant value = type == MemberType::Kind::Text ? Variant("text " + CStr(++n)) : Variant(++n);
        member.Call(*study, {&value, 1});
    }
    EXPECT_THAT(ValuesOf(study),
                ElementsAre("Key text 1", "location 2", "PatientID 3", "referDrName text 4", "PhysOfRecord text 5",
                            "accessionNumber text 6", "instanceUID text 7", "description text 8",
                            "dateTime 1900-01-08 00:00:00", "studyID text 10", "ID 11"));
}

class StudyTable : public WithDatabase {
protected:
    /// A row of distinct values under key 5.
    void StoreDistinct() {
        Run("INSERT INTO Study_T (Study_ID, StudyInstanceUID, PatientID, accessionNumber, StudyDateTime, "
            "Studydesc, "
            "referDrName, studyID, PhysOfRecord) VALUES (5, '1.2.5', 11, 'acc', '2024-03-05 14:07:09', "
            "'descr', 'refer', "
            "'sid', 'phys')");
    }
    void Set(const String& column, const String& value) { Run("UPDATE Study_T SET " + column + " = " + value); }
    Variant OfRow(const String& column, Long id = 1) {
        return Ask("SELECT " + column + " FROM Study_T WHERE Study_ID = " + CStr(id));
    }
    Long Count() { return CLng(Ask("SELECT COUNT(*) FROM Study_T")); }

    /// Gives the object other values than those of the row.
    void FillOtherwise() {
        study->Key = "key";
        study->location = gdcmObjectLocServer;
        study->PatientID = 91;
        study->referDrName = "old refer";
        study->PhysOfRecord = "old phys";
        study->accessionNumber = "old acc";
        study->instanceUID = "9.9";
        study->description = "old descr";
        study->dateTime = DateFrom({2001, 1, 1, 0, 0, 0});
        study->studyID = "old sid";
        study->ID = 92;
    }

    Ref<cStudy> study = New<cStudy>();
};

// ---- loading ------------------------------------------------------------------------------------------

TEST_F(StudyTable, LoadsByKeyOrByUid) {
    StoreDistinct();
    EXPECT_TRUE(study->loadStudy("5", con));
    EXPECT_TRUE(study->loadStudy("1.2.5", con));
    EXPECT_FALSE(study->loadStudy("-5", con));
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM Study_T   WHERE study_id =5;",
                                    "SELECT * FROM Study_T   WHERE StudyInstanceUID ='1.2.5';",
                                    "SELECT * FROM Study_T   WHERE study_id =-5;"));
}

TEST_F(StudyTable, LoadFillsEachPropertyFromItsColumn) {
    StoreDistinct();
    FillOtherwise();
    EXPECT_TRUE(study->loadStudy("5", con));
    EXPECT_THAT(ValuesOf(study),
                ElementsAre("Key key", "location 2", "PatientID 11", "referDrName refer", "PhysOfRecord phys",
                            "accessionNumber acc", "instanceUID 1.2.5", "description descr",
                            "dateTime 2024-03-05 14:07:09", "studyID sid", "ID 5"));
}

TEST_F(StudyTable, LoadOfAMissingRowReturnsFalseAndChangesNothing) {
    StoreDistinct();
    FillOtherwise();
    const std::vector<String> before = ValuesOf(study);
    EXPECT_FALSE(study->loadStudy("6", con));
    EXPECT_FALSE(study->loadStudy("1.2", con));
    EXPECT_EQ(ValuesOf(study), before);
}

TEST_F(StudyTable, ANullInAColumnThatMustHaveAValueRaisesAndKeepsTheMembersReadBefore) {
    StoreDistinct();
    struct Row {
        const char* column;
        const char* stored;
        std::size_t read;  // how many of the properties below were read before
    };
    // The reading goes: accession number, date, description, key, UID, patient, referring doctor.
    const std::vector<std::pair<std::size_t, String>> order{
        {5, "accessionNumber acc"}, {8, "dateTime 2024-03-05 14:07:09"},
        {7, "description descr"},   {10, "ID 5"},
        {6, "instanceUID 1.2.5"},   {2, "PatientID 11"}};
    for (const auto& [column, stored, read] :
         {Row{"accessionNumber", "'acc'", 0}, Row{"Studydesc", "'descr'", 2}, Row{"StudyInstanceUID", "'1.2.5'", 4},
          Row{"PatientID", "11", 5}, Row{"referDrName", "'refer'", 6}}) {
        FillOtherwise();
        std::vector<String> expected = ValuesOf(study);
        for (std::size_t i = 0; i < read; ++i) expected[order[i].first] = order[i].second;
        Set(column, "NULL");
        const Error failure = FailureOf([&] { study->loadStudy("5", con); });
        EXPECT_EQ(failure.Number, 94) << column;
        EXPECT_EQ(failure.Source, "cStudy.loadStudy, Runtime") << column;
        EXPECT_EQ(ValuesOf(study), expected) << column;
        Set(column, stored);
    }
}

TEST_F(StudyTable, AnInvalidDateRaisesAfterTheAccessionNumberIsRead) {
    StoreDistinct();
    for (const char* date : {"NULL", "'some day'"}) {
        FillOtherwise();
        Set("StudyDateTime", date);
        const Error failure = FailureOf([&] { study->loadStudy("5", con); });
        EXPECT_EQ(failure.Number, 13) << date;
        EXPECT_EQ(failure.Source, "cStudy.loadStudy, Runtime");
        EXPECT_EQ(study->accessionNumber, "acc");
        EXPECT_EQ(study->description, "old descr");
    }
}

TEST_F(StudyTable, ANullPhysicianReadsAsEmpty) {
    StoreDistinct();
    Set("PhysOfRecord", "NULL");
    study->PhysOfRecord = "old";
    EXPECT_TRUE(study->loadStudy("5", con));
    EXPECT_EQ(study->PhysOfRecord, "");
}

TEST_F(StudyTable, ANullOrEmptyStudyIdentifierKeepsThePropertys) {
    StoreDistinct();
    for (const char* value : {"NULL", "''"}) {
        Set("studyID", value);
        study->studyID = "old";
        EXPECT_TRUE(study->loadStudy("5", con));
        EXPECT_EQ(study->studyID, "old") << value;
    }
}

TEST_F(StudyTable, TextsThatAreNeitherKeyNorUidFailBeforeAnyStatement) {
    StoreDistinct();
    FillOtherwise();
    const std::vector<String> before = ValuesOf(study);
    for (const char* text : {"5 OR 1=1", "study_id", "abc", "", " ", "5; DELETE FROM Study_T", "'5'", "5-1", "0x5",
                             "1.2' OR '1'='1", "1.2'", "'.'", "1.2'; DELETE FROM Study_T; --"}) {
        const Error failure = FailureOf([&] { study->loadStudy(text, con); });
        EXPECT_EQ(failure.Number, StatementError) << text;
        EXPECT_EQ(failure.Source, "cStudy.loadStudy, ADODB.Connection") << text;
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(ValuesOf(study), before);
    EXPECT_EQ(Count(), 1);
}

TEST_F(StudyTable, AFailureOfTheDatabaseGetsTheOperationInFrontOfItsSource) {
    Run("DROP TABLE Study_T");
    const Error plain = FailureOf([&] { con->Execute("SELECT * FROM Study_T   WHERE study_id =5;"); });
    const Error load = FailureOf([&] { study->loadStudy("5", con); });
    const Error save = FailureOf([&] { study->savestudy(true, con); });
    const Error remove = FailureOf([&] { study->Delete(con); });
    for (const Error& failure : {load, save, remove}) {
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    }
    EXPECT_EQ(load.Description, plain.Description);
    EXPECT_EQ(load.Source, "cStudy.loadStudy, " + plain.Source);
    EXPECT_EQ(save.Source, "cStudy.SaveStudy, " + plain.Source);
    EXPECT_EQ(remove.Source, plain.Source) << "an operation without a handler puts no name in front";
}

// ---- saving -------------------------------------------------------------------------------------------

TEST_F(StudyTable, SaveSearchesByKeyOrByUid) {
    study->ID = 5;
    study->instanceUID = "1.2.5";
    study->savestudy(true, con);
    study->savestudy(false, con);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM study_T WHERE study_id =5;",
                                    "SELECT * FROM study_T WHERE StudyInstanceUID = '1.2.5';"));
}

TEST_F(StudyTable, SaveStoresEachPropertyAndTakesTheNewKey) {
    FillOtherwise();
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(study->ID, 1);
    EXPECT_EQ(OfRow("StudyInstanceUID || '|' || PatientID || '|' || accessionNumber || '|' || StudyDateTime "
                    "|| '|' || "
                    "Studydesc || '|' || referDrName || '|' || studyID || '|' || PhysOfRecord"),
              Variant("9.9|91|old acc|2001-01-01 00:00:00|old descr|old refer|old sid|old phys"));
    const Ref<cStudy> read = New<cStudy>();
    EXPECT_TRUE(read->loadStudy("1", con));
    read->Key = study->Key;
    read->location = study->location;
    EXPECT_EQ(ValuesOf(read), ValuesOf(study));
}

TEST_F(StudyTable, SaveByUidMergesIntoTheKnownRow) {
    StoreDistinct();
    FillOtherwise();
    study->instanceUID = "1.2.5";
    study->ID = 0;
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(study->ID, 5);
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(OfRow("Studydesc", 5), Variant("old descr"));
}

TEST_F(StudyTable, SaveByKeyUpdatesTheKeysRowWithAnyUid) {
    StoreDistinct();
    study->loadStudy("5", con);
    study->instanceUID = "7.7";
    EXPECT_TRUE(study->savestudy(true, con));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(OfRow("StudyInstanceUID", 5), Variant("7.7"));
}

TEST_F(StudyTable, SaveByADeletedKeyInserts) {
    FillOtherwise();
    EXPECT_TRUE(study->savestudy(true, con));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(study->ID, 1);
}

TEST_F(StudyTable, AStudyWithoutUidIsStoredUnderTheWordForEmpty) {
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(OfRow("StudyInstanceUID"), Variant("TOM"));
    EXPECT_EQ(study->instanceUID, "");
    EXPECT_TRUE(New<cStudy>()->savestudy(false, con));
    EXPECT_EQ(Count(), 2) << "the look goes by the empty identifier, which no row has";
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM study_T WHERE StudyInstanceUID = '';",
                                    "SELECT * FROM study_T WHERE StudyInstanceUID = '';"));
}

TEST_F(StudyTable, AStudyWithoutUidTakesARowThatHasAnEmptyOne) {
    StoreDistinct();
    Set("StudyInstanceUID", "''");
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(study->ID, 5);
    EXPECT_EQ(OfRow("StudyInstanceUID", 5), Variant("TOM"));
}

TEST_F(StudyTable, PatientZeroIsNeverWritten) {
    Run("DROP TABLE Study_T");
    Run("CREATE TABLE Study_T (Study_ID INTEGER PRIMARY KEY AUTOINCREMENT, StudyInstanceUID TEXT, "
        "PatientID INTEGER DEFAULT 77, accessionNumber TEXT, StudyDateTime DATETIME, Studydesc TEXT, referDrName TEXT, "
        "studyID TEXT, PhysOfRecord TEXT)");
    study->instanceUID = "1.2.1";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(OfRow("PatientID"), Variant(Long{77})) << "the column's default";
    StoreDistinct();
    study->instanceUID = "1.2.5";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(OfRow("PatientID", 5), Variant(Long{11}));
}

TEST_F(StudyTable, QuotesAreStoredDoubledAndTextsCut) {
    study->instanceUID = "1.2";
    study->description = String(40, '\'');
    study->studyID = "It's 20 characters..";
    study->PhysOfRecord = "  " + String(254, '\'') + "xyz ";
    study->accessionNumber = study->referDrName = "O'Hara";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(OfRow("Studydesc"), Variant(String(64, '\'')));
    EXPECT_EQ(OfRow("studyID"), Variant("It''s 20 charact"));
    EXPECT_EQ(OfRow("PhysOfRecord"), Variant(String(508, '\'') + "x")) << "trimmed, cut to 255, then doubled";
    EXPECT_EQ(OfRow("accessionNumber"), Variant("O'Hara"));
    EXPECT_EQ(OfRow("referDrName"), Variant("O'Hara"));
}

TEST_F(StudyTable, AStudyIdentifierOf20CharactersIsStoredAs16) {
    study->studyID = "12345678901234567890";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(OfRow("studyID"), Variant("1234567890123456"));
    EXPECT_EQ(study->studyID, "12345678901234567890");
}

TEST_F(StudyTable, TextsInAnyScriptAreReadUnchanged) {
    for (const String text : {"Παπαδόπουλος", "Щукина", "山田太郎", "🦷😬"}) {
        study = New<cStudy>();
        study->description = study->PhysOfRecord = study->referDrName = study->accessionNumber = text;
        study->studyID = text.substr(0, 8);
        EXPECT_TRUE(study->savestudy(true, con));
        const Ref<cStudy> read = New<cStudy>();
        EXPECT_TRUE(read->loadStudy(CStr(study->ID), con));
        read->instanceUID.clear();
        EXPECT_EQ(ValuesOf(read), ValuesOf(study));
    }
}

TEST_F(StudyTable, AQuoteInTheUidFailsBeforeAnythingIsSent) {
    StoreDistinct();
    study->instanceUID = "1.2.5' OR '1'='1";
    study->description = "new";
    const Error failure = FailureOf([&] { study->savestudy(false, con); });
    EXPECT_EQ(failure.Number, StatementError);
    EXPECT_EQ(failure.Source, "cStudy.SaveStudy, ADODB.Connection");
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(OfRow("Studydesc", 5), Variant("descr"));
    EXPECT_EQ(study->ID, 0);
}

TEST_F(StudyTable, ADecimalCommaChangesNothing) {
    const InLocale comma(DecimalComma);
    StoreDistinct();
    EXPECT_TRUE(study->loadStudy("5", con));
    EXPECT_EQ(study->dateTime, DateFrom({2024, 3, 5, 14, 7, 9}));
    study->dateTime = DateFrom({2024, 4, 3, 1, 2, 3});
    EXPECT_TRUE(study->savestudy(true, con));
    EXPECT_EQ(OfRow("StudyDateTime", 5), Variant(DateFrom({2024, 4, 3, 1, 2, 3})));
    EXPECT_EQ(Ask("SELECT CAST(StudyDateTime AS TEXT) FROM Study_T"), Variant("2024-04-03 01:02:03"));
}

// ---- tables that lack something -------------------------------------------------------------------------

TEST_F(StudyTable, AMissingColumnIsPassedOver) {
    for (const char* column :
         {"accessionNumber", "StudyDateTime", "Studydesc", "PhysOfRecord", "referDrName", "studyID"}) {
        Run("ALTER TABLE Study_T RENAME COLUMN " + String(column) + " TO Other");
        Run("DELETE FROM Study_T");
        FillOtherwise();
        EXPECT_TRUE(study->savestudy(false, con)) << column;
        EXPECT_EQ(Count(), 1);
        EXPECT_TRUE(OfRow("Other", study->ID).Is<Null>()) << column;
        EXPECT_EQ(OfRow("PatientID", study->ID), Variant(Long{91})) << "what stands behind it is written: " << column;
        Run("ALTER TABLE Study_T RENAME COLUMN Other TO " + String(column));
    }
}

TEST_F(StudyTable, AMissingUidOrPatientIsPassedOverToo) {
    FillOtherwise();
    Run("DROP INDEX Study_by_InstanceUID");
    Run("DROP INDEX Study_by_Patient");
    Run("ALTER TABLE Study_T DROP COLUMN StudyInstanceUID");
    Run("ALTER TABLE Study_T DROP COLUMN PatientID");
    EXPECT_TRUE(study->savestudy(true, con));
    EXPECT_EQ(OfRow("accessionNumber || '|' || referDrName || '|' || studyID"), Variant("old acc|old refer|old sid"));
    const Error failure = FailureOf([&] { study->savestudy(false, con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E10)) << "the look itself needs the column";
    EXPECT_EQ(failure.Source, "cStudy.SaveStudy, SQLite");
}

TEST_F(StudyTable, AMissingKeyColumnLeavesTheKeyUnchangedAndShowsATextBox) {
    const TextBoxes boxes;
    Run("ALTER TABLE Study_T RENAME COLUMN Study_ID TO RowKey");
    study->instanceUID = "1.2";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(study->ID, 0);
    EXPECT_THAT(boxes.shown, ElementsAre("fel"));
    EXPECT_EQ(Count(), 1);
}

TEST_F(StudyTable, AKeyOfZeroIsReportedInATextBox) {
    const TextBoxes boxes;
    StoreDistinct();
    Set("Study_ID", "0");
    study->instanceUID = "1.2.5";
    study->description = "new";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_THAT(boxes.shown, ElementsAre("fel"));
    EXPECT_EQ(OfRow("Studydesc", 0), Variant("new"));
}

TEST_F(StudyTable, NoTextBoxIsShownOtherwise) {
    const TextBoxes boxes;
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_FALSE(study->loadStudy("77", con));
    EXPECT_THAT(boxes.shown, IsEmpty());
}

// ---- deleting -------------------------------------------------------------------------------------------

TEST_F(StudyTable, DeleteRemovesOnlyTheRow) {
    StoreDistinct();
    Run("INSERT INTO Study_T (Study_ID, StudyInstanceUID) VALUES (6, '1.2.6')");
    Run("INSERT INTO Series_T (Series_ID, Study_ID) VALUES (1, 5)");
    Run("INSERT INTO ImageBild_T (ImageBildID, Study_ID) VALUES (1, 5)");
    study->ID = 5;
    study->Delete(con);
    EXPECT_THAT(Sent(), ElementsAre("select * from Study_T where Study_T.Study_ID=5"));
    EXPECT_EQ(Ask("SELECT group_concat(Study_ID) FROM Study_T"), Variant("6"));
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Series_T"), Variant(Long{1}));
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM ImageBild_T"), Variant(Long{1}));
    EXPECT_EQ(study->ID, 5);
}

TEST_F(StudyTable, DeleteOfARowThatIsDeletedDoesNothing) {
    StoreDistinct();
    study->ID = 6;
    study->Delete(con);
    EXPECT_EQ(Count(), 1);
}

}  // namespace
}  // namespace OXClass
