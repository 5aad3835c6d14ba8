#include "images/cImage.h"

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"

#include <map>

/// The record of an image: its properties, and how it is read. Saving has a file of its own.
namespace OXClass {
namespace {

using namespace TestKit;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// A value as a text, dates in one form in every locale.
String TextOf(const Variant& value) {
    return value.Is<Date>() ? FormatDate(value.As<Date>(), "yyyy-mm-dd hh:nn:ss") : CStr(value);
}

/// All properties with a plain value, "Name=value" each, in the order of the interface.
std::vector<String> ValuesOf(Object& object) {
    std::vector<String> values;
    for (const Member& member : object.Describe().Members())
        if (member.Kind == MemberKind::Get && member.Arguments.empty() && member.Result.Is != MemberType::Kind::Object)
            values.push_back(member.Name + "=" + TextOf(member.Call(object, {})));
    return values;
}

std::map<String, String> PropertiesOf(Object& object) {
    std::map<String, String> properties;
    for (const String& text : ValuesOf(object))
        properties[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
    return properties;
}

/// Returns a line for each property of an object that differs from the expected value.
std::vector<String> Differing(Object& object, std::map<String, String> expected) {
    std::vector<String> lines;
    for (const auto& [name, value] : PropertiesOf(object))
        if (value != expected[name]) lines.push_back(name + " is \"" + value + "\", not \"" + expected[name] + "\"");
    return lines;
}

/// The value number `n` of a property's type, different for each `n` but for flags.
Variant ValueNumber(const MemberType& type, Integer n) {
    switch (type.Is) {
        case MemberType::Kind::Boolean: return true;
        case MemberType::Kind::Int16: return n;
        case MemberType::Kind::Days: return Date{40000.0 + n};
        case MemberType::Kind::Text: return "text " + CStr(Long{n});
        default: return Long{n};
    }
}

// ---- the interface ------------------------------------------------------------------------------------

TEST(ImageRecord, HasTheDocumentedMembers) {
    std::vector<String> documented;
    const auto property = [&](const String& name, const String& type) {
        documented.push_back("put " + name + "(" + type + ")");
        documented.push_back("get " + name + " -> " + type);
    };
    const auto operation = [&](const char* text) { documented.emplace_back(text); };
    for (const char* name : {"AnaRegionMod", "AnaRegion", "Laterality", "instanceUID"}) property(name, "string");
    for (const char* name :
         {"seriesID", "studyID", "ImageNumberInSeries", "Pregnant", "RootId", "DPIX", "DPIY", "MirrRotStatus"})
        property(name, "int32");
    property("dateTime", "date");
    property("PatID", "int32");
    property("Approved", "boolean");
    property("sTeeth", "string");
    property("ImageType", "xigImageTypes");
    operation("Save(Con: Connection&) -> int32");
    property("ID", "int32");
    property("URL", "string");
    property("HWSourceTxt", "string");
    operation("get Comments -> cComments");
    operation("putref Comments(cComments&)");
    property("FrameNumber", "int32");
    property("Root_RootDirectory", "string");
    property("DicomStatus", "int16");
    operation("GetImage(Con: Connection&, ImageBildID: int32) -> boolean");
    operation(
        "addComment(sComment: string&, sSignature: string&, commentDate: date&, saved: boolean&, "
        "[Action: string&], [objpointer: int32&])");
    operation("GetComments(Con: Connection&)");
    property("ApprInvert", "boolean");
    for (const char* name : {"ApprContrast", "ApprBrightness", "ApprGamma"}) property(name, "int32");
    property("RespPerson", "string");
    property("CapturePerson", "string");
    operation("GetFromRecord(rs: Recordset&)");
    property("CRC", "string");
    property("Key", "string");
    for (const char* name : {"ExposureTime_ms", "Current_mA", "Voltage_kV"}) property(name, "int32");
    property("FailedToLoadImage", "boolean");
    property("ThumbnailOnly", "boolean");
    property("OrgHeight", "int32");
    property("OrgWidth", "int32");
    property("ApprCrop", "string");
    property("SubType", "int32");
    property("DCMDerived", "int16");
    operation("SaveEx(CheckExistOnID: boolean&, Con: Connection&) -> int32");
    EXPECT_THAT(MembersOf(cImage()), ElementsAreArray(documented));
}

TEST(ImageRecord, EveryPropertyHoldsItsOwnValue) {
    const Ref<cImage> image = New<cImage>();
    std::map<String, String> put;
    Integer n = 0;
    for (const Member& member : image->Describe().Members()) {
        if (member.Kind != MemberKind::Put) continue;
        Variant value = ValueNumber(member.Arguments.back().Type, ++n);
        put[member.Name] = TextOf(value);
        member.Call(*image, {&value, 1});
    }
    EXPECT_EQ(n, 41);
    EXPECT_THAT(Differing(*image, put), IsEmpty());
}

TEST(ImageRecord, EachFlagIsItsOwn) {
    for (const char* name : {"Approved", "ApprInvert", "FailedToLoadImage", "ThumbnailOnly"}) {
        const Ref<cImage> image = New<cImage>();
        std::map<String, String> expected = PropertiesOf(*image);
        expected[name] = "True";
        Variant value = true;
        Invoke(*image, name, MemberKind::Put, {&value, 1});
        EXPECT_THAT(Differing(*image, expected), IsEmpty()) << name;
    }
}

TEST(ImageRecord, StartsWithZerosAndEmptyTexts) {
    const Ref<cImage> image = New<cImage>();
    for (const auto& [name, value] : PropertiesOf(*image)) {
        const MemberType type = image->Describe().Find(name, MemberKind::Get)->Result;
        if (type.Is == MemberType::Kind::Days) continue;
        const char* const number = type.Is == MemberType::Kind::Boolean ? "False" : "0";
        EXPECT_EQ(value, type.Is == MemberType::Kind::Text ? "" : number) << name;
    }
    EXPECT_EQ(image->dateTime.Days, 0);
    EXPECT_EQ(image->ImageType, imggTypeSC);
}

TEST(ImageRecord, CommentsStartEmptyAndStayTheSameObject) {
    const Ref<cImage> image = New<cImage>();
    const Ref<cComments> first = image->Comments();
    EXPECT_EQ(first->Count(), 0);
    EXPECT_EQ(image->Comments(), first);
}

TEST(ImageRecord, CommentsSetToNullAreCreatedAgainAndEmpty) {
    const Ref<cImage> image = New<cImage>();
    const Ref<cComments> first = image->Comments();
    image->addComment("text", "a", Date{1}, false);
    image->SetComments(nullptr);
    EXPECT_FALSE(image->Comments() == first);
    EXPECT_EQ(image->Comments()->Count(), 0);
    EXPECT_EQ(image->Comments(), image->Comments());
}

TEST(ImageRecord, CommentsCanBeReplaced) {
    const Ref<cImage> image = New<cImage>();
    const Ref<cComments> other = New<cComments>();
    image->SetComments(other);
    EXPECT_EQ(image->Comments(), other);
}

// ---- reading a row ------------------------------------------------------------------------------------

/// One column that is read into the record: a valid value of the column, and the value of the property after the load.
struct Step {
    const char* column;
    const char* stored;
    const char* property;
    const char* value;
    enum { Direct, NullIsZero, NullIsEmpty, NullIsOne, NullKeeps } form;
    bool number = false;
};

/// In the order of the reading.
constexpr Step Steps[] = {
    {"Approved", "-1", "Approved", "True", Step::NullIsZero, true},
    {"Brightness_INT", "31", "ApprBrightness", "31", Step::Direct, true},
    {"Contrast_INT", "32", "ApprContrast", "32", Step::Direct, true},
    {"DateCaptured_SD", "'2024-03-05 14:07:09'", "dateTime", "2024-03-05 14:07:09", Step::Direct},
    {"ExposureTime_F", "33", "ExposureTime_ms", "33", Step::NullIsZero, true},
    {"GraphicURL_NVC", "'a/b.dcm'", "URL", "a/b.dcm", Step::NullIsEmpty},
    {"HardwareSourcetxt_NVC", "'Sensor'", "HWSourceTxt", "Sensor", Step::NullIsEmpty},
    {"ImageBildID", "5", "ID", "5", Step::Direct},
    {"ImageType", "4", "ImageType", "4", Step::Direct, true},
    {"Invert_BT", "1", "ApprInvert", "True", Step::Direct, true},
    {"PatientID", "34", "PatID", "34", Step::Direct, true},
    {"Responsible_Person_NVC", "'Dr. Resp'", "RespPerson", "Dr. Resp", Step::NullIsEmpty},
    {"RootId", "2", "RootId", "2", Step::Direct, true},
    {"RootDirectory", "'/images'", "Root_RootDirectory", "/images", Step::NullKeeps},
    {"AnaRegion", "'T-11170'", "AnaRegion", "T-11170", Step::NullIsEmpty},
    {"AnaRegionMod", "'T-51005'", "AnaRegionMod", "T-51005", Step::NullIsEmpty},
    {"Laterality", "'R'", "Laterality", "R", Step::NullIsEmpty},
    {"PriStructure", "'11,12,'", "sTeeth", "11,12,", Step::NullIsEmpty},
    {"MirrRotStatus", "3", "MirrRotStatus", "3", Step::NullIsOne, true},
    {"CRC", "'ABCD'", "CRC", "ABCD", Step::NullIsEmpty},
    {"DPIY_INT", "301", "DPIY", "301", Step::NullIsZero, true},
    {"DPIX_INT", "300", "DPIX", "300", Step::NullIsZero, true},
    {"Voltage_INT", "60", "Voltage_kV", "60", Step::NullIsZero, true},
    {"Current_INT", "7", "Current_mA", "7", Step::NullIsZero, true},
    {"Capture_Person_NVC", "'Nurse'", "CapturePerson", "Nurse", Step::NullIsEmpty},
    {"Study_ID", "35", "studyID", "35", Step::NullIsZero, true},
    {"Series_ID", "36", "seriesID", "36", Step::NullIsZero, true},
    {"SOPInstanceUID_NVC", "'1.2.3'", "instanceUID", "1.2.3", Step::NullIsEmpty},
    {"ImageNumberInSeries", "37", "ImageNumberInSeries", "37", Step::NullIsZero},
    {"DicomStatus_INT", "38", "DicomStatus", "38", Step::NullIsZero, true},
    {"FrameNumber_INT", "39", "FrameNumber", "39", Step::NullIsZero, true},
    {"SubType_INT", "40", "SubType", "40", Step::NullIsZero, true},
    {"Gamma_INT", "41", "ApprGamma", "41", Step::NullIsZero, true},
    {"AnatomicRegion", "'1;2;3;4'", "ApprCrop", "1;2;3;4", Step::NullIsEmpty},
    {"DCMDerived_BT", "42", "DCMDerived", "42", Step::NullIsZero, true},
};

class ImageReading : public WithDatabase {
protected:
    ImageReading() {
        Run("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (2, '/images', 1)");
        String columns, values;
        for (const Step& step : Steps) {
            if (String(step.column) == "RootDirectory") continue;
            columns += (columns.empty() ? "" : ", ") + String(step.column);
            values += (values.empty() ? "" : ", ") + String(step.stored);
        }
        Run("INSERT INTO ImageBild_T (" + columns + ") VALUES (" + values + ")");
        // What stays where the reading doesn't come: property by property another value.
        Integer n = 100;
        for (const Member& member : image->Describe().Members()) {
            if (member.Kind != MemberKind::Put) continue;
            Variant value = ValueNumber(member.Arguments.back().Type, ++n);
            if (member.Arguments.back().Type.Is == MemberType::Kind::Boolean) value = false;
            member.Call(*image, {&value, 1});
        }
        before = PropertiesOf(*image);
    }

    void Set(const String& column, const String& value) {
        Run(column == "RootDirectory" ? "UPDATE Root_T SET RootDirectory = " + value
                                      : "UPDATE ImageBild_T SET " + column + " = " + value);
    }

    /// The properties after a reading that came through to this step, which it didn't take.
    std::map<String, String> ReadUpTo(const Step* stop) const {
        std::map<String, String> expected = before;
        for (const Step* step = Steps; step != stop; ++step) expected[step->property] = step->value;
        return expected;
    }
    /// The frame is kept as it was read; see the test of its own.
    static bool ConvertsLate(const Step& step) { return String(step.column) == "FrameNumber_INT"; }
    std::map<String, String> ReadWhole() const { return ReadUpTo(std::end(Steps)); }

    void Forget() {
        for (const auto& [name, text] : before) {
            Variant value = text;
            Invoke(*image, name, MemberKind::Put, {&value, 1});
        }
    }

    /// The good row as a record with these columns, read into the image.
    void ReadFrom(const String& select) {
        log.statements.clear();
        const Ref<Recordset> rs = con->Execute(select);
        image->GetFromRecord(rs);
    }

    const InLocale locale{Locale()};
    Ref<cImage> image = New<cImage>();
    std::map<String, String> before;
};

TEST_F(ImageReading, GetImageSendsItsStatement) {
    EXPECT_TRUE(image->GetImage(con, 5));
    EXPECT_THAT(
        Sent(),
        ElementsAre("SELECT ImageBildID, ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC, "
                    "StandCollName_NVC, "
                    "ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, ImageBild_T.RootId, "
                    "GraphicURL_NVC, "
                    "Invert_BT, StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, "
                    "ExposureTime_F, HorizMirror_BT, VerticalMirror_BT, CRC, Responsible_Person_NVC, Approved, "
                    "ImageType, "
                    "MirrRotStatus, DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, "
                    "XRaySource_NVC, PrevXrayDate_DT, Dosage_INT, Root_T.Status, Root_T.RootDirectory, Study_ID, "
                    "Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, DicomStatus_INT "
                    ",FrameNumber_INT,AnatomicRegion, "
                    "DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod, PriStructure, SubType_INT, Gamma_INT "
                    "FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId Where ImageBildID = 5;"));
}

TEST_F(ImageReading, GetImageFillsEachPropertyFromItsColumn) {
    EXPECT_TRUE(image->GetImage(con, 5));
    EXPECT_THAT(Differing(*image, ReadWhole()), IsEmpty());
}

TEST_F(ImageReading, GetImageOfAMissingRowReturnsFalseAndChangesNothing) {
    EXPECT_FALSE(image->GetImage(con, 6));
    EXPECT_THAT(Differing(*image, before), IsEmpty());
}

TEST_F(ImageReading, AnUnknownRootStillLoadsAndKeepsTheDirectory) {
    Set("RootId", "77");
    EXPECT_TRUE(image->GetImage(con, 5));
    std::map<String, String> expected = ReadWhole();
    expected["RootId"] = "77";
    expected["Root_RootDirectory"] = before["Root_RootDirectory"];
    EXPECT_THAT(Differing(*image, expected), IsEmpty());
}

TEST_F(ImageReading, GetImageDoesNotLoadComments) {
    Run("INSERT INTO Comments_T (dates, signature, tabelID, objectID, commentString) "
        "VALUES ('2024-03-01 00:00:00', 's', 1, 5, 't')");
    image->GetImage(con, 5);
    EXPECT_EQ(image->Comments()->Count(), 0);
    EXPECT_EQ(Sent().size(), 1U);
}

TEST_F(ImageReading, GetFromRecordDoesNotChangeCommentsAndPosition) {
    image->addComment("kept", "a", Date{1}, false);
    const Ref<Recordset> rs = New<Recordset>();
    rs->SetCursorLocation(ADODB::adUseClient);
    rs->Open("SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId", con);
    image->GetFromRecord(rs);
    EXPECT_EQ(rs->AbsolutePosition(), 1);
    EXPECT_EQ(image->Comments()->Count(), 1);
}

TEST_F(ImageReading, ARecordOfAllColumnsReadsTheSame) {
    ReadFrom("SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId");
    EXPECT_THAT(Differing(*image, ReadWhole()), IsEmpty());
}

// ---- nulls and odd values -----------------------------------------------------------------------------

TEST_F(ImageReading, ANullReadsAsItsColumnSays) {
    for (const Step& step : Steps) {
        if (step.form == Step::Direct) continue;
        Forget();
        Set(step.column, "NULL");
        EXPECT_TRUE(image->GetImage(con, 5));
        std::map<String, String> expected = ReadWhole();
        const bool flag = String(step.property) == "Approved";
        expected[step.property] = step.form == Step::NullIsEmpty ? ""
                                  : step.form == Step::NullIsOne ? "1"
                                  : step.form == Step::NullKeeps ? before[step.property]
                                                                 : (flag ? "False" : "0");
        EXPECT_THAT(Differing(*image, expected), IsEmpty()) << step.column;
        Set(step.column, step.stored);
    }
}

TEST_F(ImageReading, ANullWhereAValueIsNeededEndsTheReadingThere) {
    for (const Step& step : Steps) {
        if (step.form != Step::Direct || String(step.column) == "ImageBildID" || String(step.column) == "RootId")
            continue;
        Forget();
        Set(step.column, "NULL");
        EXPECT_TRUE(image->GetImage(con, 5)) << "the caller doesn't learn of it: " << step.column;
        EXPECT_THAT(Differing(*image, ReadUpTo(&step)), IsEmpty()) << step.column;
        Set(step.column, step.stored);
    }
}

TEST_F(ImageReading, ATextWhereANumberIsNeededEndsTheReadingThere) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    for (const Step& step : Steps) {
        if (!step.number || String(step.column) == "RootId" || ConvertsLate(step)) continue;
        Forget();
        Set(step.column, "'abc'");
        EXPECT_TRUE(image->GetImage(con, 5));
        EXPECT_THAT(Differing(*image, ReadUpTo(&step)), IsEmpty()) << step.column;
        Set(step.column, step.stored);
    }
}

TEST_F(ImageReading, ANumberBeyondThePropertyEndsTheReadingThere) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    for (const Step& step : Steps) {
        const bool small = String(step.property) == "DicomStatus" || String(step.property) == "DCMDerived" ||
                           String(step.property) == "Approved" || String(step.property) == "ApprInvert";
        const bool head = String(step.property) == "ImageNumberInSeries";
        if ((!step.number && !head) || String(step.column) == "RootId" || ConvertsLate(step)) continue;
        Forget();
        Set(step.column, small ? "32768" : "2147483648");
        EXPECT_TRUE(image->GetImage(con, 5));
        EXPECT_THAT(Differing(*image, ReadUpTo(&step)), IsEmpty()) << step.column;
        Set(step.column, step.stored);
    }
}

TEST_F(ImageReading, ANonNumericFrameFailsOnlyWhenItIsRead) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Forget();
    Set("FrameNumber_INT", "'abc'");
    EXPECT_TRUE(image->GetImage(con, 5));
    EXPECT_EQ(FailureOf([&] { return Long{image->FrameNumber}; }).Number, err::TypeMismatch);
    EXPECT_EQ(CStr(image->SubType), ReadWhole()["SubType"]) << "the reading went on";
    Set("FrameNumber_INT", "2147483648");
    EXPECT_TRUE(image->GetImage(con, 5));
    EXPECT_EQ(FailureOf([&] { return Long{image->FrameNumber}; }).Number, err::Overflow);
    image->FrameNumber = 3;
    EXPECT_EQ(image->FrameNumber, 3);
}

TEST_F(ImageReading, ATextThatIsNotADateEndsTheReading) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    Set("DateCaptured_SD", "'some day'");
    EXPECT_TRUE(image->GetImage(con, 5));
    EXPECT_THAT(Differing(*image, ReadUpTo(&Steps[3])), IsEmpty());
}

TEST_F(ImageReading, ANullBrightnessLeavesOnlyApprovedNew) {
    Set("Brightness_INT", "NULL");
    EXPECT_TRUE(image->GetImage(con, 5));
    EXPECT_TRUE(image->Approved);
    EXPECT_EQ(PropertiesOf(*image)["dateTime"], before["dateTime"]);
    EXPECT_EQ(image->ID, CLng(before["ID"]));
}

TEST_F(ImageReading, FlagsAreTrueForAnyNumberButZero) {
    for (const char* value : {"-1", "1", "2"}) {
        Set("Approved", value);
        Set("Invert_BT", value);
        image->GetImage(con, 5);
        EXPECT_TRUE(image->Approved) << value;
        EXPECT_TRUE(image->ApprInvert) << value;
    }
    Set("Approved", "0");
    Set("Invert_BT", "0");
    image->GetImage(con, 5);
    EXPECT_FALSE(image->Approved);
    EXPECT_FALSE(image->ApprInvert);
}

TEST_F(ImageReading, ExposureTimeIsRoundedATieToEven) {
    for (const auto& [stored, read] : {std::pair{"2.5", 2}, std::pair{"3.5", 4}, std::pair{"2.6", 3}}) {
        Set("ExposureTime_F", stored);
        image->GetImage(con, 5);
        EXPECT_EQ(image->ExposureTime_ms, read) << stored;
    }
}

TEST_F(ImageReading, CrcUidAndCropLoseOuterBlanksAndOtherTextsKeepThem) {
    Set("CRC", "'  AB CD   '");
    Set("SOPInstanceUID_NVC", "' 1.2.3  '");
    Set("AnatomicRegion", "'  1;2 '");
    Set("GraphicURL_NVC", "' a.dcm '");
    image->GetImage(con, 5);
    EXPECT_EQ(image->CRC, "AB CD");
    EXPECT_EQ(image->instanceUID, "1.2.3");
    EXPECT_EQ(image->ApprCrop, "1;2");
    EXPECT_EQ(image->URL, " a.dcm ");
}

TEST_F(ImageReading, TheImageNumberIsTheNumberAtTheHeadOfItsText) {
    OXCLASS_ONLY_IF(KeepsValuesOfOtherTypes());
    struct Row {
        const char* stored;
        Long read;
    };
    for (const auto& [stored, read] : {Row{"'12ab'", 12}, Row{"NULL", 0}, Row{"'ab12'", 0}, Row{"''", 0},
                                       Row{"' 7 '", 7}, Row{"'-3x'", -3}, Row{"12", 12}}) {
        Set("ImageNumberInSeries", stored);
        image->GetImage(con, 5);
        EXPECT_EQ(image->ImageNumberInSeries, read) << stored;
    }
}

TEST_F(ImageReading, PregnantIsNeverReadBack) {
    Set("Pregnant_BT", "1");
    image->Pregnant = 0;
    image->GetImage(con, 5);
    EXPECT_EQ(image->Pregnant, 0);
}

TEST_F(ImageReading, NamesInAnyScriptAreReadUnchanged) {
    for (const String name : {"O'Hara", "Μαρία Παπαδοπούλου", "Ольга", "山田太郎", "🦷 Zahnfee"}) {
        Set("Responsible_Person_NVC", "'" + Replace(name, "'", "''") + "'");
        image->GetImage(con, 5);
        EXPECT_EQ(image->RespPerson, name);
    }
}

// ---- records that lack a column, and the two names of the root ----------------------------------------

/// A select of the good row with all columns that are read, but one; `rootName` names the root's column.
String SelectWithout(const String& missing, const String& rootName = "RootId") {
    String columns;
    for (const Step& step : Steps) {
        const String column = step.column;
        if (column == missing) continue;
        columns += (columns.empty() ? "" : ", ") +
                   (column == "RootId" ? "ImageBild_T.RootId AS \"" + rootName + "\"" : column);
    }
    if (missing != "Status") columns += ", Status";
    return "SELECT " + columns + " FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId";
}

TEST_F(ImageReading, AMissingColumnEndsTheReadingThere) {
    for (const Step& step : Steps) {
        if (String(step.column) == "RootId") continue;
        Forget();
        ReadFrom(SelectWithout(step.column));
        EXPECT_THAT(Differing(*image, ReadUpTo(&step)), IsEmpty()) << step.column;
    }
}

TEST_F(ImageReading, ARecordWithoutStatusStopsAfterTheRoot) {
    ReadFrom(SelectWithout("Status"));
    EXPECT_THAT(Differing(*image, ReadUpTo(&Steps[13])), IsEmpty());
}

TEST_F(ImageReading, EitherNameOfTheRootWillDo) {
    for (const char* name : {"RootId", "ImageBild_T.RootId", "rootid", "IMAGEBILD_T.ROOTID"}) {
        Forget();
        ReadFrom(SelectWithout("nothing", name));
        EXPECT_THAT(Differing(*image, ReadWhole()), IsEmpty()) << name;
    }
}

TEST_F(ImageReading, TheImagesOwnRootIsReadFirst) {
    ReadFrom(Replace(SelectWithout("nothing", "ImageBild_T.RootId"), ", Status", ", Status, 99 AS RootId"));
    EXPECT_EQ(image->RootId, 2);
    EXPECT_THAT(Differing(*image, ReadWhole()), IsEmpty());
}

TEST_F(ImageReading, ANullUnderTheImagesOwnNameEndsTheReadingSilently) {
    Set("RootId", "NULL");
    ReadFrom(Replace(SelectWithout("nothing", "ImageBild_T.RootId"), ", Status", ", Status, 99 AS RootId"));
    EXPECT_THAT(Differing(*image, ReadUpTo(&Steps[12])), IsEmpty());
}

TEST_F(ImageReading, AFailureOfTheRepairReachesTheCaller) {
    const Error missing = FailureOf([&] { ReadFrom(SelectWithout("RootId")); });
    EXPECT_EQ(missing.Number, 3265);
    EXPECT_THAT(Differing(*image, ReadUpTo(&Steps[12])), IsEmpty());
    Forget();
    Set("RootId", "NULL");
    const Error null = FailureOf([&] { ReadFrom(SelectWithout("nothing")); });
    EXPECT_EQ(null.Number, 94);
    EXPECT_THAT(Differing(*image, ReadUpTo(&Steps[12])), IsEmpty());
}

TEST_F(ImageReading, ANumberMissingElsewhereIsNotRepaired) {
    ReadFrom(SelectWithout("PatientID", "ImageBild_T.RootId"));
    EXPECT_THAT(Differing(*image, ReadUpTo(&Steps[10])), IsEmpty()) << "3265 ahead of the root ends the reading";
}

TEST_F(ImageReading, ARecordAtItsEndChangesNothing) {
    ReadFrom(
        "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId WHERE ImageBildID = "
        "6");
    EXPECT_THAT(Differing(*image, before), IsEmpty());
}

// ---- failures of the statement ------------------------------------------------------------------------

TEST_F(ImageReading, ANameUnknownToTheDatabaseReturnsFalse) {
    Run("ALTER TABLE ImageBild_T DROP COLUMN Gamma_INT");
    EXPECT_FALSE(image->GetImage(con, 5));
    EXPECT_THAT(Differing(*image, before), IsEmpty());
}

TEST_F(ImageReading, AnyOtherFailureReachesTheCallerUnchanged) {
    image->GetImage(con, 5);
    const String statement = Sent().front();
    Run("DROP TABLE Root_T");
    Forget();
    const Error plain = FailureOf([&] { con->Execute(statement); });
    const Error failure = FailureOf([&] { image->GetImage(con, 5); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E37));
    EXPECT_EQ(failure.Source, plain.Source);
    EXPECT_EQ(failure.Description, plain.Description);
    EXPECT_THAT(Differing(*image, before), IsEmpty());
}

TEST_F(ImageReading, AClosedConnectionFails) {
    con->Close();
    EXPECT_EQ(FailureOf([&] { image->GetImage(con, 5); }).Number, 3709);
    EXPECT_THAT(Differing(*image, before), IsEmpty());
}

}  // namespace
}  // namespace OXClass
