#include "images/cImage.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// Writing an image and its comments: the complete statements, and the rows that they store.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ImageSave : public WithDatabase {
protected:
    /// All rows of a table, by another connection; one line a row.
    String Table(const String& name) const {
        const Ref<Recordset> rs = Connect()->Execute("SELECT * FROM " + name);
        String text;
        for (; !rs->Eof(); rs->MoveNext(), text += '\n')
            for (Long i = 0; i < rs->FieldCount(); ++i) {
                const Variant value = rs->Fields(i).Value();
                text += (value.Is<Null>() ? "NULL" : CStr(value)) + "|";
            }
        return text;
    }

    Long CountOf(const String& table) { return CLng(Ask("SELECT COUNT(*) FROM " + table)); }
    Variant OfRow(const String& column, Long id = 1) {
        return Ask("SELECT " + column + " FROM ImageBild_T WHERE ImageBildID = " + CStr(id));
    }

    void StoreComment(Long object, const String& signature, const String& text, Long kind = 1) {
        Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, commentString) "
            "VALUES ('2024-01-01 00:00:00', '" +
            signature + "', " + CStr(kind) + ", " + CStr(object) + ", '" + text + "')");
    }
    std::vector<String> StoredComments() {
        std::vector<String> texts;
        const Ref<Recordset> rs = Connect()->Execute("SELECT commentString FROM Comments_T ORDER BY CommentID");
        for (; !rs->Eof(); rs->MoveNext()) texts.push_back(To<String>(rs->Fields(0).Value()));
        return texts;
    }

    static std::vector<String> TextsOf(cImage& image) {
        std::vector<String> texts;
        for (const cStringItem& comment : *image.Comments()) texts.push_back(comment.str);
        return texts;
    }

    Ref<cImage> image = New<cImage>();
};

/// An image whose properties that are stored all differ.
Ref<cImage> Distinct() {
    const Ref<cImage> image = New<cImage>();
    image->PatID = 11;
    image->dateTime = DateFrom({2024, 3, 5, 14, 7, 9});
    image->DPIX = 300;
    image->DPIY = 301;
    image->HWSourceTxt = "Dr. O'Hara's sensor";
    image->RootId = 12;
    image->URL = "a/O'Hara.dcm";
    image->ApprInvert = true;
    image->ApprContrast = -13;
    image->ApprBrightness = 14;
    image->ExposureTime_ms = 15;
    image->RespPerson = "Dr. Resp";
    image->Approved = true;
    image->MirrRotStatus = 16;
    image->ImageType = imggTypeDXPanoramic;
    image->CRC = "C0FFEE";
    image->Voltage_kV = 17;
    image->Current_mA = 18;
    image->CapturePerson = "Nurse";
    image->Pregnant = 19;
    image->studyID = 20;
    image->seriesID = 21;
    image->instanceUID = "1.2.840.1";
    image->ImageNumberInSeries = 22;
    image->DicomStatus = 23;
    image->FrameNumber = 24;
    image->ApprCrop = "1;2;3;4";
    image->DCMDerived = 25;
    image->Laterality = "R";
    image->AnaRegion = "T-11170";
    image->AnaRegionMod = "T-51005";
    image->sTeeth = "11,12,";
    image->SubType = 26;
    image->ApprGamma = 27;
    return image;
}

#define INSERT_HEAD                                                                                        \
    "INSERT INTO ImageBild_T (ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC, "               \
    "StandCollName_NVC, "                                                                                  \
    "ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, RootId, GraphicURL_NVC, Invert_BT, "    \
    "StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ExposureTime_F, "         \
    "HorizMirror_BT, VerticalMirror_BT, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, CRC, " \
    "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, "      \
    "PrevXrayDate_DT, Dosage_INT, Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, "          \
    "DicomStatus_INT "                                                                                     \
    ",FrameNumber_INT ,AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod, PriStructure, " \
    "SubType_INT, Gamma_INT) "

constexpr const char* InsertOfDistinct = INSERT_HEAD
    "VALUES ( 0, 11, '2024-03-05 14:07:09', '', '',  300, 100, 'Dr. O''Hara''s sensor', 12, "
    "'a/O''Hara.dcm',1, 0,0,  "
    "-13, 14,  0, 15,  0, 0, 'Dr. Resp', -1,  16, 4, 'C0FFEE',  301, 300, 17,  18, '', 19, '', "
    "'1899-12-30 00:00:00',  0,20,21,'1.2.840.1',22,  23, 24, '1;2;3;4', 25, "
    "'R','T-11170','T-51005','11,12,', 26, "
    "27);";

constexpr const char* MaxOfDistinct =
    "SELECT MAX(ImageBildID) AS ID FROM ImageBild_T WHERE (GraphicURL_NVC='a/O''Hara.dcm' AND PatientID=11);";

constexpr const char* UpdateOfDistinct =
    "UPDATE ImageBild_T SET ImageType = 4, GraphicURL_NVC = 'a/O''Hara.dcm', Approved = -1, MirrRotStatus = "
    "16, "
    "DPIY_INT= 301, DPIX_INT= 300, ComputedDPI_INT= 300, PriStructure='11,12,',Study_ID=20, Series_ID=21, "
    "SOPInstanceUID_NVC='1.2.840.1', HardwareSourcetxt_NVC='Dr. O''Hara''s sensor', ImageNumberInSeries=22, "
    "dicomStatus_INT=23, AnaRegion='T-11170', AnaRegionMod='T-51005', FrameNumber_INT=24, Gamma_INT=27, "
    "Invert_BT=1, "
    "Contrast_INT=-13, Brightness_INT=14, CRC='C0FFEE', Laterality='R', PatientID=11, "
    "Capture_Person_NVC='Nurse', "
    "Responsible_Person_NVC='Dr. Resp', Voltage_INT= 17, DCMDerived_BT= 25, SubType_INT= 26, Current_INT= "
    "18, "
    "AnatomicRegion= '1;2;3;4', ExposureTime_F = 15 WHERE ImageBildID = 5;";

// ---- the statements -------------------------------------------------------------------------------------

TEST_F(ImageSave, ANewImageSendsItsInsertAndReadsItsKey) {
    image = Distinct();
    EXPECT_EQ(image->Save(con), 0);
    EXPECT_THAT(Sent(), ElementsAre(InsertOfDistinct, MaxOfDistinct));
    EXPECT_EQ(image->ID, 1);
}

TEST_F(ImageSave, AFreshImageSendsZerosAndEmptyTexts) {
    image->Save(con);
    EXPECT_THAT(
        Sent(),
        ElementsAre(INSERT_HEAD "VALUES ( 0, 0, '1899-12-30 00:00:00', '', '',  0, 100, '', 0, '',0, 0,0,  0, 0,  0, "
                                "0,  0, 0, '', 0,  0, 0, '',  0, 0, 0,  0, '', 0, '', '1899-12-30 00:00:00',  "
                                "0,0,0,'',0,  0, 0, '', 0, '','','','', 0, 0);",
                    "SELECT MAX(ImageBildID) AS ID FROM ImageBild_T WHERE (GraphicURL_NVC='' AND "
                    "PatientID=0);"));
}

TEST_F(ImageSave, AnImageWithAKeySendsOnlyItsUpdate) {
    image = Distinct();
    image->ID = 5;
    EXPECT_EQ(image->Save(con), 0);
    EXPECT_THAT(Sent(), ElementsAre(UpdateOfDistinct));
    EXPECT_EQ(image->ID, 5);
}

TEST_F(ImageSave, CommentsFollowInTheOrderOfTheList) {
    image = Distinct();
    image->ID = 5;
    image->addComment("It's caries", "Dr. O'Hara", DateFrom({2024, 3, 5, 14, 7, 9}), false);
    image->addComment("newer", "b", Date{}, false);
    image->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(UpdateOfDistinct,
                                    "INSERT INTO Comments_T ( dates, signature, tabelID, objectID,commentString ) "
                                    "VALUES ('1899-12-30 00:00:00','b', 1, 5, 'newer')",
                                    "INSERT INTO Comments_T ( dates, signature, tabelID, objectID,commentString ) "
                                    "VALUES ('2024-03-05 14:07:09','Dr. O''Hara', 1, 5, 'It''s caries')"));
}

TEST_F(ImageSave, ADecimalCommaChangesNoStatement) {
    const InLocale comma(DecimalComma);
    image = Distinct();
    image->Save(con);
    image->ID = 5;
    image->Save(con);
    EXPECT_THAT(Sent(), ElementsAre(InsertOfDistinct, MaxOfDistinct, UpdateOfDistinct));
}

TEST_F(ImageSave, SaveExOfAnImageWithoutIdentityIsSave) {
    image = Distinct();
    image->instanceUID.clear();
    EXPECT_EQ(image->SaveEx(true, con), 0);
    const std::vector<String> sent = Sent();
    log.statements.clear();
    image = Distinct();
    image->instanceUID.clear();
    image->Save(con);
    EXPECT_EQ(sent, Sent());
}

TEST_F(ImageSave, SaveExSearchesByKeyOrByUid) {
    image = Distinct();
    image->ID = 5;
    image->SaveEx(true, con);
    EXPECT_EQ(Sent().front(), "SELECT * FROM ImageBild_T WHERE ImageBildID =5;");
    log.statements.clear();
    image = Distinct();
    image->ID = 5;
    image->SaveEx(false, con);
    EXPECT_EQ(Sent().front(), "SELECT * FROM ImageBild_T WHERE SOPInstanceUID_NVC ='1.2.840.1';");
    log.statements.clear();
    image->ID = 0;
    image->SaveEx(true, con);
    EXPECT_EQ(Sent().front(), "SELECT * FROM ImageBild_T WHERE SOPInstanceUID_NVC ='1.2.840.1';");
}

TEST_F(ImageSave, SaveExOfAKnownImageSendsSearchCommentsMarkUpdateAndNewComments) {
    Distinct()->Save(con);
    StoreComment(1, "Dr. May", "Deleted 2024-01-02 03:04:05");
    log.statements.clear();
    image = Distinct();
    image->addComment("back", "a", Date{}, false);
    image->SaveEx(false, con);
    EXPECT_THAT(Sent(), ElementsAre("SELECT * FROM ImageBild_T WHERE SOPInstanceUID_NVC ='1.2.840.1';",
                                    "SELECT Comments_T.* From Comments_T Where (((Comments_T.tabelID)=1) AND "
                                    "((Comments_T.objectID)=1))ORDER BY Comments_T.dates ASC;",
                                    "DELETE * FROM Comments_T where CommentString = 'Deleted 2024-01-02 03:04:05' and "
                                    "objectID = 1",
                                    Replace(UpdateOfDistinct, "ImageBildID = 5", "ImageBildID = 1"),
                                    "INSERT INTO Comments_T ( dates, signature, tabelID, objectID,commentString ) "
                                    "VALUES ('1899-12-30 00:00:00','a', 1, 1, 'back')"));
}

// ---- the stored row -------------------------------------------------------------------------------------

TEST_F(ImageSave, EachStoredPropertyIsLoaded) {
    Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (12, '/images', 1)");
    image = Distinct();
    image->Save(con);
    const Ref<cImage> read = New<cImage>();
    ASSERT_TRUE(read->GetImage(con, image->ID));
    EXPECT_EQ(read->CapturePerson, "") << "an insert never stores the capture person";
    read->CapturePerson = image->CapturePerson;
    read->Pregnant = image->Pregnant;
    read->Root_RootDirectory.clear();
    for (const Member& member : image->Describe().Members()) {
        if (member.Kind != MemberKind::Get || member.Result.Is == MemberType::Kind::Object) continue;
        EXPECT_EQ(member.Call(*read, {}), member.Call(*image, {})) << member.Name;
    }
}

TEST_F(ImageSave, ComputedResolutionIsZeroUnlessBothAreKnown) {
    struct Row {
        Long x, y, computed;
    };
    for (const auto& [x, y, computed] : {Row{100, 0, 0}, Row{0, 100, 0}, Row{100, 200, 100}, Row{-5, 7, -5}}) {
        image = New<cImage>();
        image->DPIX = x;
        image->DPIY = y;
        image->Save(con);
        EXPECT_EQ(OfRow("DPIX_INT", image->ID), Variant(x));
        EXPECT_EQ(OfRow("DPIY_INT", image->ID), Variant(y));
        EXPECT_EQ(OfRow("ComputedDPI_INT", image->ID), Variant(computed));
        Run("UPDATE ImageBild_T SET ComputedDPI_INT = 99");
        image->Save(con);
        EXPECT_EQ(OfRow("ComputedDPI_INT", image->ID), Variant(computed));
    }
}

TEST_F(ImageSave, Pregnant10IsWrittenAsNull) {
    image->Pregnant = 10;
    image->Save(con);
    EXPECT_TRUE(OfRow("Pregnant_BT").Is<Null>());
    EXPECT_TRUE(Contains(Sent().front(), ", '', NULL, '', '1899-12-30 00:00:00'"));
    image = New<cImage>();
    image->Pregnant = 0;
    image->Save(con);
    EXPECT_EQ(OfRow("Pregnant_BT", 2), Variant(Long{0}));
}

TEST_F(ImageSave, PregnantBeyond16BitsRaisesAndWritesNothing) {
    for (const Long beyond : {70000, 32768, -32769}) {
        image->Pregnant = beyond;
        EXPECT_EQ(FailureOf([&] { image->Save(con); }).Number, 6) << beyond;
        EXPECT_EQ(FailureOf([&] { image->SaveEx(false, con); }).Number, 6) << beyond;
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(CountOf("ImageBild_T"), 0);
    EXPECT_EQ(image->ID, 0);
    for (const Long limit : {32767, -32768}) {
        image->ID = 0;
        image->Pregnant = limit;
        image->Save(con);
        EXPECT_EQ(OfRow("Pregnant_BT", image->ID), Variant(limit));
    }
}

TEST_F(ImageSave, AnUpdateIgnoresPregnant) {
    image->Save(con);
    image->Pregnant = 70000;
    image->Save(con);
    EXPECT_EQ(OfRow("Pregnant_BT"), Variant(Long{0}));
}

TEST_F(ImageSave, TheCapturePersonIsStoredOnlyByTheUpdate) {
    image->CapturePerson = "Nurse";
    image->Save(con);
    EXPECT_EQ(OfRow("Capture_Person_NVC"), Variant(""));
    image->Save(con);
    EXPECT_EQ(OfRow("Capture_Person_NVC"), Variant("Nurse"));
}

TEST_F(ImageSave, AnUpdateDoesNotChangeCaptureDateRootAndConstants) {
    image = Distinct();
    image->Save(con);
    Run("UPDATE ImageBild_T SET ToothCollectionID = 1, Comments_NVC = 'c', StandCollName_NVC = 's', "
        "HardwareSourceId_INT = 2, StretchIntens_BT = 3, Rotation_INT = 4, Histogram_BT = 5, HorizMirror_BT "
        "= 6, "
        "VerticalMirror_BT = 7, XRaySource_NVC = 'x', PrevXrayDate_DT = '2001-01-01 00:00:00', Dosage_INT = "
        "8");
    const String columns =
        "DateCaptured_SD || '|' || RootId || '|' || Pregnant_BT || '|' || ToothCollectionID || Comments_NVC "
        "|| "
        "StandCollName_NVC || HardwareSourceId_INT || StretchIntens_BT || Rotation_INT || Histogram_BT || "
        "HorizMirror_BT || VerticalMirror_BT || XRaySource_NVC || PrevXrayDate_DT || Dosage_INT";
    const Variant before = OfRow(columns);
    image->dateTime = DateFrom({2030, 1, 1, 0, 0, 0});
    image->RootId = 99;
    image->Pregnant = 1;
    image->Save(con);
    EXPECT_EQ(OfRow(columns), before);
    EXPECT_EQ(before, Variant("2024-03-05 14:07:09|12|19|1cs234567x2001-01-01 00:00:008"));
}

TEST_F(ImageSave, TheInsertTrimsTheUidAndTheUpdateDoesNot) {
    image->instanceUID = "  1.2.3 ";
    image->Save(con);
    EXPECT_EQ(OfRow("SOPInstanceUID_NVC"), Variant("1.2.3"));
    image->Save(con);
    EXPECT_EQ(OfRow("SOPInstanceUID_NVC"), Variant("  1.2.3 "));
}

TEST_F(ImageSave, OfTwoImagesWithOneFileTheNewestIsFound) {
    image->URL = "same.dcm";
    image->PatID = 1;
    image->Save(con);
    const Ref<cImage> second = New<cImage>(), other = New<cImage>();
    second->URL = other->URL = "same.dcm";
    second->PatID = 1;
    other->PatID = 2;
    other->Save(con);
    second->Save(con);
    EXPECT_EQ(image->ID, 1);
    EXPECT_EQ(other->ID, 2);
    EXPECT_EQ(second->ID, 3);
}

TEST_F(ImageSave, AnUpdateOfADeletedRowSucceeds) {
    image->ID = 77;
    image->addComment("still written", "a", Date{}, false);
    EXPECT_EQ(image->Save(con), 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 0);
    EXPECT_THAT(StoredComments(), ElementsAre("still written"));
    EXPECT_EQ(image->ID, 77);
}

// ---- texts ------------------------------------------------------------------------------------------------

TEST_F(ImageSave, EscapedTextsAreReadUnchanged) {
    for (const String text : {"O'Hara", "''", "'; DROP TABLE ImageBild_T; --", "C:\\images\\100%\"_[x]", "Παπαδόπουλος",
                              "Щукина", "山田太郎", "🦷😬"}) {
        image = New<cImage>();
        image->URL = image->HWSourceTxt = image->RespPerson = text;
        image->addComment(text, text, Date{}, false);
        image->Save(con);
        const Ref<cImage> read = New<cImage>();
        ASSERT_TRUE(read->GetImage(con, image->ID)) << text;
        read->GetComments(con);
        EXPECT_EQ(read->URL, text);
        EXPECT_EQ(read->HWSourceTxt, text);
        EXPECT_EQ(read->RespPerson, text);
        ASSERT_EQ(read->Comments()->Count(), 1) << text;
        EXPECT_EQ(read->Comments()->Item(Long{1})->str, text);
        EXPECT_EQ(read->Comments()->Item(Long{1})->Signature, text);
    }
}

TEST_F(ImageSave, AQuoteInATextThatIsNotEscapedFailsBeforeAnythingIsSent) {
    image = Distinct();
    image->Save(con);
    image->addComment("unsaved", "a", Date{}, false);
    const String images = Table("ImageBild_T");
    log.statements.clear();
    using Text = String cImage::*;
    const auto fails = [&](const char* name, Text text, Long id) {
        const String before = (*image).*text;
        (*image).*text = "x' WHERE '1'='1";
        image->ID = id;
        EXPECT_EQ(FailureOf([&] { image->Save(con); }).Number, SyntaxError) << name << id;
        EXPECT_EQ(FailureOf([&] { image->SaveEx(true, con); }).Number, SyntaxError) << name << id;
        EXPECT_EQ(image->ID, id);
        (*image).*text = before;
    };
    image->instanceUID.clear();
    for (const Long id : {0, 1}) {
        fails("CRC", &cImage::CRC, id);
        fails("ApprCrop", &cImage::ApprCrop, id);
        fails("Laterality", &cImage::Laterality, id);
        fails("AnaRegion", &cImage::AnaRegion, id);
        fails("AnaRegionMod", &cImage::AnaRegionMod, id);
        fails("sTeeth", &cImage::sTeeth, id);
        fails("instanceUID", &cImage::instanceUID, id);
    }
    fails("CapturePerson", &cImage::CapturePerson, 1);
    fails("RespPerson", &cImage::RespPerson, 1);
    for (const String& statement : Sent())
        EXPECT_EQ(statement, "SELECT * FROM ImageBild_T WHERE ImageBildID =1;") << "the look of SaveEx alone";
    EXPECT_EQ(Table("ImageBild_T"), images);
    EXPECT_THAT(StoredComments(), IsEmpty());
    EXPECT_FALSE(image->Comments()->Item(Long{1})->bSaved);
}

TEST_F(ImageSave, AQuoteInTheUidFailsTheSearchOfSaveEx) {
    image = Distinct();
    for (const String uid : {"x' OR '1'='1", "'", "1.2'; DELETE FROM ImageBild_T; --"}) {
        image->instanceUID = uid;
        EXPECT_EQ(FailureOf([&] { image->SaveEx(false, con); }).Number, SyntaxError) << uid;
    }
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(ImageSave, PersonsWithQuotesAreInserted) {
    image->CapturePerson = image->RespPerson = "O'Hara";
    EXPECT_EQ(image->Save(con), 0);
    EXPECT_EQ(OfRow("Responsible_Person_NVC"), Variant("O'Hara"));
}

TEST_F(ImageSave, ACommentIsCutTo150CharactersBeforeItsQuotesAreDoubled) {
    image->addComment(String(200, 'x'), String(200, '\''), Date{}, false);
    image->addComment(String(149, '\'') + "yz", "s", Date{}, false);
    image->Save(con);
    EXPECT_THAT(StoredComments(), ElementsAre(String(149, '\'') + "y", String(150, 'x')));
    EXPECT_EQ(Ask("SELECT signature FROM Comments_T WHERE CommentID = 2"), Variant(String(150, '\'')));
}

TEST_F(ImageSave, ACommentIsCutByCharactersNotByBytes) {
    String text;
    for (int i = 0; i < 160; ++i) text += "山";
    image->addComment(text, "s", Date{}, false);
    image->Save(con);
    EXPECT_EQ(StoredComments().front(), text.substr(0, 150 * String("山").size()));
}

TEST_F(ImageSave, LongTeethAreStoredWholeBySaveAndCutBySaveEx) {
    const String teeth(200, '1');
    image->sTeeth = teeth;
    image->Save(con);
    EXPECT_EQ(OfRow("PriStructure"), Variant(teeth));
    image->SaveEx(true, con);
    EXPECT_EQ(OfRow("PriStructure"), Variant(String(180, '1'))) << "the update cuts";
    image->Save(con);
    EXPECT_EQ(OfRow("PriStructure"), Variant(teeth));
    image->ID = 0;
    image->SaveEx(true, con);
    EXPECT_EQ(OfRow("PriStructure", 2), Variant(String(180, '1'))) << "the insert cuts";
    EXPECT_EQ(image->sTeeth, teeth) << "the object keeps what it had";
}

// ---- comments ---------------------------------------------------------------------------------------------

TEST_F(ImageSave, OnlyUnsavedCommentsAreWrittenAndThenCountAsSaved) {
    image->addComment("already there", "a", Date{}, true);
    image->addComment("new", "a", Date{}, false);
    image->Save(con);
    EXPECT_THAT(StoredComments(), ElementsAre("new"));
    EXPECT_TRUE(image->Comments()->Item(Long{1})->bSaved);
    image->Save(con);
    EXPECT_THAT(StoredComments(), ElementsAre("new"));
}

TEST_F(ImageSave, ACommentOfANewImageIsWrittenUnderItsNewKey) {
    image->Save(con);
    image = New<cImage>();
    image->addComment("first", "a", Date{}, false);
    image->Save(con);
    EXPECT_EQ(image->Comments()->Item(Long{1})->ID, 0);
    EXPECT_EQ(Ask("SELECT objectID FROM Comments_T"), Variant(Long{2}));
    EXPECT_EQ(Ask("SELECT tabelID FROM Comments_T"), Variant(Long{1}));
}

TEST_F(ImageSave, CommentsSetToNullFailAfterTheRowIsRead) {
    image->SetComments(nullptr);
    EXPECT_EQ(FailureOf([&] { image->Save(con); }).Number, 91);
    EXPECT_EQ(CountOf("ImageBild_T"), 1);
    EXPECT_EQ(image->ID, 1);
    image->SetComments(nullptr);
    image->CRC = "new";
    EXPECT_EQ(FailureOf([&] { image->Save(con); }).Number, 91);
    EXPECT_EQ(OfRow("CRC"), Variant("new"));
}

// ---- the look of SaveEx -------------------------------------------------------------------------

TEST_F(ImageSave, SaveExInsertsAgainIfTheKeysRowIsDeleted) {
    OXCLASS_ONLY_IF(CounterFollowsKeys());
    image = Distinct();
    image->Save(con);
    Run("UPDATE ImageBild_T SET ImageBildID = 40, SOPInstanceUID_NVC = '1.2.840.1'");
    EXPECT_EQ(image->ID, 1);
    EXPECT_EQ(image->SaveEx(true, con), 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 2) << "the look goes by the key, though the identifier is known";
    EXPECT_EQ(image->ID, 41);
}

TEST_F(ImageSave, SaveExUpdatesTheKeysRowWithAnyUid) {
    image->instanceUID = "1.1";
    image->Save(con);
    image->instanceUID = "2.2";
    image->SaveEx(true, con);
    EXPECT_EQ(CountOf("ImageBild_T"), 1);
    EXPECT_EQ(OfRow("SOPInstanceUID_NVC"), Variant("2.2"));
}

TEST_F(ImageSave, SaveExStoresNeitherOfTwoCommentsThatEqualAStoredOne) {
    Distinct()->Save(con);
    StoreComment(1, "Dr. May", "known");
    image = Distinct();
    image->addComment("known", "Dr. May", Date{}, false);
    image->addComment("known", "Dr. May", Date{}, false);
    image->SaveEx(false, con);
    EXPECT_THAT(TextsOf(*image), IsEmpty());
    EXPECT_THAT(StoredComments(), ElementsAre("known"));
}

TEST_F(ImageSave, SaveExDropsACommentOnceThatTwoStoredOnesEqual) {
    Distinct()->Save(con);
    StoreComment(1, "Dr. May", "known");
    StoreComment(1, "Dr. May", "known");
    image = Distinct();
    for (const char* text : {"before", "known", "behind"}) image->addComment(text, "Dr. May", Date{}, false);
    image->SaveEx(false, con);
    EXPECT_THAT(TextsOf(*image), ElementsAre("behind", "before"));
    EXPECT_THAT(StoredComments(), ElementsAre("known", "known", "behind", "before"));
}

TEST_F(ImageSave, SaveExTakesOverTheRowOfAKnownUid) {
    Distinct()->Save(con);
    StoreComment(1, "Dr. May", "known");
    StoreComment(1, "Dr. May", "of the table alone");
    image = Distinct();
    image->CRC = "new";
    image->addComment("known", "Dr. June", Date{}, false);
    image->addComment("known", "Dr. May", Date{}, false);
    image->addComment("Known", "Dr. May", Date{}, false);
    image->addComment("new", "Dr. May", Date{}, false);
    EXPECT_EQ(image->SaveEx(false, con), 0);
    EXPECT_EQ(image->ID, 1);
    EXPECT_EQ(CountOf("ImageBild_T"), 1);
    EXPECT_EQ(OfRow("CRC"), Variant("new"));
    EXPECT_THAT(TextsOf(*image), ElementsAre("new", "Known", "known")) << "the one of the same signature and text left";
    EXPECT_EQ(image->Comments()->Item(Long{3})->Signature, "Dr. June");
    EXPECT_THAT(StoredComments(), ElementsAre("known", "of the table alone", "new", "Known", "known"));
}

TEST_F(ImageSave, SaveExRemovesEachCommentThatTheTableHas) {
    Distinct()->Save(con);
    StoreComment(1, "a", "one");
    StoreComment(1, "a", "two");
    image = Distinct();
    for (const char* text : {"one", "two", "one", "three", "two"}) image->addComment(text, "a", Date{}, false);
    image->SaveEx(false, con);
    EXPECT_THAT(TextsOf(*image), ElementsAre("three"));
    EXPECT_THAT(StoredComments(), ElementsAre("one", "two", "three"));
}

TEST_F(ImageSave, SaveExWithAKeyAndAnUnknownUidInserts) {
    image = Distinct();
    image->Save(con);
    image->instanceUID = "9.9";
    EXPECT_EQ(image->SaveEx(false, con), 0);
    EXPECT_EQ(CountOf("ImageBild_T"), 2);
    EXPECT_EQ(image->ID, 2);
}

TEST_F(ImageSave, SaveExWithAKeyAndAKnownUidKeepsItsKeyAndItsComments) {
    Distinct()->Save(con);
    image->instanceUID = "other";
    image->Save(con);
    StoreComment(1, "a", "known");
    image->instanceUID = "1.2.840.1";
    image->addComment("known", "a", Date{}, false);
    image->SaveEx(false, con);
    EXPECT_EQ(image->ID, 2) << "the row that was found is another one, and the key stays";
    EXPECT_EQ(image->Comments()->Count(), 1);
    EXPECT_EQ(OfRow("SOPInstanceUID_NVC", 2), Variant("1.2.840.1"));
}

TEST_F(ImageSave, SaveExWithoutAnyIdentityInsertsEachTime) {
    image->SaveEx(false, con);
    EXPECT_EQ(image->ID, 1);
    image->ID = 0;
    image->SaveEx(true, con);
    EXPECT_EQ(image->ID, 2);
    image->SaveEx(false, con);
    EXPECT_EQ(CountOf("ImageBild_T"), 2) << "with a key and no identifier there is no look: an update";
    EXPECT_EQ(image->ID, 2);
}

// ---- the mark of a deletion ---------------------------------------------------------------------

class DeletionMark : public ImageSave {
protected:
    DeletionMark() {
        image = Distinct();
        image->Save(con);
        image->ID = 0;
    }
};

TEST_F(DeletionMark, IsDeletedWhenTheImageIsStoredWithAFile) {
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05");
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05 by mistake");
    StoreComment(1, "a", "kept");
    image->SaveEx(false, con);
    EXPECT_THAT(StoredComments(), ElementsAre("kept"));
}

TEST_F(DeletionMark, IsKeptIfTheImageHasNoFile) {
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05");
    image->URL.clear();
    image->SaveEx(false, con);
    EXPECT_THAT(StoredComments(), ElementsAre("Deleted 2024-01-02 03:04:05"));
    EXPECT_EQ(image->ID, 1);
}

TEST_F(DeletionMark, IsKeptIfTheImageIsFoundByItsKey) {
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05");
    image->ID = 1;
    image->SaveEx(true, con);
    EXPECT_THAT(StoredComments(), ElementsAre("Deleted 2024-01-02 03:04:05"));
}

TEST_F(DeletionMark, IsTheWordAndADateOnly) {
    const std::vector<String> others{"Deleted", "Deleted by Dr. May, today", "deleted 2024-01-02 03:04:05",
                                     " Deleted 2024-01-02 03:04:05", "Deleted 2024-13-45 03:04:05"};
    for (const String& other : others) StoreComment(1, "a", other);
    image->SaveEx(false, con);
    EXPECT_EQ(StoredComments(), others);
}

TEST_F(DeletionMark, DeletesUnderEveryKindOfOwnerAndKeepsOtherImages) {
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05");
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05", 2);
    StoreComment(2, "of another image", "Deleted 2024-01-02 03:04:05");
    image->SaveEx(false, con);
    EXPECT_EQ(CountOf("Comments_T"), 1);
    EXPECT_EQ(Ask("SELECT objectID FROM Comments_T"), Variant(Long{2}));
}

TEST_F(DeletionMark, WithAQuoteFailsAndWritesNothing) {
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05 by O''Hara");
    image->CRC = "new";
    EXPECT_EQ(FailureOf([&] { image->SaveEx(false, con); }).Number, SyntaxError);
    EXPECT_EQ(image->ID, 1) << "the row was found by then";
    EXPECT_EQ(OfRow("CRC"), Variant("C0FFEE"));
    EXPECT_EQ(CountOf("Comments_T"), 1);
}

TEST_F(DeletionMark, OfTheObjectItselfIsComparedLikeAnyComment) {
    StoreComment(1, "a", "Deleted 2024-01-02 03:04:05");
    image->addComment("Deleted 2024-01-02 03:04:05", "a", Date{}, false);
    image->SaveEx(false, con);
    EXPECT_THAT(StoredComments(), IsEmpty()) << "removed from the object first, then from the table";
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(ImageSave, AFailureOfTheDatabasePassesUnchanged) {
    Run("ALTER TABLE ImageBild_T RENAME TO Gone_T");
    image = Distinct();
    const Error plain = FailureOf([&] { con->Execute(InsertOfDistinct); });
    for (const bool extended : {false, true}) {
        image->instanceUID = extended ? "" : "1.2.840.1";
        const Error failure = FailureOf([&] { extended ? image->SaveEx(true, con) : image->Save(con); });
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
        EXPECT_EQ(failure.Source, plain.Source);
        EXPECT_EQ(failure.Description, plain.Description);
        EXPECT_EQ(image->ID, 0);
    }
}

TEST_F(ImageSave, AFailureOfTheSearchIsRaisedUnchanged) {
    Run("ALTER TABLE ImageBild_T DROP COLUMN CRC");
    DropIndex("ImageBild_by_SOPInstanceUID", "ImageBild_T");
    Run("ALTER TABLE ImageBild_T RENAME COLUMN SOPInstanceUID_NVC TO Other");
    image = Distinct();
    const Error plain =
        FailureOf([&] { con->Execute("SELECT * FROM ImageBild_T WHERE SOPInstanceUID_NVC ='1.2.840.1';"); });
    const Error failure = FailureOf([&] { image->SaveEx(false, con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E10));
    EXPECT_EQ(failure.Source, plain.Source);
    EXPECT_EQ(failure.Description, plain.Description);
}

TEST_F(ImageSave, TheCallersTransactionTakesItBack) {
    con->BeginTrans();
    image->addComment("new", "a", Date{}, false);
    image->Save(con);
    con->RollbackTrans();
    EXPECT_EQ(CountOf("ImageBild_T"), 0);
    EXPECT_EQ(CountOf("Comments_T"), 0);
    EXPECT_EQ(Sent().front(), "BeginTrans");
    EXPECT_EQ(Sent().back(), "RollbackTrans") << "the save itself opens and ends none";
    EXPECT_EQ(Sent().size(), 5U);
}

}  // namespace
}  // namespace OXClass
