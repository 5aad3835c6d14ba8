#include "AnyEngine.h"

#include <gmock/gmock.h>

/// The options of lists, and the conditions of the list of images.
namespace {

using AnyEngine::Film;
using AnyEngine::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class OnServerLists : public AnyEngine::Clinic {
protected:
    void SetUp() override {
        Clinic::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        WriteSeries("2.25.5", {Film{{16, 17}, ""}, Film{{36}, ""}});
        Write("2.25.6", 1, {}, [](DcmDataset& set) {
            set.putAndInsertString(DCM_Modality, "PX");
            set.putAndInsertString(DCM_AcquisitionDate, "20260203");
            set.putAndInsertString(DCM_PatientName, "Ek \"Nils\", Jr.^Bo");
        });
        Ok({"import", Films()});
    }
    std::vector<int> Images(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "images");
        std::vector<int> numbers;
        for (const json& image : OkJson(std::move(arguments))) numbers.push_back(image["image"].get<int>());
        return numbers;
    }
};

TEST_F(OnServerLists, ImagesAreFoundByToothDateModalityAndType) {
    EXPECT_THAT(Images({"--tooth", "17"}), ElementsAre(1));
    EXPECT_THAT(Images({"--tooth", "16,36"}), ElementsAre(1, 2));
    EXPECT_THAT(Images({"--tooth", "61"}), IsEmpty()) << "no part of 16,17";
    EXPECT_THAT(Images({"--date", "2026-02-03"}), ElementsAre(3));
    EXPECT_THAT(Images({"--date", "..2026-01-02"}), ElementsAre(1, 2));
    EXPECT_THAT(Images({"--date", "2026-01-03..2026-02-02"}), IsEmpty());
    EXPECT_THAT(Images({"--modality", "px"}), ElementsAre(3));
    EXPECT_THAT(Images({"--type", "intraoral"}), ElementsAre(1, 2));
    EXPECT_THAT(Images({"--type", "Panoramic", "--patient", "P-2.25.5"}), IsEmpty());
    EXPECT_THAT(Images({"--series", "1", "--tooth", "36", "--modality", "IO", "--type", "intraoral"}), ElementsAre(2));
    EXPECT_THAT(Refused({"images", "--tooth", "19"}), HasSubstr("\"19\" is not a tooth"));
    EXPECT_THAT(Refused({"images", "--tooth", "16;drop"}), HasSubstr("\"16;drop\" is not a tooth"));
    EXPECT_THAT(Refused({"images", "--tooth", ","}), HasSubstr("no teeth are named"));
    EXPECT_THAT(Refused({"images", "--type", "film"}), HasSubstr("the types are intraoral, panoramic, ceph"));
    EXPECT_THAT(Refused({"images", "--date", "2026-02-03..2026-02-01"}), HasSubstr("ends before it begins"));
    EXPECT_THAT(Images({"--modality", "I'O"}), IsEmpty());
    EXPECT_THAT(Images({"--series", "1", "--patient", "P-2.25.6"}), IsEmpty()) << "both conditions hold";
}

TEST_F(OnServerLists, AnEmptyValueIsNotTheSameAsNoCondition) {
    for (const char* filter : {"--patient", "--series", "--tooth", "--date", "--modality", "--type", "--sort"})
        EXPECT_EQ(Run({"images", filter, ""}).code, 2) << filter;
    EXPECT_EQ(Run({"studies", "--patient", ""}).code, 2);
    EXPECT_EQ(Run({"move", "image", "1", "--to", "P-2.25.6", "--by", ""}).code, 2);
}

TEST_F(OnServerLists, AListIsSortedByAnyColumnAndCut) {
    EXPECT_THAT(Images({"--sort", "-image"}), ElementsAre(3, 2, 1));
    EXPECT_THAT(Images({"--sort", "teeth"}), ElementsAre(3, 1, 2)) << "an empty text comes first";
    EXPECT_THAT(Images({"--sort", "-Date", "--limit", "1"}), ElementsAre(3));
    EXPECT_THAT(Images({"--limit", "2"}), ElementsAre(1, 2));
    EXPECT_THAT(Images({"--limit", "99"}), ElementsAre(1, 2, 3));
    EXPECT_THAT(Refused({"images", "--sort", "nothing"}),
                HasSubstr("the list has no column \"nothing\" to sort by; it has image, series, frame,"));
    EXPECT_EQ(Run({"images", "--limit", "0"}).code, 2);
    Execute("UPDATE Series_T SET SeriesDescription = NULL WHERE Series_ID = 2");
    EXPECT_EQ(OkJson({"series", "--sort", "description"})[0]["series"], 2) << "a null comes first";
    Execute("UPDATE Series_T SET NumberOfImages = 10 WHERE Series_ID = 2");
    EXPECT_EQ(OkJson({"series", "--sort", "-images"})[0]["series"], 2) << "numbers are sorted by value";
}

TEST_F(OnServerLists, EachListHasTheOptions) {
    Ok({"doctor", "new", "DrLastName=Ek"});
    Ok({"comment", "1", "a comment"});
    for (const std::vector<std::string>& list : {std::vector<std::string>{"patients"},
                                                 {"studies"},
                                                 {"series"},
                                                 {"images"},
                                                 {"cards", "P-2.25.5"},
                                                 {"comment", "1"},
                                                 {"layouts"},
                                                 {"anatomy"},
                                                 {"doctors"},
                                                 {"clinics"},
                                                 {"roots"},
                                                 {"setting", "list"}}) {
        std::vector<std::string> csv = list, cut = list;
        csv.emplace_back("--csv");
        const std::string lines = Ok(csv);
        const std::string key = lines.substr(0, lines.find(','));
        cut.insert(cut.end(), {"--csv", "--limit", "1", "--sort", "-" + key});
        const std::string first = Ok(cut);
        EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 2) << list[0];
        EXPECT_EQ(first.substr(0, first.find('\n')), lines.substr(0, lines.find('\n'))) << list[0];
    }
}

TEST_F(OnServerLists, CsvQuotesWhatASpreadsheetWouldTakeApart) {
    EXPECT_EQ(Ok({"patients", "2.25.6", "--csv"}),
              "number,id,last_name,first_name,born,sex,studies\n2,P-2.25.6,\"Ek \"\"Nils\"\", Jr.\",Bo,,,1\n");
    EXPECT_EQ(Run({"patients", "--csv", "--json"}).code, 2);
}

}  // namespace
