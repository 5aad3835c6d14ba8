#include "series/StudyAndSeriesRows.h"

/// What is particular to a study and its row.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;

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

TEST(StudyRecord, StartsWithZerosAndEmptyTexts) {
    EXPECT_THAT(StudyRow::ValuesOf(cStudy()),
                ElementsAre("Key ", "location 0", "PatientID 0", "referDrName ", "PhysOfRecord ", "accessionNumber ",
                            "instanceUID ", "description ", "dateTime 1899-12-30 00:00:00", "studyID ", "ID 0"));
}

TEST(StudyRecord, PropertiesHoldTheirOwnValues) {
    cStudy study;
    SetEachProperty(study);
    EXPECT_THAT(StudyRow::ValuesOf(study),
                ElementsAre("Key text 1", "location 2", "PatientID 3", "referDrName text 4", "PhysOfRecord text 5",
                            "accessionNumber text 6", "instanceUID text 7", "description text 8",
                            "dateTime 1900-01-08 00:00:00", "studyID text 10", "ID 11"));
}

class StudyTable : public RowTest<StudyRow> {
protected:
    const Ref<cStudy>& study = record;
};

// ---- loading ------------------------------------------------------------------------------------------

TEST_F(StudyTable, LoadFillsEachPropertyFromItsColumn) {
    StoreDistinct();
    FillOtherwise();
    EXPECT_TRUE(study->loadStudy("5", con));
    EXPECT_THAT(Values(), ElementsAre("Key key", "location 2", "PatientID 11", "referDrName refer", "PhysOfRecord phys",
                                      "accessionNumber acc", "instanceUID 1.2.5", "description descr",
                                      "dateTime 2024-03-05 14:07:09", "studyID sid", "ID 5"));
}

TEST_F(StudyTable, ANullInARequiredColumnRaisesAndKeepsWhatWasRead) {
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
        std::vector<String> expected = Values();
        for (std::size_t i = 0; i < read; ++i) expected[order[i].first] = order[i].second;
        Set(column, "NULL");
        const Error failure = FailureOf([&] { study->loadStudy("5", con); });
        EXPECT_EQ(failure.Number, 94) << column;
        EXPECT_EQ(failure.Source, "cStudy.loadStudy, Runtime") << column;
        EXPECT_EQ(Values(), expected) << column;
        Set(column, stored);
    }
}

TEST_F(StudyTable, AValueThatIsNotADateRaisesAfterTheAccessionNumberWasRead) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
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

TEST_F(StudyTable, ANullOrEmptyStudyIdentifierKeepsTheValueOfTheProperty) {
    StoreDistinct();
    for (const char* value : {"NULL", "''"}) {
        Set("studyID", value);
        study->studyID = "old";
        EXPECT_TRUE(study->loadStudy("5", con));
        EXPECT_EQ(study->studyID, "old") << value;
    }
}

// ---- saving -------------------------------------------------------------------------------------------

TEST_F(StudyTable, AStudyWithoutUidIsStoredUnderTheWordForEmpty) {
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(OfRow("StudyInstanceUID"), Variant("TOM"));
    EXPECT_EQ(study->instanceUID, "");
    EXPECT_TRUE(New<cStudy>()->savestudy(false, con));
    EXPECT_EQ(Count(), 2) << "the look goes by the empty identifier, which no row has";
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM study_T WHERE StudyInstanceUID = '';",
                                    "SELECT * FROM study_T WHERE StudyInstanceUID = '';"));
}

TEST_F(StudyTable, ANewStudyIsLoadedAsItWasSavedButForItsUid) {
    EXPECT_TRUE(study->savestudy(true, con));
    cStudy loaded;
    EXPECT_TRUE(loaded.loadStudy("1", con));
    EXPECT_EQ(loaded.instanceUID, "TOM");
    loaded.instanceUID.clear();
    EXPECT_EQ(StudyRow::ValuesOf(loaded), Values());
}

TEST_F(StudyTable, AStudyWithoutUidUpdatesARowThatHasAnEmptyOne) {
    StoreDistinct();
    Set("StudyInstanceUID", "''");
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(study->ID, 5);
    EXPECT_EQ(OfRow("StudyInstanceUID", 5), Variant("TOM"));
}

TEST_F(StudyTable, PatientZeroIsNeverWritten) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
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

// ---- tables that lack something -------------------------------------------------------------------------

TEST_F(StudyTable, AMissingColumnIsSkipped) {
    for (const char* column :
         {"accessionNumber", "StudyDateTime", "Studydesc", "PhysOfRecord", "referDrName", "studyID"}) {
        Run("ALTER TABLE Study_T RENAME COLUMN " + String(column) + " TO Other");
        Run("DELETE FROM Study_T");
        FillOtherwise();
        EXPECT_TRUE(study->savestudy(false, con)) << column;
        EXPECT_EQ(Count(), 1);
        EXPECT_TRUE(OfRow("Other", study->ID).Is<Null>()) << column;
        EXPECT_EQ(OfRow("PatientID", study->ID), Variant(Long{91})) << "what follows it is written: " << column;
        Run("ALTER TABLE Study_T RENAME COLUMN Other TO " + String(column));
    }
}

TEST_F(StudyTable, AMissingUidOrPatientIsSkippedToo) {
    FillOtherwise();
    DropIndex("Study_by_InstanceUID", "Study_T");
    DropIndex("Study_by_Patient", "Study_T");
    Run("ALTER TABLE Study_T DROP COLUMN StudyInstanceUID");
    Run("ALTER TABLE Study_T DROP COLUMN PatientID");
    EXPECT_TRUE(study->savestudy(true, con));
    EXPECT_EQ(OfRow("accessionNumber || '|' || referDrName || '|' || studyID"), Variant("old acc|old refer|old sid"));
    const Error failure = FailureOf([&] { study->savestudy(false, con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E10)) << "the look itself needs the column";
    EXPECT_EQ(failure.Source, "cStudy.SaveStudy, " + EngineName());
}

TEST_F(StudyTable, AMissingKeyColumnLeavesTheKeyAndShowsATextBox) {
    const TextBoxes boxes;
    Run("ALTER TABLE Study_T RENAME COLUMN Study_ID TO RowKey");
    study->instanceUID = "1.2";
    EXPECT_TRUE(study->savestudy(false, con));
    EXPECT_EQ(study->ID, 0);
    EXPECT_THAT(boxes.shown, ElementsAre("fel"));
    EXPECT_EQ(Count(), 1);
}

}  // namespace
}  // namespace OXClass
