#include "frame/Statement.h"
#include "images/cImages.h"
#include "kit/FaultyProvider.h"
#include "kit/Random.h"
#include "platform/component/dispatch/Interface.h"

/// On a connection without handlers an image is saved without joining its statement, and read straight from the engine.
namespace OXClass {
namespace {

using namespace TestKit;

class WithoutHandlers : public WithFaults {
protected:
    WithoutHandlers() { Run("INSERT INTO Root_T (RootId, RootDirectory, Status) VALUES (1, '/films', 1)"); }

    /// Returns an image with random properties, of which the texts have paired quotes only.
    Ref<cImage> Random() {
        const auto text = [&] {
            const char* const texts[] = {
                "", "a", "it''s", "''", "Ωж日🦷", "-5", "12", " x ", "\\", "?1", "a long text of two words"};
            return String(texts[random_.Below(std::size(texts))]);
        };
        const auto number = [&] {
            const Long numbers[] = {0, 1, -1, 12, 577, INT32_MAX, INT32_MIN};
            return numbers[random_.Below(std::size(numbers))];
        };
        const Ref<cImage> image = New<cImage>();
        for (String* each :
             {&image->URL, &image->CRC, &image->HWSourceTxt, &image->CapturePerson, &image->RespPerson, &image->sTeeth,
              &image->AnaRegion, &image->AnaRegionMod, &image->instanceUID, &image->ApprCrop})
            *each = text();
        image->Laterality = text().substr(0, 16);  // the width of its column, which servers check
        for (Long* each :
             {&image->SubType, &image->ExposureTime_ms, &image->Current_mA, &image->Voltage_kV, &image->DPIX,
              &image->DPIY, &image->MirrRotStatus, &image->ApprBrightness, &image->ApprContrast, &image->ApprGamma,
              &image->studyID, &image->seriesID, &image->ImageNumberInSeries})
            *each = number();
        image->PatID = 7;
        image->RootId = static_cast<Long>(random_.Below(2));
        image->FrameNumber = number();
        image->Pregnant = random_.Below(2) == 0 ? 10 : -3;
        image->Approved = random_.Below(2) == 0;
        image->ApprInvert = random_.Below(2) == 0;
        image->dateTime = Date{number() % 100000 + 0.25};
        image->addComment(text(), text(), Date{45000.5}, false);
        return image;
    }

    static std::vector<Variant> RowOf(const Ref<Connection>& from, Long id) {
        std::vector<Variant> values;
        const Ref<Recordset> rs = from->Execute(sql("SELECT * FROM ImageBild_T WHERE ImageBildID=", id));
        for (Long i = 0; i < rs->FieldCount(); ++i)
            if (rs->Fields(i).Name() != "ImageBildID") values.push_back(rs->Fields(i).Value());
        return values;
    }

    /// Returns the values of all properties that a client can read.
    static std::vector<Variant> PropertiesOf(const Ref<cImage>& image) {
        std::vector<Variant> values;
        for (const Member& member : image->Describe().Members())
            if (member.Kind == MemberKind::Get && member.Name != "Comments")
                values.push_back(Invoke(*image, member.Name, MemberKind::Get, {}));
        return values;
    }

    const Ref<Connection> plain = Connect();
    TestKit::Random random_;
};

TEST_F(WithoutHandlers, AnImageIsStoredAndLoadedAsWithHandlers) {
    OXCLASS_ONLY_IF(KeepsLongTexts());
    for (int round = 0; round < 200; ++round) {
        const Ref<cImage> image = Random();
        image->ID = 0;
        image->Save(con);
        const Long logged = image->ID;
        image->ID = 0;
        for (cStringItem& comment : *image->Comments()) comment.bSaved = false;
        image->Save(plain);
        ASSERT_NE(image->ID, logged);
        ASSERT_EQ(RowOf(plain, image->ID), RowOf(plain, logged));

        const Ref<cImage> changed = Random();
        for (const Long id : {logged, image->ID}) {
            changed->ID = id;
            changed->Save(id == logged ? con : plain);
        }
        ASSERT_EQ(RowOf(plain, image->ID), RowOf(plain, logged));

        const Ref<cImage> one = New<cImage>(), other = New<cImage>();
        ASSERT_TRUE(one->GetImage(con, logged) && other->GetImage(plain, logged));
        ASSERT_EQ(PropertiesOf(one), PropertiesOf(other));
    }
    const Ref<cImages> one = New<cImages>(), other = New<cImages>();
    EXPECT_EQ(one->LoadAll4Object(con, iootPatient, 7), 400);
    EXPECT_EQ(other->LoadAll4Object(plain, iootPatient, 7), 400);
    for (Long i = 1; i <= 400; ++i) ASSERT_EQ(PropertiesOf(one->Item(i)), PropertiesOf(other->Item(i)));
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM Comments_T"), Variant(Long{600}));
}

TEST_F(WithoutHandlers, AStatementThatFailsAtALaterRowLeavesNoImages) {
    for (int i = 0; i < 3; ++i) Random()->Save(plain);
    const Ref<cImages> images = New<cImages>();
    EXPECT_EQ(images->LoadAll4Object(faulty, iootPatient, 7), 3);
    FailAtRow(3);
    EXPECT_EQ(FailureOf([&] { images->LoadAll4Object(faulty, iootPatient, 7); }).Description, "injected");
    EXPECT_EQ(images->Count(), 0);
    EXPECT_TRUE(images->Unread().empty());
}

TEST_F(WithoutHandlers, NoStatementStaysOpenBehindALoad) {
    for (int i = 0; i < 3; ++i) Random()->Save(plain);
    const Ref<cImage> image = New<cImage>();
    ASSERT_TRUE(image->GetImage(plain, 1));
    plain->Execute("DROP TABLE Root_T");  // fails while a statement reads it
    EXPECT_EQ(FailureOf([&] { image->GetImage(plain, 1); }).Number, ADODB::NoTable);
}

}  // namespace
}  // namespace OXClass
