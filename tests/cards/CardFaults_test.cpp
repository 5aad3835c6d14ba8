#include "cards/cImagecard.h"

#include "kit/FaultyProvider.h"

/// The state after a failure of the database while a card is saved: each call fails once.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Rows as texts, so that a state of the tables is one list.
class CardFaults : public WithFaults {
protected:
    std::vector<String> Texts(const String& select) {
        std::vector<String> texts;
        const Ref<Recordset> rs = Connect()->Execute(select);
        for (; !rs->Eof(); rs->MoveNext()) texts.push_back(To<String>(rs->Fields(0).Value()));
        return texts;
    }
    /// "key:name"
    std::vector<String> Cards() {
        return Texts("SELECT ImageCardID || ':' || ICName FROM ImageCard_T ORDER BY ImageCardID");
    }
    /// "key:card:image:sequence"
    std::vector<String> Images() {
        return Texts(
            "SELECT ImageAttributeID || ':' || ImageCardID || ':' || ImageBildId || ':' || IASequence"
            " FROM ImageAttribute_T ORDER BY ImageAttributeID");
    }
    /// "placed image:text"
    std::vector<String> Steps() {
        return Texts(
            "SELECT ImageAttributeID || ':' || StringParameter FROM ImageManipulation_T"
            " ORDER BY ImageManipulationID");
    }

    Ref<cImagecardAttribute> Place(Long image, const std::vector<String>& texts) {
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placed->ImageID = image;
        for (const String& text : texts) {
            const Ref<cImageManipulation> step = New<cImageManipulation>();
            step->ManipulationType = ManRotate;
            step->StringParameter = text;
            placed->Manipulations->Add(step);
        }
        card->ImagecardAttributes->Add(placed);
        return placed;
    }

    /// Saves with this call failing, which the save must raise unchanged.
    void FailsAt(int call) {
        FailAtCall(call);
        const Error failure = FailureOf([&] { card->Save(faulty); });
        FailAtCall(0);
        EXPECT_EQ(failure.Number, static_cast<Long>(0x80004005));
        EXPECT_EQ(failure.Source, "SQLite");
        EXPECT_EQ(failure.Description, "injected");
    }

    /// Saves while this call fails. The save must not report the failure.
    void SwallowsAt(int call) {
        FailAtCall(call);
        bool saved = false;
        const Error failure = FailureOf([&] { saved = card->Save(faulty); });
        EXPECT_GE(CallsSoFar(), call);
        FailAtCall(0);
        EXPECT_EQ(failure.Number, 0) << failure.Description;
        EXPECT_TRUE(saved);
    }

    /// The calls of a save of which none fails.
    int Calls() {
        FailAtCall(0);
        EXPECT_TRUE(card->Save(faulty));
        return CallsSoFar();
    }

    const Ref<cImagecard> card = New<cImagecard>();
};

// ---- a new card with two placed images --------------------------------------------------------------

/// Calls: 1 card, 2 its key, 3 first image, 4 its key, 5 its stored steps, 6 and 7 its steps, 8 second image,
/// 9 its key, 10 its stored steps, 11 its step.
class NewCard : public CardFaults {
protected:
    NewCard() {
        card->ICName = "new";
        card->ICPID = 3;
        first->ICID = second->ICID = 900;
    }
    const Ref<cImagecardAttribute> first = Place(40, {"a", "b"});
    const Ref<cImagecardAttribute> second = Place(41, {"c"});
};

TEST_F(NewCard, IsWrittenInElevenCalls) {
    EXPECT_EQ(Calls(), 11);
    EXPECT_THAT(Cards(), ElementsAre("1:new"));
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("1:a", "1:b", "2:c"));
}

TEST_F(NewCard, AtItsInsertWritesNothing) {
    FailsAt(1);
    EXPECT_THAT(Cards(), IsEmpty());
    EXPECT_THAT(Images(), IsEmpty());
    EXPECT_EQ(card->ICID, 0);
    EXPECT_EQ(first->IASequence, 0);
}

TEST_F(NewCard, AtItsKeyStaysNewThoughTheRowIsWritten) {
    FailsAt(2);
    EXPECT_THAT(Cards(), ElementsAre("1:new"));
    EXPECT_THAT(Images(), IsEmpty());
    EXPECT_EQ(card->ICID, 0);
    EXPECT_EQ(first->ICID, 900);
    EXPECT_EQ(Calls(), 11);
    EXPECT_THAT(Cards(), ElementsAre("1:new", "2:new")) << "a second save writes it again";
}

TEST_F(NewCard, AtTheFirstImageKeepsTheCardAndItsKey) {
    FailsAt(3);
    EXPECT_THAT(Cards(), ElementsAre("1:new"));
    EXPECT_THAT(Images(), IsEmpty());
    EXPECT_EQ(card->ICID, 1);
    EXPECT_EQ(first->ICID, 1);
    EXPECT_EQ(second->ICID, 1);
    EXPECT_EQ(first->IASequence, 1);
    EXPECT_EQ(second->IASequence, 0);
}

TEST_F(NewCard, AtTheKeyOfTheFirstImageLeavesItNewThoughItsRowIsWritten) {
    FailsAt(4);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1"));
    EXPECT_THAT(Steps(), IsEmpty());
    EXPECT_EQ(first->ID, 0);
    EXPECT_EQ(Calls(), 10) << "the card is an update now, one call less than an insert";
    EXPECT_THAT(Cards(), ElementsAre("1:new"));
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:40:1", "3:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("2:a", "2:b", "3:c"));
}

TEST_F(NewCard, AtTheStoredStepsOfTheFirstImageLosesThemUnreported) {
    SwallowsAt(5);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("2:c"));
}

TEST_F(NewCard, AtTheFirstStepLosesAllOfThatImageUnreported) {
    SwallowsAt(6);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("2:c"));
}

TEST_F(NewCard, AtTheSecondStepKeepsTheFirstUnreported) {
    SwallowsAt(7);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("1:a", "2:c"));
}

TEST_F(NewCard, AtTheSecondImageKeepsTheFirst) {
    FailsAt(8);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1"));
    EXPECT_THAT(Steps(), ElementsAre("1:a", "1:b"));
    EXPECT_EQ(first->ID, 1);
    EXPECT_EQ(second->ID, 0);
    EXPECT_EQ(second->IASequence, 2);
}

TEST_F(NewCard, AtTheKeyOfTheSecondImageKeepsBothRows) {
    FailsAt(9);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("1:a", "1:b"));
    EXPECT_EQ(second->ID, 0);
}

TEST_F(NewCard, AtTheStoredStepsOfTheSecondImageLosesItsStepUnreported) {
    SwallowsAt(10);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("1:a", "1:b"));
    EXPECT_EQ(second->ID, 2);
}

TEST_F(NewCard, AtTheLastStepLosesItUnreported) {
    SwallowsAt(11);
    EXPECT_THAT(Images(), ElementsAre("1:1:40:1", "2:1:41:2"));
    EXPECT_THAT(Steps(), ElementsAre("1:a", "1:b"));
}

// ---- a known card with a changed, a deleted and a new placed image ----------------------------------

/// Calls: 1 card, 2 changed image, 3 its stored steps, 4 their deletion, 5 and 6 its steps, 7 deletion of the
/// second image, 8 its stored steps, 9 and 10 their deletions, 11 new image, 12 its key, 13 its stored steps,
/// 14 its step.
class KnownCard : public CardFaults {
protected:
    KnownCard() {
        Run("INSERT INTO ImageCard_T (ImageCardID, PatientID, ICName) VALUES (7, 3, 'old')");
        Run("INSERT INTO ImageAttribute_T (ImageAttributeID, ImageCardID, ImageBildId, IASequence)"
            " VALUES (21, 7, 40, 8), (22, 7, 41, 9)");
        Run("INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter,"
            " StringParameter) VALUES (21, 1, 6, 0, 'old'), (22, 1, 6, 0, 'x'), (22, 2, 6, 0, 'y')");
        card->ICID = 7;
        card->ICPID = 3;
        card->ICName = "new";
        changed->ID = 21;
        gone->ID = 22;
        gone->ToBeDeleted = true;
        changed->ICID = gone->ICID = fresh->ICID = 7;
    }

    void ExpectNoChangeOfTheDeletedImage() {
        EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "22:7:41:9"));
        EXPECT_THAT(Steps(), ElementsAre("22:x", "22:y", "21:a", "21:b"));
        EXPECT_EQ(gone->IASequence, 2);
        EXPECT_EQ(fresh->IASequence, 0);
    }

    const Ref<cImagecardAttribute> changed = Place(40, {"a", "b"});
    const Ref<cImagecardAttribute> gone = Place(41, {});
    const Ref<cImagecardAttribute> fresh = Place(42, {"c"});
};

TEST_F(KnownCard, IsWrittenInFourteenCalls) {
    EXPECT_EQ(Calls(), 14);
    EXPECT_THAT(Cards(), ElementsAre("7:new"));
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "21:b", "23:c"));
}

TEST_F(KnownCard, AtItsUpdateChangesNothing) {
    FailsAt(1);
    EXPECT_THAT(Cards(), ElementsAre("7:old"));
    EXPECT_THAT(Images(), ElementsAre("21:7:40:8", "22:7:41:9"));
    EXPECT_THAT(Steps(), ElementsAre("21:old", "22:x", "22:y"));
    EXPECT_EQ(changed->IASequence, 0);
}

TEST_F(KnownCard, AtTheChangedImageKeepsTheCard) {
    FailsAt(2);
    EXPECT_THAT(Cards(), ElementsAre("7:new"));
    EXPECT_THAT(Images(), ElementsAre("21:7:40:8", "22:7:41:9"));
    EXPECT_THAT(Steps(), ElementsAre("21:old", "22:x", "22:y"));
    EXPECT_EQ(changed->IASequence, 1);
}

TEST_F(KnownCard, AtTheStoredStepsKeepsTheOldOnesUnreported) {
    SwallowsAt(3);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:old", "23:c"));
}

TEST_F(KnownCard, AtTheDeletionOfTheStoredStepsKeepsTheOldOnesUnreported) {
    SwallowsAt(4);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:old", "23:c"));
}

TEST_F(KnownCard, AtTheFirstStepLosesTheOldOnesUnreported) {
    SwallowsAt(5);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("23:c"));
}

TEST_F(KnownCard, AtTheSecondStepKeepsTheFirstUnreported) {
    SwallowsAt(6);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "23:c"));
}

TEST_F(KnownCard, AtTheDeletionOfAnImageKeepsItWithItsSteps) {
    FailsAt(7);
    EXPECT_THAT(Cards(), ElementsAre("7:new"));
    ExpectNoChangeOfTheDeletedImage();
    EXPECT_EQ(Calls(), 14) << "a second save does it all";
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "21:b", "23:c"));
}

TEST_F(KnownCard, AtTheStepsOfTheDeletedImageLosesItsRowAlone) {
    FailsAt(8);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1"));
    EXPECT_THAT(Steps(), ElementsAre("22:x", "22:y", "21:a", "21:b"));
}

TEST_F(KnownCard, AtTheFirstStepOfTheDeletedImageKeepsBoth) {
    FailsAt(9);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1"));
    EXPECT_THAT(Steps(), ElementsAre("22:x", "22:y", "21:a", "21:b"));
}

TEST_F(KnownCard, AtTheSecondStepOfTheDeletedImageKeepsThatOne) {
    FailsAt(10);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1"));
    EXPECT_THAT(Steps(), ElementsAre("22:y", "21:a", "21:b"));
    EXPECT_EQ(fresh->IASequence, 0);
}

TEST_F(KnownCard, AtTheNewImageKeepsTheDeletion) {
    FailsAt(11);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "21:b"));
    EXPECT_EQ(fresh->IASequence, 3);
    EXPECT_EQ(fresh->ID, 0);
}

TEST_F(KnownCard, AtTheKeyOfTheNewImageLeavesItNewThoughItsRowIsWritten) {
    FailsAt(12);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "21:b"));
    EXPECT_EQ(fresh->ID, 0);
}

TEST_F(KnownCard, AtTheStoredStepsOfTheNewImageLosesItsStepUnreported) {
    SwallowsAt(13);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "21:b"));
    EXPECT_EQ(fresh->ID, 23);
}

TEST_F(KnownCard, AtTheLastStepLosesItUnreported) {
    SwallowsAt(14);
    EXPECT_THAT(Images(), ElementsAre("21:7:40:1", "23:7:42:3"));
    EXPECT_THAT(Steps(), ElementsAre("21:a", "21:b"));
}

// ---- loading ----------------------------------------------------------------------------------------

TEST_F(KnownCard, ALoadThatFailsAtTheCardRaisesAndLeavesTheObject) {
    FailAtCall(1);
    const Error failure = FailureOf([&] { card->GetImageCard(faulty, 7); });
    FailAtCall(0);
    EXPECT_EQ(failure.Source, "SQLite");
    EXPECT_EQ(failure.Description, "injected");
    EXPECT_EQ(card->ICName, "new");
    EXPECT_EQ(card->ImagecardAttributes->Count(), 3);
}

TEST_F(KnownCard, ALoadThatFailsAtThePlacedImagesShowsATextBoxAndKeepsTheOldOnes) {
    const TextBoxes boxes;
    FailAtCall(1);
    EXPECT_EQ(card->LoadImageAttributes(faulty), 0);
    EXPECT_EQ(boxes.shown.size(), 1U);
    EXPECT_EQ(card->ImagecardAttributes->Count(), 3);
}

TEST_F(KnownCard, ALoadThatFailsAtTheStepsOfOneImageContinuesUnreported) {
    const TextBoxes boxes;
    FailAtCall(2);
    EXPECT_EQ(card->LoadImageAttributes(faulty), 2);
    EXPECT_EQ(CallsSoFar(), 3);
    EXPECT_THAT(boxes.shown, IsEmpty());
    std::vector<Long> counts;
    for (const cImagecardAttribute& placed : Each<cImagecardAttribute>(*card->ImagecardAttributes))
        counts.push_back(placed.Manipulations->Count());
    EXPECT_THAT(counts, ElementsAre(0, 2));
}

}  // namespace
}  // namespace OXClass
