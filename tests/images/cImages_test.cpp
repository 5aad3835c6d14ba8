#include "images/cImages.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

/// The collection of images, and how it loads them.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

Ref<cImage> Image(Long id) {
    const Ref<cImage> image = New<cImage>();
    image->ID = id;
    return image;
}

std::vector<Long> KeysOf(const cImages& images) {
    std::vector<Long> ids;
    for (const cImage& image : images) ids.push_back(image.ID);
    return ids;
}

// ---- the collection -----------------------------------------------------------------------------------

TEST(ImageCollection, HasTheDocumentedMembers) {
    EXPECT_THAT(
        MembersOf(cImages()),
        ElementsAre("LoadAll4Object(conn: Connection&, ObjectType: ImageOwnerOjectTypes&, ID: int32&, "
                    "[SQLWhereClause: string&]) -> int32",
                    "Add(URL: string&, ID: int32&, ImageType: xigImageTypes&, sTeeth: string&, Approved: boolean&, "
                    "PatID: int32&, dateTime: date&, MirrRotStatus: int32&, DPIY: int32&, DPIX: int32&, "
                    "RootId: int32&, Pregnant: int32&, ImageNumberInSeries: int32&, DicomStatus: int16&, "
                    "studyID: int32&, FrameNumber: int32&, seriesID: int32&, instanceUID: string&, "
                    "Laterality: string&, AnaRegion: string&, AnaRegionMod: string&, Comments: cComments&, "
                    "Root_RootDirectory: string&, HWSourceTxt: string&, ApprGamma: int32&, ApprBrightness: int32&, "
                    "ApprContrast: int32&, ApprInvert: boolean&, CapturePerson: string&, RespPerson: string&, "
                    "[sKey: string&]) -> cImage",
                    "get Item(vntIndexKey: variant) -> cImage", "get Count -> int32", "Remove(vntIndexKey: variant)",
                    "get NewEnum -> Enumerator", "AddObject(oImage: cImage&, [sKey: string&]) -> cImage"));
}

TEST(ImageCollection, ItemIsTheDefaultAndNewEnumTheEnumerator) {
    const cImages images;
    EXPECT_EQ(images.Describe().Find("Item")->DispId, DefaultMember);
    EXPECT_EQ(images.Describe().Find("NewEnum")->DispId, EnumeratorMember);
}

TEST(ImageCollection, OwnersHaveTheirNumbers) {
    EXPECT_EQ(iootUnknown, 0);
    EXPECT_EQ(iootPatient, 1);
    EXPECT_EQ(iootImageCard, 2);
    EXPECT_EQ(iootSeries, 3);
}

Ref<cImage> AddDistinct(cImages& images, const Ref<cComments>& comments, const String& key = {}) {
    return images.Add("url", 1, imggTypeDXPanoramic, "teeth", true, 2, Date{3}, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, "uid",
                      "lat", "region", "modifier", comments, "root", "hardware", 14, 15, 16, true, "capture", "resp",
                      key);
}

TEST(ImageCollection, AddSetsEachPropertyFromItsArgument) {
    const Ref<cImages> images = New<cImages>();
    const Ref<cComments> comments = New<cComments>();
    const Ref<cImage> image = AddDistinct(*images, comments);
    EXPECT_EQ(image->URL, "url");
    EXPECT_EQ(image->ID, 1);
    EXPECT_EQ(image->ImageType, imggTypeDXPanoramic);
    EXPECT_EQ(image->sTeeth, "teeth");
    EXPECT_TRUE(image->Approved);
    EXPECT_EQ(image->PatID, 2);
    EXPECT_EQ(image->dateTime, Date{3});
    EXPECT_EQ(image->MirrRotStatus, 4);
    EXPECT_EQ(image->DPIY, 5);
    EXPECT_EQ(image->DPIX, 6);
    EXPECT_EQ(image->RootId, 7);
    EXPECT_EQ(image->Pregnant, 8);
    EXPECT_EQ(image->ImageNumberInSeries, 9);
    EXPECT_EQ(image->DicomStatus, 10);
    EXPECT_EQ(image->studyID, 11);
    EXPECT_EQ(image->FrameNumber, 12);
    EXPECT_EQ(image->seriesID, 13);
    EXPECT_EQ(image->instanceUID, "uid");
    EXPECT_EQ(image->Laterality, "lat");
    EXPECT_EQ(image->AnaRegion, "region");
    EXPECT_EQ(image->AnaRegionMod, "modifier");
    EXPECT_EQ(image->Comments(), comments);
    EXPECT_EQ(image->Root_RootDirectory, "root");
    EXPECT_EQ(image->HWSourceTxt, "hardware");
    EXPECT_EQ(image->ApprGamma, 14);
    EXPECT_EQ(image->ApprBrightness, 15);
    EXPECT_EQ(image->ApprContrast, 16);
    EXPECT_TRUE(image->ApprInvert);
    EXPECT_EQ(image->CapturePerson, "capture");
    EXPECT_EQ(image->RespPerson, "resp");
}

TEST(ImageCollection, AddLeavesMembersWithoutAnArgumentAtTheirDefaults) {
    const Ref<cImages> images = New<cImages>();
    const Ref<cImage> image = AddDistinct(*images, New<cComments>(), "key");
    EXPECT_EQ(image->Key, "") << "a key of the collection is not the image's";
    EXPECT_EQ(image->CRC + image->ApprCrop, "");
    EXPECT_EQ(image->ExposureTime_ms + image->Current_mA + image->Voltage_kV + image->SubType + image->DCMDerived, 0);
}

TEST(ImageCollection, AddOfNullCommentsCreatesAnEmptyList) {
    const Ref<cImages> images = New<cImages>();
    EXPECT_EQ(AddDistinct(*images, nullptr)->Comments()->Count(), 0);
}

TEST(ImageCollection, AddFilesTheImageUnderItsKeyOrAtTheEnd) {
    const Ref<cImages> images = New<cImages>();
    const Ref<cImage> plain = AddDistinct(*images, nullptr);
    const Ref<cImage> keyed = AddDistinct(*images, nullptr, "Key");
    EXPECT_EQ(images->Item(Long{1}), plain);
    EXPECT_EQ(images->Item("kEY"), keyed);
    EXPECT_EQ(images->Count(), 2);
}

TEST(ImageCollection, ASecondAddUnderAKeyRaisesAndDropsTheNewMember) {
    const Ref<cImages> images = New<cImages>();
    const Ref<cImage> first = AddDistinct(*images, nullptr, "K");
    EXPECT_EQ(FailureOf([&] { AddDistinct(*images, nullptr, "k"); }).Number, 457);
    EXPECT_EQ(images->Count(), 1);
    EXPECT_EQ(images->Item("K"), first);
}

TEST(ImageCollection, AddObjectReturnsTheImageAndSetsTheCallersVariable) {
    const Ref<cImages> images = New<cImages>();
    Ref<cImage> variable = Image(5);
    cImage* const image = variable.Get();
    const Ref<cImage> added = images->AddObject(variable);
    EXPECT_FALSE(variable);
    EXPECT_EQ(added.Get(), image);
    EXPECT_EQ(images->Item(Long{1}), added);
    EXPECT_EQ(added->Key, "");
}

TEST(ImageCollection, AddObjectUnderAKeyStoresTheKeyInTheImage) {
    const Ref<cImages> images = New<cImages>();
    Ref<cImage> variable = Image(5);
    const Ref<cImage> added = images->AddObject(variable, "mine");
    EXPECT_EQ(added->Key, "mine");
    EXPECT_EQ(images->Item("MINE"), added);
}

TEST(ImageCollection, AddObjectByNameTakesTheCallersVariableToo) {
    const Ref<cImages> images = New<cImages>();
    std::vector<Variant> arguments{Variant(Image(5)), Variant("mine")};
    const Variant added = Invoke(*images, "AddObject", MemberKind::Operation, arguments);
    EXPECT_FALSE(To<Ref<cImage>>(arguments[0]));
    EXPECT_EQ(To<Ref<cImage>>(added)->ID, 5);
}

TEST(ImageCollection, AddObjectUnderAKeyThatIsPresentRaisesAfterSettingIt) {
    const Ref<cImages> images = New<cImages>();
    Ref<cImage> first = Image(1), second = Image(2);
    images->AddObject(first, "K");
    second->Key = "before";
    EXPECT_EQ(FailureOf([&] { images->AddObject(second, "k"); }).Number, 457);
    ASSERT_TRUE(second) << "the caller's variable stays";
    EXPECT_EQ(second->Key, "k");
    EXPECT_THAT(KeysOf(*images), ElementsAre(1));
}

TEST(ImageCollection, ItemOfAMissingMemberReturnsNull) {
    const Ref<cImages> images = New<cImages>();
    Ref<cImage> image = Image(1);
    images->AddObject(image, "K");
    EXPECT_FALSE(images->Item("missing"));
    for (const Long position : {0, 2, -1}) EXPECT_FALSE(images->Item(position)) << position;
    EXPECT_FALSE(images->Item(Null{}));
}

TEST(ImageCollection, RemoveOfAMissingMemberRaises) {
    const Ref<cImages> images = New<cImages>();
    Ref<cImage> image = Image(1);
    images->AddObject(image, "K");
    EXPECT_EQ(FailureOf([&] { images->Remove("missing"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { images->Remove(Long{2}); }).Number, 9);
    images->Remove("k");
    EXPECT_EQ(images->Count(), 0);
}

TEST(ImageCollection, NewEnumVisitsTheMembersInOrder) {
    const Ref<cImages> images = New<cImages>();
    for (const Long id : {3, 1, 2}) {
        Ref<cImage> image = Image(id);
        images->AddObject(image);
    }
    const Ref<Enumerator> walk = images->NewEnum();
    std::vector<Long> ids;
    for (Variant member; walk->Next(member);) ids.push_back(To<Ref<cImage>>(member)->ID);
    EXPECT_THAT(ids, ElementsAre(3, 1, 2));
}

// ---- loading ------------------------------------------------------------------------------------------

class LoadAll4Object : public WithDatabase {
protected:
    /// Stores an image with all that the reading needs.
    void Store(Long id, Long patient, Long series, const String& captured, Long root = 1) {
        Run("INSERT INTO ImageBild_T (ImageBildID, PatientID, Series_ID, DateCaptured_SD, Brightness_INT, "
            "Contrast_INT, ImageType, Invert_BT, RootId, GraphicURL_NVC) VALUES (" +
            CStr(id) + ", " + CStr(patient) + ", " + CStr(series) + ", '" + captured + "', 0, 0, 1, 0, " + CStr(root) +
            ", 'file " + CStr(id) + "')");
    }
    void StoreRoot() { Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '/images', 1)"); }

    Long Load(ImageOwnerOjectTypes owner, Long id, const String& clause = {}) {
        return images->LoadAll4Object(con, owner, id, clause);
    }

    Ref<cImages> images = New<cImages>();
};

#define SELECT_IMAGES "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId "
#define ORDERED " ORDER BY DateCaptured_SD, ImageBildID"

TEST_F(LoadAll4Object, SendsTheStatementOfItsOwner) {
    Load(iootPatient, 7);
    Load(iootSeries, 8);
    EXPECT_THAT(Sent(),
                ElementsAre(SELECT_IMAGES "where PatientID=7" ORDERED, SELECT_IMAGES "where Series_ID=8" ORDERED));
}

TEST_F(LoadAll4Object, AClauseIsUsedUnchangedInsteadOfOwnerAndKey) {
    for (const ImageOwnerOjectTypes owner : {iootUnknown, iootPatient, iootImageCard, iootSeries})
        Load(owner, 7, "where GraphicURL_NVC='it''s' or 1=1");
    for (const String& statement : Sent())
        EXPECT_EQ(statement, SELECT_IMAGES "where GraphicURL_NVC='it''s' or 1=1" ORDERED);
    EXPECT_EQ(Sent().size(), 4U);
}

TEST_F(LoadAll4Object, AnOwnerWithoutACaseSendsTheBareOrderWhichFails) {
    for (const ImageOwnerOjectTypes owner : {iootUnknown, iootImageCard}) {
        log.statements.clear();
        Ref<cImage> image = Image(1);
        images->AddObject(image);
        EXPECT_EQ(FailureOf([&] { Load(owner, 7); }).Number, static_cast<Long>(0x80040E14)) << owner;
        EXPECT_THAT(Sent(), ElementsAre(ORDERED));
        EXPECT_EQ(images->Count(), 0) << "a load starts from empty, even if its statement fails";
    }
}

TEST_F(LoadAll4Object, AClauseWithAnOrderOfItsOwnFails) {
    EXPECT_EQ(FailureOf([&] { Load(iootPatient, 7, "where PatientID=7 ORDER BY ImageBildID"); }).Number,
              static_cast<Long>(0x80040E14));
}

TEST_F(LoadAll4Object, OfAPatientOrASeriesWithoutImagesReturnsZero) {
    EXPECT_EQ(Load(iootPatient, 7), 0);
    EXPECT_EQ(Load(iootSeries, 7), 0);
    EXPECT_EQ(images->Count(), 0);
}

TEST_F(LoadAll4Object, FilesTheImagesByCaptureUnderTheirKeys) {
    StoreRoot();
    Store(1, 7, 70, "2024-03-03 00:00:00");
    Store(2, 7, 71, "2024-03-01 00:00:00");
    Store(4, 7, 70, "2024-03-02 00:00:00");
    Store(3, 7, 70, "2024-03-02 00:00:00");
    Store(5, 8, 70, "2024-03-02 00:00:00");
    EXPECT_EQ(Load(iootPatient, 7), 4);
    EXPECT_THAT(KeysOf(*images), ElementsAre(2, 3, 4, 1));
    for (const Long id : {1, 2, 3, 4}) EXPECT_EQ(images->Item("K" + CStr(id))->ID, id);
    EXPECT_FALSE(images->Item("K5"));
    EXPECT_EQ(Load(iootSeries, 70), 4);
    EXPECT_THAT(KeysOf(*images), ElementsAre(3, 4, 5, 1));
}

TEST_F(LoadAll4Object, ReadsTheImagesWholeButForTheirComments) {
    StoreRoot();
    Store(1, 7, 70, "2024-03-03 00:00:00");
    Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, commentString) "
        "VALUES ('2024-03-01 00:00:00', 's', 1, 1, 't')");
    Load(iootPatient, 7);
    const Ref<cImage> image = images->Item("K1");
    EXPECT_EQ(image->RootId, 1);
    EXPECT_EQ(image->Root_RootDirectory, "/images");
    EXPECT_EQ(image->seriesID, 70) << "read behind the root, whichever name its column has";
    EXPECT_EQ(image->MirrRotStatus, 1);
    EXPECT_EQ(image->Key, "");
    EXPECT_EQ(image->Comments()->Count(), 0);
}

TEST_F(LoadAll4Object, AnImageOfAnUnknownRootIsRead) {
    Store(1, 7, 70, "2024-03-03 00:00:00", 99);
    EXPECT_EQ(Load(iootPatient, 7), 1);
    EXPECT_EQ(images->Item("K1")->RootId, 99);
    EXPECT_EQ(images->Item("K1")->seriesID, 70);
}

TEST_F(LoadAll4Object, ASecondLoadReplacesTheFirst) {
    Store(1, 7, 70, "2024-03-03 00:00:00");
    Store(2, 8, 70, "2024-03-03 00:00:00");
    Load(iootPatient, 7);
    const Ref<cImage> before = images->Item("K1");
    EXPECT_EQ(Load(iootPatient, 8), 1);
    EXPECT_THAT(KeysOf(*images), ElementsAre(2));
    EXPECT_EQ(Load(iootPatient, 7), 1);
    EXPECT_FALSE(images->Item("K1") == before);
}

TEST_F(LoadAll4Object, ImagesThatTheCallerAddedGoToo) {
    Ref<cImage> image = Image(1);
    images->AddObject(image, "mine");
    EXPECT_EQ(Load(iootPatient, 7), 0);
    EXPECT_FALSE(images->Item("mine"));
}

TEST_F(LoadAll4Object, APartlyReadRowHasKeyZero) {
    Store(1, 7, 70, "2024-03-01 00:00:00");
    Store(2, 7, 70, "2024-03-02 00:00:00");
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID = 1");
    EXPECT_EQ(Load(iootPatient, 7), 2);
    EXPECT_EQ(images->Item("K0"), images->Item(Long{1}));
    EXPECT_EQ(images->Item("K2")->ID, 2);
}

TEST_F(LoadAll4Object, ASecondHalfReadRowRaisesAndKeepsThoseBefore) {
    for (const Long id : {1, 2, 3}) Store(id, 7, 70, "2024-03-0" + CStr(id) + " 00:00:00");
    Run("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID <> 2");
    EXPECT_EQ(FailureOf([&] { Load(iootPatient, 7); }).Number, 457);
    EXPECT_THAT(KeysOf(*images), ElementsAre(0, 2));
}

TEST_F(LoadAll4Object, AFailureOfTheDatabasePassesUnchanged) {
    Run("DROP TABLE Root_T");
    const Error plain = FailureOf([&] { con->Execute(SELECT_IMAGES "where PatientID=7" ORDERED); });
    Ref<cImage> image = Image(1);
    images->AddObject(image);
    const Error failure = FailureOf([&] { Load(iootPatient, 7); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, plain.Source) << "an operation without a handler puts no name in front";
    EXPECT_EQ(failure.Description, plain.Description);
    EXPECT_EQ(images->Count(), 0);
}

TEST_F(LoadAll4Object, NegativeKeysAndADecimalCommaChangeNothing) {
    const InLocale comma(DecimalComma);
    Load(iootPatient, -1234567);
    EXPECT_THAT(Sent(), ElementsAre(SELECT_IMAGES "where PatientID=-1234567" ORDERED));
    EXPECT_THAT(KeysOf(*images), IsEmpty());
}

}  // namespace
}  // namespace OXClass
