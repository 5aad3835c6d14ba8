#include "AnyEngine.h"
#include "kit/FaultyProvider.h"

#include <gmock/gmock.h>

/// Moving records to another patient, merging patients, and correcting images.
namespace {

using AnyEngine::FullMouth18;
using AnyEngine::json;
using AnyEngine::Result;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Arguments = std::vector<std::string>;

/// Three patients: #1 has a study of two series (images 1 to 3, and 4), #2 a study with images 5 and 6, #3 nothing.
class OnServerCorrections : public AnyEngine::Clinic {
protected:
    void SetUp() override {
        Clinic::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        WriteSeries("2.25.5", {FullMouth18[7], FullMouth18[8], FullMouth18[9]});
        Write("2.25.6", 1, FullMouth18[10], [](DcmDataset& set) {
            set.putAndInsertString(DCM_StudyInstanceUID, "2.25.5.900");
            set.putAndInsertString(DCM_PatientID, "p-2.25.5");
        });
        WriteSeries("2.25.7", {FullMouth18[7], FullMouth18[10]});
        Ok({"import", Films()});
        Ok({"patient", "new", "PatientID=C", "LastName=Test", "FirstName=Anna"});
        Execute(
            "UPDATE Study_T SET Studydesc = 'Full mouth, O''''Brien', StudyDateTime = '2026-01-02 09:00:00', "
            "accessionNumber = 'A1' WHERE Study_ID = 1");
    }
    ~OnServerCorrections() override { TestKit::FailAtCall(0); }

    /// Returns all rows that a person can change.
    std::string Rows() const {
        std::string text;
        for (const char* table : {"Patient_T", "Study_T", "Series_T", "ImageBild_T", "Comments_T", "ImageCard_T",
                                  "ImageAttribute_T", "ImageManipulation_T", "PatientIssuer_T", "ImportedImage_T"})
            text += std::string(table) + "\n" + All(std::string("SELECT * FROM ") + table + " ORDER BY 1");
        return text;
    }

    /// Each image is in a series of a study of its own patient, and `check` finds nothing to repair.
    void ExpectSound() {
        EXPECT_EQ(All("SELECT i.ImageBildID FROM ImageBild_T i LEFT JOIN Series_T s ON s.Series_ID = i.Series_ID LEFT "
                      "JOIN Study_T t ON t.Study_ID = i.Study_ID LEFT JOIN Patient_T p ON p.PatientID = i.PatientID "
                      "WHERE s.Study_ID IS NULL OR s.Study_ID <> i.Study_ID OR t.PatientID IS NULL OR t.PatientID <> "
                      "i.PatientID OR p.PatientID IS NULL"),
                  "");
        EXPECT_EQ(All("SELECT a.ImageAttributeID FROM ImageAttribute_T a JOIN ImageCard_T c ON c.ImageCardID = "
                      "a.ImageCardID JOIN ImageBild_T i ON i.ImageBildID = a.ImageBildId WHERE c.PatientID <> "
                      "i.PatientID"),
                  "")
            << "a card that shows two people";
        const json found = json::parse(Run({"check", "--json"}).out);
        EXPECT_EQ(found["open"], 0) << found.dump(1);
        EXPECT_EQ(All("SELECT Series_ID FROM Series_T s WHERE NumberOfImages <> (SELECT count(*) FROM ImageBild_T i "
                      "WHERE i.Series_ID = s.Series_ID)"),
                  "");
    }

    /// Runs a command with --dry-run and then in earnest: the first changes nothing, and both report the same.
    json Tried(Arguments arguments) {
        const std::string before = Rows();
        Arguments dry = arguments;
        dry.emplace_back("--dry-run");
        const json planned = OkJson(dry);
        EXPECT_EQ(Rows(), before);
        const json done = OkJson(std::move(arguments));
        EXPECT_EQ(planned["changes"], done["changes"]);
        EXPECT_EQ(planned["dry_run"], true);
        EXPECT_EQ(done["dry_run"], false);
        EXPECT_NE(Rows(), before);
        ExpectSound();
        return done;
    }

    /// A failure of any call to the database leaves all rows as they were, or as the whole change makes them.
    void ExpectWholeOrNothing(const Arguments& command) {
        TestKit::InstallFaultyProvider();
        const std::string before = Rows();
        int call = 1;
        for (;; call += CallStep()) {
            SCOPED_TRACE("failure at call " + std::to_string(call));
            TestKit::FailAtCall(call);
            const Result run = On(TestKit::FaultyVersionOf(Settings()), command);
            const bool all = TestKit::CallsSoFar() < call;
            TestKit::FailAtCall(0);
            if (all) {
                EXPECT_EQ(run.code, 0) << run.err;
                break;
            }
            if (run.code == 0) {  // the failure was one of a question that may fail
                ADD_FAILURE() << run.out << run.err;
                break;
            }
            ASSERT_EQ(Rows(), before) << run.err;
        }
        EXPECT_GT(call, 10);
        EXPECT_NE(Rows(), before);
        ExpectSound();
    }

    /// Returns the patients of all series, by the keys of the series.
    std::string OwnersOfSeries() const {
        return All("SELECT t.PatientID FROM Series_T s JOIN Study_T t ON t.Study_ID = s.Study_ID ORDER BY s.Series_ID");
    }

    std::string CommentsOn(int image) {
        std::string text;
        for (const json& comment : OkJson({"comment", std::to_string(image)}))
            text += comment["signature"].get<std::string>() + ": " + comment["comment"].get<std::string>() + "\n";
        return text;
    }
};

TEST_F(OnServerCorrections, AStudyMovesWithAllThatBelongsToIt) {
    Tried({"move", "study", "1", "--to", "C", "--by", "AB"});
    EXPECT_EQ(All("SELECT Study_ID, PatientID, StudyInstanceUID FROM Study_T ORDER BY 1"),
              "1 3 2.25.5.900\n2 2 2.25.7.900\n");
    EXPECT_EQ(All("SELECT ImageBildID FROM ImageBild_T WHERE PatientID = 3 ORDER BY 1"), "1\n2\n3\n4\n");
    for (const int image : {1, 2, 3, 4}) EXPECT_EQ(CommentsOn(image), "AB: Moved from patient #1 P-2.25.5 to #3 C\n");
    EXPECT_EQ(CommentsOn(5), "");
    EXPECT_EQ(OkJson({"import", Films()})["known"], 6) << "the files are still those of the images";
}

TEST_F(OnServerCorrections, ASeriesMovesIntoANewStudyWithTheDateAndTheDescription) {
    Tried({"move", "series", "1", "--to", "C"});
    EXPECT_EQ(OwnersOfSeries(), "3\n1\n2\n");
    const json studies = OkJson({"studies", "--patient", "C"});
    ASSERT_EQ(studies.size(), 1U);
    EXPECT_EQ(studies[0]["description"], "Full mouth, O'Brien");
    EXPECT_EQ(studies[0]["date"], "2026-01-02 09:00:00");
    EXPECT_NE(studies[0]["uid"], "2.25.5.900") << "two studies never have one UID";
    EXPECT_EQ(All("SELECT accessionNumber FROM Study_T WHERE PatientID = 3"), "\n")
        << "the order is the other patient's";
    EXPECT_EQ(OkJson({"import", Films()})["known"], 6);
}

TEST_F(OnServerCorrections, WhatMovesInPartsMovesAsAWhole) {
    Tried({"move", "series", "3", "--to", "C"});
    EXPECT_EQ(All("SELECT PatientID FROM Study_T ORDER BY Study_ID"), "1\n3\n") << "the study has no other series";
    Tried({"move", "image", "1", "2", "3", "--to", "C"});
    EXPECT_EQ(OwnersOfSeries(), "3\n1\n3\n") << "all images of the series";
    Tried({"move", "image", "4", "--to", "C"});
    EXPECT_EQ(All("SELECT PatientID FROM Study_T ORDER BY Study_ID"), "3\n3\n3\n");
    EXPECT_EQ(OkJson({"series"}).size(), 3U);
}

TEST_F(OnServerCorrections, ImagesMoveIntoANewSeriesAndBothAreHungAgain) {
    EXPECT_EQ(OkJson({"series", "1"})["layout"], 7);
    Tried({"move", "image", "1", "3", "--to", "P-2.25.7", "--by", "it's me"});
    EXPECT_EQ(All("SELECT PatientID FROM ImageBild_T ORDER BY ImageBildID"), "2\n1\n2\n1\n2\n2\n");
    EXPECT_EQ(OwnersOfSeries(), "1\n1\n2\n2\n");
    EXPECT_EQ(OkJson({"series", "1"})["layout"], 8);
    const json made = OkJson({"series", "--patient", "P-2.25.7", "--sort", "-series"})[0];
    EXPECT_EQ(made["layout"], 8);
    EXPECT_EQ(made["images"], 2);
    EXPECT_EQ(made["modality"], "IO");
    EXPECT_EQ(CommentsOn(1), "it's me: Moved from patient #1 P-2.25.5 to #2 P-2.25.7\n");
    EXPECT_EQ(All("SELECT count(*) FROM Series_T GROUP BY SeriesInstanceUID HAVING count(*) > 1"), "");
}

TEST_F(OnServerCorrections, ACardMovesIfAllOfItsImagesDo) {
    Ok({"card", "new", "P-2.25.5", "all"});
    Ok({"card", "add", "IC1", "1", "2"});
    Ok({"card", "new", "P-2.25.5", "mixed"});
    Ok({"card", "add", "IC2", "1", "4"});
    Ok({"card", "move", "IC2", "3", "--turn", "90"});
    const std::string before = Rows();
    EXPECT_THAT(Refused({"move", "series", "1", "--to", "C"}),
                HasSubstr("card IC2 \"mixed\" of patient #1 P-2.25.5 shows images that move beside others"));
    EXPECT_EQ(Rows(), before);
    Tried({"move", "series", "1", "--to", "C", "--force"});
    EXPECT_EQ(All("SELECT PatientID FROM ImageCard_T ORDER BY 1"), "1\n3\n");
    EXPECT_EQ(All("SELECT ImageBildId FROM ImageAttribute_T WHERE ImageCardID = 2"), "4\n");
    EXPECT_EQ(RowCount("ImageManipulation_T"), 0);
}

TEST_F(OnServerCorrections, WhatCannotBeMovedIsNamed) {
    const std::string before = Rows();
    EXPECT_THAT(Refused({"move", "image", "1", "99", "--to", "C"}),
                HasSubstr("there is no image 99; see: oxclass images"));
    EXPECT_THAT(Refused({"move", "series", "99", "--to", "C"}), HasSubstr("there is no series 99"));
    EXPECT_THAT(Refused({"move", "study", "99", "--to", "C"}), HasSubstr("there is no study 99; see: oxclass studies"));
    EXPECT_THAT(Refused({"move", "study", "1", "--to", "nobody"}), HasSubstr("there is no patient nobody"));
    EXPECT_THAT(Refused({"move", "study", "1", "--to", "P-2"}), HasSubstr("2 patients fit"));
    for (const char* kind : {"study", "series", "image"})
        EXPECT_THAT(Refused({"move", kind, "1", "--to", "P-2.25.5"}),
                    HasSubstr("belongs to patient #1 P-2.25.5 already"));
    EXPECT_THAT(Refused({"move", "image", "1", "--to", "C", "--by", std::string(151, 'x')}), HasSubstr("at most 150"));
    EXPECT_THAT(Refused({"move", "image", "x", "--to", "C"}), HasSubstr("\"x\" is not the number of an image"));
    Execute("UPDATE ImageBild_T SET Brightness_INT = NULL WHERE ImageBildID = 2");
    EXPECT_THAT(Refused({"move", "image", "1", "--to", "C"}), HasSubstr("image 2 can't be read whole"));
    Execute("UPDATE ImageBild_T SET Brightness_INT = 0 WHERE ImageBildID = 2");
    EXPECT_EQ(Rows(), before);
}

TEST_F(OnServerCorrections, AnImageWithoutASeriesMovesToo) {
    Execute("UPDATE ImageBild_T SET Series_ID = 0, Study_ID = 0 WHERE ImageBildID = 6");
    Ok({"move", "image", "6", "--to", "C"});
    EXPECT_EQ(All("SELECT PatientID, Series_ID, Study_ID FROM ImageBild_T WHERE ImageBildID = 6"), "3 0 0\n");
}

TEST_F(OnServerCorrections, TheUserOfTheSystemSigns) {
    const json done = OkJson({"move", "series", "3", "--to", "C"});
    EXPECT_NE(done["signature"], "");
    EXPECT_THAT(CommentsOn(5), HasSubstr(done["signature"].get<std::string>() + ": Moved from patient"));
}

TEST_F(OnServerCorrections, AMoveIsWholeOrNothingWhateverStatementFails) {
    Ok({"card", "new", "P-2.25.5", "mixed"});
    Ok({"card", "add", "IC1", "1", "4"});
    ExpectWholeOrNothing({"move", "image", "1", "--to", "C", "--force"});
}

TEST_F(OnServerCorrections, AMergeGivesEverythingToThePatientWhoStays) {
    Ok({"patient", "P-2.25.5", "OtherIDs=OLD", "Address=Main St 1", "Comments=allergic", "Issuer=X",
        "BirthDate=1980-01-31"});
    Ok({"patient", "C", "Comments=afraid", "OtherIDs=C2"});
    Ok({"card", "new", "P-2.25.5", "a card"});
    const json done = Tried({"merge", "P-2.25.5", "--into", "C", "--by", "AB"});
    EXPECT_EQ(All("SELECT PatientID FROM Patient_T ORDER BY 1"), "2\n3\n");
    const json kept = OkJson({"patient", "C"});
    EXPECT_EQ(kept["OtherIDs"], "C2\\P-2.25.5\\OLD");
    EXPECT_EQ(kept["Address"], "Main St 1");
    EXPECT_EQ(kept["BirthDate"], "1980-01-31");
    EXPECT_THAT(kept["Comments"].get<std::string>(), HasSubstr("afraid\nallergic\n20"));
    EXPECT_THAT(kept["Comments"].get<std::string>(), HasSubstr(" AB: merged with patient #1 P-2.25.5"));
    EXPECT_EQ(All("SELECT PatientID FROM Study_T ORDER BY Study_ID"), "3\n2\n");
    EXPECT_EQ(All("SELECT PatientID FROM ImageCard_T"), "3\n");
    EXPECT_EQ(RowCount("PatientIssuer_T"), 0);
    EXPECT_EQ(CommentsOn(4), "AB: Patient #1 P-2.25.5 merged into #3 C\n");
    EXPECT_THAT(Run({"cards", "P-2.25.5"}).err, HasSubstr("P-2.25.5 is patient #3 C"))
        << "the identifier of the removed one still finds the patient";
}

TEST_F(OnServerCorrections, FilmsWithTheIdentifierOfAMergedPatientGoToThePatientWhoStays) {
    const json old = OkJson({"patient", "P-2.25.5"});
    Ok({"patient", "new", "PatientID=NEW", "LastName=" + old["LastName"].get<std::string>(),
        "FirstName=" + old["FirstName"].get<std::string>()});
    Ok({"merge", "P-2.25.5", "--into", "NEW"});
    const auto patients = RowCount("Patient_T");
    const auto images = RowCount("ImageBild_T");
    const auto ofMerged = [](DcmDataset& set) { set.putAndInsertString(DCM_PatientID, "p-2.25.5"); };
    Write("2.25.5", 9, AnyEngine::FullMouth18[9]);
    Write("2.25.91", 1, AnyEngine::FullMouth18[3], ofMerged);
    Ok({"import", Films()});
    EXPECT_EQ(RowCount("Patient_T"), patients);
    EXPECT_EQ(RowCount("ImageBild_T"), images + 2);
    EXPECT_EQ(All("SELECT count(*) FROM ImageBild_T LEFT JOIN Patient_T ON Patient_T.PatientID = ImageBild_T.PatientID"
                  " WHERE Patient_T.PatientID IS NULL"),
              "0\n");

    Write("2.25.92", 1, AnyEngine::FullMouth18[3], [&](DcmDataset& set) {
        ofMerged(set);
        set.putAndInsertString(DCM_PatientName, "Somebody^Else");
    });
    const Result other = Run({"import", Films()});
    EXPECT_EQ(other.code, 3);
    EXPECT_THAT(other.err + other.out, HasSubstr("belongs to another person in the database"));
    EXPECT_EQ(RowCount("Patient_T"), patients);
}

TEST_F(OnServerCorrections, PatientsWhoContradictEachOtherAreMergedByForceOnly) {
    Ok({"patient", "P-2.25.5", "BirthDate=1980-01-31"});
    Ok({"patient", "C", "BirthDate=1980-02-01"});
    const std::string before = Rows();
    const Result refused = Run({"merge", "P-2.25.5", "--into", "C"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("1980-01-31"));
    EXPECT_THAT(refused.err, HasSubstr("patients #1 P-2.25.5 and #3 C contradict each other, and nothing was changed"));
    EXPECT_EQ(Rows(), before);
    Ok({"merge", "P-2.25.5", "--into", "C", "--force"});
    EXPECT_EQ(OkJson({"check"})["open"], 0) << "that the files name another birth date was decided";
    EXPECT_THAT(Refused({"merge", "C", "--into", "#3"}), HasSubstr("both are patient #3 C"));
}

TEST_F(OnServerCorrections, IdentifiersThatDoNotFitStopAMerge) {
    Ok({"patient", "C", "OtherIDs=" + std::string(250, 'x')});
    const std::string before = Rows();
    EXPECT_THAT(Refused({"merge", "P-2.25.5", "--into", "C"}), HasSubstr("has no space for P-2.25.5"));
    EXPECT_EQ(Rows(), before);
}

TEST_F(OnServerCorrections, AMergeIsWholeOrNothingWhateverStatementFails) {
    ExpectWholeOrNothing({"merge", "P-2.25.5", "--into", "C"});
}

TEST_F(OnServerCorrections, AWrongIdentifierIsReplaced) {
    Tried({"correct", "patient", "P-2.25.5", "--id", "new-1", "--by", "AB"});
    const json patient = OkJson({"patient", "#1"});
    EXPECT_EQ(patient["PatientID"], "NEW-1");
    EXPECT_EQ(patient["OtherIDs"], "") << "a wrong identifier may be another person's";
    EXPECT_THAT(patient["Comments"].get<std::string>(),
                HasSubstr(" AB: Patient ID corrected from #1 P-2.25.5 to NEW-1"));
    EXPECT_EQ(CommentsOn(4), "AB: Patient ID corrected from #1 P-2.25.5 to NEW-1\n");
    EXPECT_THAT(Refused({"correct", "patient", "NEW-1", "--id", "c"}),
                HasSubstr("another patient has the ID c already"));
    EXPECT_THAT(Refused({"correct", "patient", "NEW-1", "--id", " new-1"}), HasSubstr("has this ID already"));
    EXPECT_THAT(Refused({"correct", "patient", "NEW-1", "--id", " "}), HasSubstr("a patient needs an ID"));
}

TEST_F(OnServerCorrections, CorrectedTeethChangeSideRegionAndPlace) {
    Tried({"correct", "image", "5", "--teeth", "35, 36", "--by", "AB"});
    const json image = OkJson({"images", "--series", "3"})[0];
    EXPECT_EQ(image["teeth"], "35,36,");
    EXPECT_EQ(image["side"], "L");
    EXPECT_EQ(image["region"], "T-11180");
    EXPECT_EQ(OkJson({"series", "3"})["layout"], 10) << "not a pair of bitewings any more";
    const std::string comments = CommentsOn(5);
    EXPECT_THAT(comments, HasSubstr("AB: Corrected teeth from 16,17,18,46,47,48, to 35,36,\n"));
    EXPECT_THAT(comments, HasSubstr("AB: Corrected side from R to L\n"));
    EXPECT_THAT(comments, HasSubstr("AB: Corrected region from T-D1213 to T-11180\n"));
    EXPECT_EQ(CommentsOn(6), "");
}

TEST_F(OnServerCorrections, SideRegionAndDateAreCorrected) {
    Ok({"correct", "image", "5", "--teeth", ""});
    Ok({"correct", "image", "5", "--side", "l", "--region", "upper", "--date", "2025-12-24"});
    EXPECT_EQ(All("SELECT Laterality, AnaRegion, PriStructure FROM ImageBild_T WHERE ImageBildID = 5"), "L T-11170 \n");
    EXPECT_EQ(OkJson({"images", "--date", "2025-12-24"})[0]["date"], "2025-12-24 10:01:00") << "the time of day stays";
    Ok({"correct", "image", "5", "--date", "24 Dec 2025 08:15"});
    EXPECT_EQ(OkJson({"images", "--date", "2025-12-24"})[0]["date"], "2025-12-24 08:15:00");
    EXPECT_THAT(CommentsOn(5), HasSubstr("Corrected date from 2025-12-24 10:01:00 to 2025-12-24 08:15:00"));
    ExpectSound();
}

TEST_F(OnServerCorrections, AWrongCorrectionIsRefused) {
    const std::string before = Rows();
    const std::pair<Arguments, const char*> wrong[] = {
        {{"--teeth", "19"}, "\"19\" is not a tooth"},
        {{"--side", "U"}, "\"U\" is not a side"},
        {{"--side", "L"}, "the side L contradicts the teeth 16,17,18,46,47,48,"},
        {{"--region", "upper"}, "the region T-11170 contradicts the teeth"},
        {{"--teeth", "36", "--side", "R"}, "the side R contradicts the teeth 36,"},
        {{"--region", "nose"}, "\"nose\" is not a region"},
        {{"--date", "2999-01-01"}, "is in the future"},
        {{"--date", "2026-02-30"}, "is not a date"},
        {{"--date", "2026-01-02 25:00"}, "\"25:00\" is not a time of day"},
        {{"--side", "R"}, "nothing differs from what is stored"},
        {{}, "nothing differs from what is stored"},
    };
    for (const auto& [options, reason] : wrong) {
        Arguments command{"correct", "image", "5"};
        command.insert(command.end(), options.begin(), options.end());
        EXPECT_THAT(Refused(command), HasSubstr(reason));
    }
    EXPECT_THAT(Refused({"correct", "image", "5", "99", "--teeth", "36"}), HasSubstr("there is no image 99"));
    EXPECT_EQ(Rows(), before);
}

TEST_F(OnServerCorrections, ACorrectionIsWholeOrNothingWhateverStatementFails) {
    ExpectWholeOrNothing({"correct", "image", "5", "--teeth", "35,36"});
}

}  // namespace
