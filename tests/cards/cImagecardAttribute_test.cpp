#include "cards/cImagecardAttribute.h"

#include "kit/Database.h"
#include "platform/runtime/Services.h"

#include <fstream>

/// A placed image with its manipulations: how it is saved and deleted, and how the manipulations are kept.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

class Placed : public WithDatabase {
protected:
    void FillAll() {
        placed->ICID = 7;
        placed->ImageID = 40;
        placed->IAWidth = 10.5;
        placed->IAHeight = 20.25;
        placed->IAPosX = -0.125;
        placed->IAPosY = 1e16;
        placed->IASequence = 3;
        placed->IAComments = "it's";
        placed->IAMirrRotStatus = -5;
    }

    void RunRow(Long key) {
        Run("INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, IAContrast) VALUES (" + CStr(key) +
            ", 7, 55)");
    }

    /// Stores a manipulation of placed image 21; `text` is an SQL literal.
    void RunStep(Long type, const String& text, Long sequence = 1) {
        Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter,"
            " StringParameter) VALUES (21, " +
            CStr(sequence) + ", " + CStr(type) + ", 90, " + text + ")");
    }

    Ref<cImageManipulation> AddStep(ManipulationType type, const String& text = {}, Long number = 0) {
        const Ref<cImageManipulation> step = New<cImageManipulation>();
        step->ManipulationType = type;
        step->StringParameter = text;
        step->LongParameter = number;
        placed->Manipulations->Add(step);
        return step;
    }

    Ref<cImageManipulation> StepAt(Long position) {
        return To<Ref<cImageManipulation>>(placed->Manipulations->Item(position));
    }

    /// Each stored manipulation as "attribute:sequence:type:number:text".
    std::vector<String> StoredSteps() {
        std::vector<String> steps;
        const Ref<Recordset> rs = Connect()->Execute(
            "SELECT ImageAttributeID || ':' || SequenceNo || ':' || Type || ':' || LongParameter || ':' ||"
            " coalesce(StringParameter, 'NULL') FROM ImageManipulation_T ORDER BY ImageManipulationID");
        for (; !rs->Eof(); rs->MoveNext()) steps.push_back(To<String>(rs->Fields(0).Value()));
        return steps;
    }

    std::vector<Long> StoredRows() {
        std::vector<Long> keys;
        const Ref<Recordset> rs = Connect()->Execute("SELECT ImageAttributeID FROM ImageAttribute_T ORDER BY 1");
        for (; !rs->Eof(); rs->MoveNext()) keys.push_back(To<Long>(rs->Fields(0).Value()));
        return keys;
    }

    template <class Call>
    std::vector<String> ModesOf(Call call) {
        ModeLog modes;
        con->Advise(modes);
        call();
        con->Unadvise(modes);
        return modes.seen;
    }

    Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
};

const char* const insertOfPlaced =
    "INSERT INTO ImageAttribute_T (ImageCardId, ImageBildId, IAFullViewWidth, IAFullViewHeight, "
    "IAFullViewPosX, IAFullViewPosY, IAContrast, IABrightness, IAInvert, IARotation, IASharpen, IASoften, "
    "IAZoom, IAGamma, IAHorizontalMirror, IAVerticalMirror, IAHistoEqualize, IAStretchIntensity, "
    "IAHistogram, IASequence, IAComments, IAMirrRotStatus , IAColorized, IAAttCorr) VALUES (7, 40, 10.5, "
    "20.25, -0.125, 1E+16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 'it''s', -5, 0, 0);";
const char* const keyOfPlaced =
    "SELECT MAX(ImageAttributeId) FROM ImageAttribute_T WHERE ((ImageCardId = 7) AND (ImageBildId = 40) AND "
    "(IASequence = 3));";
const char* const updateOfPlaced =
    "UPDATE ImageAttribute_T SET ImageCardID = 7, ImageBildID = 40, IAFullviewWidth = 10.5, IAFullViewHeight "
    "= 20.25, IAFullViewPosX = -0.125, IAFullViewPosY = 1E+16, IASequence = 3, IAMirrRotStatus = -5, "
    "IAComments = 'it''s' WHERE ImageAttributeId = 21;";
const char* const deleteOfRow = "DELETE FROM ImageAttribute_T WHERE ImageattributeID = 21;";
const char* const stepsOfPlaced = "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=21;";
const char* const deleteOfSteps = "DELETE FROM ImageManipulation_T WHERE ImageAttributeID=21;";
const char* const stepsInOrder = "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=21 ORDER BY SequenceNo;";

TEST_F(Placed, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(*placed),
        ElementsAre("put ToBeDeleted(boolean)", "get ToBeDeleted -> boolean", "put IAComments(string)",
                    "get IAComments -> string", "put IASequence(int32)", "get IASequence -> int32",
                    "put IAHeight(double)", "get IAHeight -> double", "put IAWidth(double)", "get IAWidth -> double",
                    "put IAPosY(double)", "get IAPosY -> double", "put IAPosX(double)", "get IAPosX -> double",
                    "put ImageID(int32)", "get ImageID -> int32", "put ICID(int32)", "get ICID -> int32",
                    "put ID(int32)", "get ID -> int32", "Save(conn: Connection&) -> boolean",
                    "putref Manipulations(Collection&)", "get Manipulations -> Collection",
                    "put IAMirrRotStatus(int16)", "get IAMirrRotStatus -> int16",
                    "LoadImageManipulations(conn: Connection&) -> boolean", "SaveManipulations(conn: Connection&)"));
}

TEST_F(Placed, StartsEmpty) {
    EXPECT_FALSE(placed->ToBeDeleted);
    EXPECT_EQ(placed->ID, 0);
    EXPECT_EQ(placed->ICID, 0);
    EXPECT_EQ(placed->ImageID, 0);
    EXPECT_EQ(placed->IASequence, 0);
    EXPECT_EQ(placed->IAWidth, 0);
    EXPECT_EQ(placed->IAMirrRotStatus, 0);
    EXPECT_EQ(placed->IAComments, "");
    ASSERT_TRUE(placed->Manipulations);
    EXPECT_EQ(placed->Manipulations->Count(), 0);
}

// ---- the row --------------------------------------------------------------------------------------

TEST_F(Placed, InsertsWithIdZeroAndReadsItsKeyBeforeTheManipulations) {
    FillAll();
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(insertOfPlaced, keyOfPlaced,
                                    "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=1;"));
    EXPECT_EQ(placed->ID, 1);
}

TEST_F(Placed, InsertsWithANegativeIdToo) {
    FillAll();
    placed->ID = -4;
    EXPECT_TRUE(placed->Save(con));
    EXPECT_EQ(Sent().at(0), insertOfPlaced);
    EXPECT_EQ(placed->ID, 1);
}

TEST_F(Placed, AnInsertWritesZeroIntoTheColumnsWithoutAProperty) {
    placed->Save(con);
    for (const char* column : {"IAContrast", "IABrightness", "IAInvert", "IARotation", "IASharpen", "IASoften",
                               "IAZoom", "IAGamma", "IAHorizontalMirror", "IAVerticalMirror", "IAHistoEqualize",
                               "IAStretchIntensity", "IAHistogram", "IAColorized", "IAAttCorr"})
        EXPECT_EQ(Ask("SELECT " + String(column) + " FROM ImageAttribute_T"), Variant(Long{0})) << column;
}

TEST_F(Placed, UpdatesWithAnIdAboveZero) {
    RunRow(21);
    FillAll();
    placed->ID = 21;
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(updateOfPlaced, stepsOfPlaced));
    EXPECT_EQ(Ask("SELECT IAFullViewPosX FROM ImageAttribute_T"), Variant(-0.125));
    EXPECT_EQ(Ask("SELECT IAContrast FROM ImageAttribute_T"), Variant(Long{55}));
}

TEST_F(Placed, AnUpdateOfAMissingRowSucceeds) {
    placed->ID = 21;
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(StoredRows(), IsEmpty());
    EXPECT_EQ(placed->ID, 21);
}

TEST_F(Placed, TheKeyIsTheHighestOfItsCardImageAndSequence) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Run("INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence)"
        " VALUES (60, 8, 40, 3), (61, 7, 41, 3), (62, 7, 40, 4)");
    Run("CREATE TRIGGER AnotherClient AFTER INSERT ON ImageAttribute_T WHEN new.IAComments='it''s' BEGIN "
        "INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence)"
        " VALUES (90, 8, 40, 3), (91, 7, 41, 3), (92, 7, 40, 4); END");
    FillAll();
    placed->Save(con);
    EXPECT_EQ(placed->ID, 63);
}

TEST_F(Placed, OfTwoClientsThatSaveAtOnceOneTakesTheOthersKey) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Run("CREATE TRIGGER AnotherClient AFTER INSERT ON ImageAttribute_T WHEN new.IAComments='it''s' BEGIN "
        "INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence)"
        " VALUES (99, 7, 40, 3); END");
    FillAll();
    placed->Save(con);
    EXPECT_EQ(placed->ID, 99);
}

TEST_F(Placed, FloatsKeepTheirPointOnAMachineWithDecimalCommas) {
    const InLocale comma(DecimalComma);
    FillAll();
    placed->Save(con);
    placed->ID = 21;
    placed->Save(con);
    EXPECT_EQ(Sent().at(0), insertOfPlaced);
    EXPECT_EQ(Sent().at(3), updateOfPlaced);
}

TEST_F(Placed, TextsOfAnyScriptAndInjectionsAreStoredAsTheyAre) {
    for (const char* text : {"切歯", "🦷", "x', IAComments='y", "'; DROP TABLE ImageCard_T; --"}) {
        const Ref<cImagecardAttribute> fresh = New<cImagecardAttribute>();
        fresh->IAComments = text;
        fresh->Save(con);
        fresh->Save(con);
        EXPECT_EQ(Ask("SELECT IAComments FROM ImageAttribute_T WHERE ImageAttributeID=" + CStr(fresh->ID)),
                  Variant(text));
    }
}

TEST_F(Placed, ASaveExecutesItsStatementsAndOpensTheManipulationsUpdatable) {
    AddStep(ManRotate);
    EXPECT_THAT(ModesOf([&] { placed->Save(con); }), ElementsAre(executed, executed, updatable, executed))
        << "insert, key, manipulations, a manipulation";
    EXPECT_THAT(ModesOf([&] { placed->Save(con); }), ElementsAre(executed, updatable, executed, executed))
        << "update, manipulations, their deletion, a manipulation";
}

TEST_F(Placed, AFailureKeepsItsNumberSourceAndText) {
    Run("DROP TABLE ImageAttribute_T");
    const Error expected = FailureOf([&] { con->Execute("SELECT * FROM ImageAttribute_T"); });
    for (const bool deleted : {false, true})
        for (const Long id : {0, 21}) {
            placed->ToBeDeleted = deleted;
            placed->ID = id;
            const Error failure = FailureOf([&] { placed->Save(con); });
            EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
            EXPECT_EQ(failure.Source, expected.Source);
            EXPECT_EQ(failure.Description, expected.Description);
        }
}

TEST_F(Placed, ManipulationsThatCantBeSavedDoNotFailTheSave) {
    Run("DROP TABLE ImageManipulation_T");
    AddStep(ManRotate);
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(StoredRows(), ElementsAre(1));
}

// ---- deleting -------------------------------------------------------------------------------------

class PlacedToBeDeleted : public Placed {
protected:
    PlacedToBeDeleted() {
        placed->ToBeDeleted = true;
        placed->ID = 21;
        RunRow(21);
        RunRow(22);
    }
};

TEST_F(PlacedToBeDeleted, ANewOneRunsTheDeleteWithKeyZeroAndNoInsert) {
    placed->ID = 0;
    AddStep(ManRotate);
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(Sent(), ElementsAre("DELETE FROM ImageAttribute_T WHERE ImageattributeID = 0;",
                                    "SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=0;"));
    EXPECT_THAT(StoredRows(), ElementsAre(21, 22));
    EXPECT_THAT(StoredSteps(), IsEmpty());
}

TEST_F(PlacedToBeDeleted, ANegativeIdDoesNothing) {
    placed->ID = -21;
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(PlacedToBeDeleted, ARowIsDeletedWithItsManipulations) {
    RunStep(6, "'a'", 1);
    RunStep(1, "'001x.dcm'", 2);
    RunStep(6, "NULL", 3);
    Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter, StringParameter)"
        " VALUES (22, 1, 6, 0, 'of another')");
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(Sent(), ElementsAre(deleteOfRow, stepsOfPlaced));
    EXPECT_THAT(StoredRows(), ElementsAre(22));
    EXPECT_THAT(StoredSteps(), ElementsAre("22:1:6:0:of another"));
}

TEST_F(PlacedToBeDeleted, TheManipulationsAreOpenedUpdatable) {
    EXPECT_THAT(ModesOf([&] { placed->Save(con); }), ElementsAre(executed, updatable));
}

TEST_F(PlacedToBeDeleted, TheObjectIsUnchangedAndMayBeDeletedAgain) {
    AddStep(ManRotate);
    placed->Save(con);
    EXPECT_EQ(placed->ID, 21);
    EXPECT_TRUE(placed->ToBeDeleted);
    EXPECT_EQ(placed->Manipulations->Count(), 1);
    EXPECT_TRUE(placed->Save(con));
}

TEST_F(PlacedToBeDeleted, ACosmeticStepWithoutATextFailsAfterTheRowAndTheStepsBeforeIt) {
    RunStep(6, "'first'", 1);
    RunStep(1, "NULL", 2);
    RunStep(6, "'last'", 3);
    EXPECT_EQ(FailureOf([&] { placed->Save(con); }).Number, err::InvalidNull);
    EXPECT_THAT(StoredRows(), ElementsAre(22));
    EXPECT_THAT(StoredSteps(), ElementsAre("21:2:1:90:NULL", "21:3:6:90:last"));
}

TEST_F(PlacedToBeDeleted, AStepWithoutATypeIsDeletedLikeAnyOther) {
    RunStep(6, "NULL");
    Run("UPDATE ImageManipulation_T SET Type=NULL");
    EXPECT_TRUE(placed->Save(con));
    EXPECT_EQ(Ask("SELECT count(*) FROM ImageManipulation_T"), Variant(Long{0}));
}

// ---- pending messages of the program --------------------------------------------------------------

class PlacedInTheMiddle : public Placed {
protected:
    PlacedInTheMiddle() {
        RunRow(21);
        placed->ID = 21;
        TheHost().DoEvents = [this] {
            sentBefore.push_back(Sent().size());
            meanwhile();
        };
    }
    ~PlacedInTheMiddle() override { TheHost().DoEvents = machine_; }

    std::vector<std::size_t> sentBefore;  ///< how many statements had been sent at each turn
    std::function<void()> meanwhile = [] {};

private:
    const std::function<void()> machine_ = TheHost().DoEvents;
};

TEST_F(PlacedInTheMiddle, AnUpdateHandlesMessagesOnceAfterTheUpdateAndBeforeTheManipulations) {
    AddStep(ManRotate);
    placed->Save(con);
    EXPECT_EQ(Sent().size(), 3U);
    EXPECT_THAT(sentBefore, ElementsAre(1U));
}

TEST_F(PlacedInTheMiddle, AnInsertHandlesNoMessages) {
    placed->ID = 0;
    placed->Save(con);
    EXPECT_THAT(sentBefore, IsEmpty());
}

TEST_F(PlacedInTheMiddle, ADeletionHandlesNoMessages) {
    placed->ToBeDeleted = true;
    placed->Save(con);
    EXPECT_THAT(sentBefore, IsEmpty());
}

TEST_F(PlacedInTheMiddle, AFailedUpdateHandlesNoMessages) {
    Run("DROP TABLE ImageAttribute_T");
    EXPECT_NE(FailureOf([&] { placed->Save(con); }).Number, 0);
    EXPECT_THAT(sentBefore, IsEmpty());
}

TEST_F(PlacedInTheMiddle, ChangesOfTheProgramDuringTheMessagesAreSaved) {
    meanwhile = [this] { AddStep(ManRotate, "late"); };
    placed->Save(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:late"));
}

TEST_F(PlacedInTheMiddle, TheProgramMayReplaceTheManipulations) {
    AddStep(ManRotate, "early");
    meanwhile = [this] { placed->Manipulations = New<Collection>(); };
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(StoredSteps(), IsEmpty());
}

TEST_F(PlacedInTheMiddle, TheProgramMaySetTheManipulationsToNull) {
    meanwhile = [this] { placed->Manipulations = nullptr; };
    EXPECT_TRUE(placed->Save(con));
}

TEST_F(PlacedInTheMiddle, TheProgramMayLetTheConnectionGo) {
    Ref<Connection> onlyReference = Connect();
    meanwhile = [&] { onlyReference = nullptr; };
    EXPECT_TRUE(placed->Save(onlyReference));
}

TEST_F(PlacedInTheMiddle, TheProgramMayLetThePlacedImageGo) {
    AddStep(ManRotate, "kept");
    meanwhile = [this] { placed = nullptr; };
    EXPECT_TRUE(placed->Save(con));
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:kept"));
}

// ---- loading the manipulations --------------------------------------------------------------------

class Steps : public Placed {
protected:
    Steps() { placed->ID = 21; }

    /// Loads two rows of which the second has these changes; returns the result.
    bool LoadWithSecond(const String& changes) {
        RunStep(6, "'first'", 1);
        RunStep(6, "'second'", 2);
        Run("UPDATE ImageManipulation_T SET " + changes + " WHERE StringParameter='second'");
        return placed->LoadImageManipulations(con);
    }

    void ExpectOnlyTheFirst() {
        ASSERT_EQ(placed->Manipulations->Count(), 1);
        EXPECT_EQ(StepAt(1)->StringParameter, "first");
    }
};

TEST_F(Steps, AreLoadedInTheOrderOfTheirNumbers) {
    RunStep(6, "'b'", 2);
    RunStep(3, "'a'", 1);
    EXPECT_TRUE(placed->LoadImageManipulations(con));
    EXPECT_THAT(Sent(), ElementsAre(stepsInOrder));
    ASSERT_EQ(placed->Manipulations->Count(), 2);
    EXPECT_EQ(StepAt(1)->StringParameter, "a");
    EXPECT_EQ(StepAt(1)->ManipulationType, ManContrast);
    EXPECT_EQ(StepAt(1)->LongParameter, 90);
    EXPECT_EQ(StepAt(1)->ImageManipulationID, 2);
    EXPECT_EQ(StepAt(1)->IAID, 0);
    EXPECT_EQ(StepAt(1)->UndoImageHandle, 0);
    EXPECT_EQ(StepAt(2)->StringParameter, "b");
}

TEST_F(Steps, AreReadPlainly) {
    EXPECT_THAT(ModesOf([&] { placed->LoadImageManipulations(con); }), ElementsAre(plainRead));
}

TEST_F(Steps, HaveNoKeys) {
    RunStep(6, "'a'");
    placed->LoadImageManipulations(con);
    EXPECT_FALSE(placed->Manipulations->HasKey("K1"));
    EXPECT_FALSE(placed->Manipulations->HasKey(""));
}

TEST_F(Steps, WithoutAnyTheResultIsTrue) { EXPECT_TRUE(placed->LoadImageManipulations(con)); }

TEST_F(Steps, ASecondLoadDoublesThem) {
    RunStep(6, "'a'", 1);
    RunStep(6, "'b'", 2);
    placed->LoadImageManipulations(con);
    EXPECT_TRUE(placed->LoadImageManipulations(con));
    ASSERT_EQ(placed->Manipulations->Count(), 4);
    EXPECT_EQ(StepAt(3)->StringParameter, "a");
}

TEST_F(Steps, ANullKeyEndsTheLoadUnreported) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    Run("CREATE TABLE Keyless AS SELECT * FROM ImageManipulation_T");
    Run("DROP TABLE ImageManipulation_T");
    Run("ALTER TABLE Keyless RENAME TO ImageManipulation_T");
    RunStep(6, "'first'", 1);
    RunStep(6, "'second'", 2);
    Run("UPDATE ImageManipulation_T SET ImageManipulationID=SequenceNo WHERE SequenceNo=1");
    EXPECT_FALSE(placed->LoadImageManipulations(con));
    ExpectOnlyTheFirst();
}

TEST_F(Steps, ANullTypeEndsTheLoadUnreported) {
    EXPECT_FALSE(LoadWithSecond("Type=NULL"));
    ExpectOnlyTheFirst();
}

TEST_F(Steps, ANullNumberEndsTheLoadUnreported) {
    EXPECT_FALSE(LoadWithSecond("LongParameter=NULL"));
    ExpectOnlyTheFirst();
}

TEST_F(Steps, ANullTextEndsTheLoadUnreported) {
    EXPECT_FALSE(LoadWithSecond("StringParameter=NULL"));
    ExpectOnlyTheFirst();
}

TEST_F(Steps, ANumberBeyondThirtyTwoBitsEndsTheLoadUnreported) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    EXPECT_FALSE(LoadWithSecond("LongParameter=3000000000"));
    ExpectOnlyTheFirst();
}

TEST_F(Steps, AFailedOpenReturnsFalseAndKeepsTheMembers) {
    AddStep(ManRotate);
    Run("DROP TABLE ImageManipulation_T");
    EXPECT_FALSE(placed->LoadImageManipulations(con));
    EXPECT_EQ(placed->Manipulations->Count(), 1);
}

// ---- saving the manipulations ---------------------------------------------------------------------

TEST_F(Steps, WithoutStoredOrNewOnesWritesNothing) {
    placed->SaveManipulations(con);
    EXPECT_THAT(Sent(), ElementsAre(stepsOfPlaced));
}

TEST_F(Steps, ReplaceThoseThatWereStored) {
    RunStep(6, "'old'", 1);
    RunStep(7, "'old'", 2);
    AddStep(ManRotate, "new", -90);
    placed->SaveManipulations(con);
    EXPECT_THAT(Sent(),
                ElementsAre(stepsOfPlaced, deleteOfSteps,
                            "INSERT INTO ImageManipulation_T (SequenceNo, Type, LongParameter, StringParameter, "
                            "ImageAttributeID) VALUES('1', '6', '-90', 'new', '21');"));
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:-90:new"));
}

TEST_F(Steps, ThoseOfOtherPlacedImagesStay) {
    RunStep(6, "'other'");
    Run("UPDATE ImageManipulation_T SET ImageAttributeID=22");
    AddStep(ManRotate);
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("22:1:6:90:other", "21:1:6:0:"));
}

TEST_F(Steps, AnUndoStopIsNotStoredAndTakesNoNumber) {
    AddStep(UndoStop);
    AddStep(ManRotate, "turned");
    AddStep(UndoStop);
    AddStep(ManCrop, "cut");
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:turned", "21:2:22:0:cut"));
}

TEST_F(Steps, UndoStopsAloneEmptyTheStoredOnes) {
    RunStep(6, "'old'");
    AddStep(UndoStop);
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), IsEmpty());
}

TEST_F(Steps, ATypeWithoutANameIsStored) {
    AddStep(static_cast<ManipulationType>(-7));
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:-7:0:"));
}

TEST_F(Steps, ALeadingBlankIsStoredAndReadsBackTrimmed) {
    AddStep(ManRotate, " a ");
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0: a "));
    placed->LoadImageManipulations(con);
    EXPECT_EQ(StepAt(2)->StringParameter, "a");
}

TEST_F(Steps, AnApostropheLosesTheStoredOnesUnreported) {
    RunStep(6, "'old'");
    AddStep(ManRotate, "kept");
    AddStep(ManRotate, "it's");
    AddStep(ManRotate, "never reached");
    EXPECT_EQ(FailureOf([&] { placed->SaveManipulations(con); }).Number, 0);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:kept"));
}

TEST_F(Steps, ApostrophesNeverMakeAnotherStatement) {
    for (const char* text : {"x', '99'); --", "', (SELECT 1), '", "'''", "a' || 'b"}) {
        placed->Manipulations = New<Collection>();
        AddStep(ManRotate, text);
        placed->SaveManipulations(con);
        EXPECT_THAT(StoredSteps(), IsEmpty()) << text;
    }
}

TEST_F(Steps, ADoubledApostropheIsStoredAsOne) {
    AddStep(ManRotate, "it''s");
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:it's"));
}

TEST_F(Steps, TextsOfAnyScriptAndBackslashesAreStoredAsTheyAre) {
    AddStep(ManCosmetic, "001\\切歯\\🦷.dcm");
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:1:0:001\\切歯\\🦷.dcm"));
}

TEST_F(Steps, AMemberThatIsNotAManipulationEndsTheSaveUnreported) {
    AddStep(ManRotate, "kept");
    placed->Manipulations->Add(New<Collection>());
    AddStep(ManRotate, "never reached");
    EXPECT_EQ(FailureOf([&] { placed->SaveManipulations(con); }).Number, 0);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:kept"));
}

TEST_F(Steps, AStoredCosmeticWithoutATextKeepsAllThatIsStored) {
    RunStep(1, "NULL");
    AddStep(ManRotate, "new");
    EXPECT_EQ(FailureOf([&] { placed->SaveManipulations(con); }).Number, 0);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:1:90:NULL"));
    EXPECT_THAT(Sent(), ElementsAre(stepsOfPlaced));
}

TEST_F(Steps, AStoredStepWithoutATypeIsReplaced) {
    RunStep(6, "NULL");
    Run("UPDATE ImageManipulation_T SET Type=NULL");
    AddStep(ManRotate, "new");
    placed->SaveManipulations(con);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:new"));
}

TEST_F(Steps, AListThatWasSetToNullFailsTheLoadAlsoWithoutRows) {
    placed->Manipulations = nullptr;
    EXPECT_FALSE(placed->LoadImageManipulations(con));
    EXPECT_EQ(placed->LoadCompletion().Failure().Number, 91);
}

TEST_F(Steps, AHandlerOfTheConnectionMayReplaceThemWhileTheyAreWritten) {
    struct Replacing final : ADODB::ConnectionEvents {
        void WillExecute(ADODB::ExecuteRequest& request) override {
            if (request.Source.starts_with("INSERT")) owner->Manipulations = New<Collection>();
        }
        cImagecardAttribute* owner = nullptr;
    } replacing;
    replacing.owner = placed.Get();
    AddStep(ManRotate, "a");
    AddStep(ManRotate, "b");
    con->Advise(replacing);
    EXPECT_EQ(FailureOf([&] { placed->SaveManipulations(con); }).Number, 0);
    con->Unadvise(replacing);
    EXPECT_THAT(StoredSteps(), ElementsAre("21:1:6:0:a", "21:2:6:0:b"));
}

TEST_F(Steps, ThoseAfterTheLastNumberAreLostUnreported) {
    const Ref<cImageManipulation> step = AddStep(ManRotate);
    for (int more = 1; more <= 32767; ++more) placed->Manipulations->Add(step);
    con->BeginTrans();
    EXPECT_EQ(FailureOf([&] { placed->SaveManipulations(con); }).Number, 0);
    con->CommitTrans();
    EXPECT_EQ(Ask("SELECT max(SequenceNo) FROM ImageManipulation_T"), Variant(Long{32767}));
    EXPECT_EQ(Ask("SELECT count(*) FROM ImageManipulation_T"), Variant(Long{32767}));
}

// ---- cosmetic files -------------------------------------------------------------------------------

/// Storage root 7 with a file in it, and files outside of the root that no test may delete.
class Cosmetics : public Steps {
protected:
    Cosmetics() {
        for (const char* name : {"root/0_/a.dcm", "root/0_/b.dcm", "root/top.dcm", "outside/secret.dcm"}) Write(name);
        RunRoot(7, root.string());
    }

    /// Expects that no test has deleted a file outside of the root.
    ~Cosmetics() override { EXPECT_TRUE(fs::is_regular_file(folder.Path() / "outside" / "secret.dcm")); }

    void Write(const String& name) const {
        fs::create_directories((folder.Path() / name).parent_path());
        std::ofstream(folder.Path() / name) << "x";
    }
    bool There(const String& name) const { return fs::is_regular_file(folder.Path() / name); }

    void RunRoot(Long number, const String& directory, Long status = 0) {
        Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (" + CStr(number) + ", '" + directory + "', " +
            CStr(status) + ")");
    }

    /// Stores this cosmetic manipulation and then saves a list without it. The save must not raise any failure.
    void Drop(const String& cosmetic) {
        RunStep(1, "'" + cosmetic + "'");
        EXPECT_EQ(FailureOf([&] { placed->SaveManipulations(con); }).Number, 0);
        EXPECT_THAT(StoredSteps(), IsEmpty());
    }

    const fs::path root = folder.Path() / "root";
};

TEST_F(Cosmetics, AFileOutOfUseIsDeleted) {
    Drop("0070_\\a.dcm");
    EXPECT_FALSE(There("root/0_/a.dcm"));
    EXPECT_TRUE(There("root/0_/b.dcm"));
    EXPECT_THAT(Sent(), ElementsAre(stepsOfPlaced, deleteOfSteps, "SELECT * FROM Root_T WHERE RootID=7;"));
}

TEST_F(Cosmetics, TheSameTextKeepsTheFile) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManCosmetic, "0070_\\a.dcm");
    placed->SaveManipulations(con);
    EXPECT_TRUE(There("root/0_/a.dcm"));
    EXPECT_EQ(Sent().size(), 3U) << "no root is looked up";
}

TEST_F(Cosmetics, AChangedNameDeletesTheOldFile) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManCosmetic, "0070_\\b.dcm");
    placed->SaveManipulations(con);
    EXPECT_FALSE(There("root/0_/a.dcm"));
    EXPECT_TRUE(There("root/0_/b.dcm"));
}

TEST_F(Cosmetics, AnotherCaseIsAnotherName) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManCosmetic, "0070_\\A.dcm");
    placed->SaveManipulations(con);
    EXPECT_FALSE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, ALeadingBlankOfTheNewTextIsAnotherNameThoughItIsTheSameFile) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManCosmetic, " 0070_\\a.dcm");
    placed->SaveManipulations(con);
    EXPECT_FALSE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, BlanksAroundTheStoredTextAreIgnored) {
    RunStep(1, "'  0070_\\a.dcm '");
    AddStep(ManCosmetic, "0070_\\a.dcm");
    placed->SaveManipulations(con);
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, OfSeveralStoredTheLastCounts) {
    RunStep(1, "'0070_\\b.dcm'", 1);
    RunStep(1, "'0070_\\a.dcm'", 2);
    RunStep(6, "'007top.dcm'", 3);
    placed->SaveManipulations(con);
    EXPECT_FALSE(There("root/0_/a.dcm"));
    EXPECT_TRUE(There("root/0_/b.dcm"));
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, OfSeveralNewTheLastCounts) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManCosmetic, "0070_\\b.dcm");
    AddStep(ManCosmetic, "0070_\\a.dcm");
    AddStep(ManRotate, "007top.dcm");
    placed->SaveManipulations(con);
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, AFirstNewOneOfTheSameTextDoesNotSaveTheFile) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManCosmetic, "0070_\\a.dcm");
    AddStep(ManCosmetic, "0070_\\b.dcm");
    placed->SaveManipulations(con);
    EXPECT_FALSE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, ANewOneWithoutAnOldOneDeletesNothing) {
    AddStep(ManCosmetic, "0070_\\a.dcm");
    placed->SaveManipulations(con);
    EXPECT_TRUE(There("root/0_/a.dcm"));
    EXPECT_EQ(Sent().size(), 2U);
}

TEST_F(Cosmetics, AStoredEmptyTextReadsNoRoot) {
    Drop("");
    EXPECT_THAT(Sent(), ElementsAre(stepsOfPlaced, deleteOfSteps));
}

TEST_F(Cosmetics, AFailedInsertKeepsTheFile) {
    RunStep(1, "'0070_\\a.dcm'");
    AddStep(ManRotate, "it's");
    placed->SaveManipulations(con);
    EXPECT_TRUE(There("root/0_/a.dcm"));
    EXPECT_THAT(StoredSteps(), IsEmpty());
}

TEST_F(Cosmetics, ADeletedPlacedImageKeepsTheFile) {
    RunStep(1, "'0070_\\a.dcm'");
    placed->ToBeDeleted = true;
    placed->Save(con);
    EXPECT_THAT(StoredSteps(), IsEmpty());
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, AReadOnlyFileIsKeptAndNothingIsRaised) {
    fs::permissions(root / "0_" / "a.dcm", fs::perms::owner_read);
    Drop("0070_\\a.dcm");
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, AMissingFileIsIgnored) {
    Drop("0070_\\no such.dcm");
    Drop("007no folder\\a.dcm");
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, AFolderIsNotDeleted) {
    fs::create_directories(root / "empty");
    Drop("007empty");
    EXPECT_TRUE(fs::is_directory(root / "empty"));
}

TEST_F(Cosmetics, ATextOfThreeCharactersNamesNoFile) {
    Drop("007");
    Drop("7");
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, AMissingRootIsIgnored) {
    Drop("0080_\\a.dcm");
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, ARootWithoutADirectoryIsIgnored) {
    Run("UPDATE Root_T SET RootDirectory=NULL");
    Drop("0070_\\a.dcm");
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, ARootWithAnEmptyDirectoryReachesNoFile) {
    RunRoot(8, "");
    Drop("008" + Replace((root / "top.dcm").string(), "/", "\\"));
    Drop("008" + Replace((root / "top.dcm").string().substr(1), "/", "\\"));
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, AMissingTableOfRootsIsIgnored) {
    Run("DROP TABLE Root_T");
    Drop("0070_\\a.dcm");
    EXPECT_TRUE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, ARootNumberIsReadFromItsHead) {
    for (const char* number : {"7  ", "7x ", "07a", "&H7", "+7 ", "7.0", "6.6"}) {
        Write("root/top.dcm");
        Drop(String(number) + "top.dcm");
        EXPECT_FALSE(There("root/top.dcm")) << number;
    }
}

TEST_F(Cosmetics, BlanksInFrontOfARootNumberAreTrimmedOffBeforeTheTextIsCut) {
    Write("root/p.dcm");
    Drop("  7top.dcm");
    EXPECT_TRUE(There("root/top.dcm"));
    EXPECT_FALSE(There("root/p.dcm"));
}

TEST_F(Cosmetics, WithoutARootNumberTheActiveRootCounts) {
    Write("active/top.dcm");
    RunRoot(9, (folder.Path() / "active").string(), 1);
    Drop("abctop.dcm");
    EXPECT_FALSE(There("active/top.dcm"));
    EXPECT_TRUE(There("root/top.dcm"));
    EXPECT_EQ(Sent().back(), "SELECT * FROM Root_T WHERE Status <> 0;");
}

TEST_F(Cosmetics, RootNumberZeroIsTheActiveRoot) {
    Write("active/top.dcm");
    RunRoot(9, (folder.Path() / "active").string(), 1);
    Drop("000top.dcm");
    EXPECT_FALSE(There("active/top.dcm"));
}

TEST_F(Cosmetics, RootNumberZeroWithoutAnActiveRootIsIgnored) {
    Drop("000top.dcm");
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, ARootNumberThatOverflowsIsIgnored) {
    Drop("9E9top.dcm");
    EXPECT_TRUE(There("root/top.dcm"));
    EXPECT_EQ(Sent().size(), 2U) << "no root is looked up";
}

TEST_F(Cosmetics, ANegativeRootIsIgnored) {
    RunRoot(-7, root.string());
    Drop("-07top.dcm");
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, ANameThatLeadsOutOfTheRootDeletesNothing) {
    const String away = (folder.Path() / "outside" / "secret.dcm").string();
    for (const String& name :
         {String("..\\outside\\secret.dcm"), String("../outside/secret.dcm"), String("0_\\..\\..\\outside\\secret.dcm"),
          String(".\\..\\outside\\secret.dcm"), String("\\..\\outside\\secret.dcm"), away, Replace(away, "/", "\\"),
          "C:" + away, String("\\\\outside\\secret.dcm")})
        Drop("007" + name);
    EXPECT_TRUE(There("outside/secret.dcm"));
}

TEST_F(Cosmetics, ALinkOutOfTheRootDeletesNothing) {
    fs::create_symlink("../outside/secret.dcm", root / "file");
    fs::create_directory_symlink("../outside", root / "away");
    fs::create_directory_symlink("..", root / "up");
    for (const char* name : {"file", "away\\secret.dcm", "up\\outside\\secret.dcm", "up\\root\\away\\secret.dcm"})
        Drop("007" + String(name));
    EXPECT_TRUE(There("outside/secret.dcm"));
    EXPECT_TRUE(fs::is_symlink(root / "file"));
}

TEST_F(Cosmetics, ALinkToAFileInTheRootIsDeletedAndTheFileStays) {
    fs::create_symlink("top.dcm", root / "link");
    Drop("007link");
    EXPECT_FALSE(fs::is_symlink(root / "link"));
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, AFileIsFoundThroughALinkedFolderOfTheRoot) {
    fs::create_directory_symlink("0_", root / "again");
    Drop("007again\\a.dcm");
    EXPECT_FALSE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, AFileIsFoundBelowARootThatIsALink) {
    fs::create_directory_symlink(root, folder.Path() / "linked");
    RunRoot(8, (folder.Path() / "linked").string());
    Drop("0080_\\a.dcm");
    EXPECT_FALSE(There("root/0_/a.dcm"));
}

TEST_F(Cosmetics, ALoopOfLinksIsIgnored) {
    fs::create_symlink("loop", root / "loop");
    Drop("007loop");
    Drop("007loop\\a.dcm");
    EXPECT_TRUE(fs::is_symlink(root / "loop"));
}

TEST_F(Cosmetics, ANulCharacterInTheNameDeletesNothing) {
    OXCLASS_ONLY_IF(HasSqliteDefinitions());
    RunStep(1, "'007top.dcm' || char(0) || '.jpg'");
    placed->SaveManipulations(con);
    EXPECT_TRUE(There("root/top.dcm"));
}

TEST_F(Cosmetics, AWildcardDeletesNothing) {
    Drop("0070_\\*.dcm");
    Drop("0070_\\?.dcm");
    EXPECT_TRUE(There("root/0_/a.dcm"));
    EXPECT_TRUE(There("root/0_/b.dcm"));
}

TEST_F(Cosmetics, AFileOfAnyScriptIsDeleted) {
    Write("root/зуб/切歯🦷.dcm");
    Drop("007зуб\\切歯🦷.dcm");
    EXPECT_FALSE(There("root/зуб/切歯🦷.dcm"));
}

}  // namespace
}  // namespace OXClass
