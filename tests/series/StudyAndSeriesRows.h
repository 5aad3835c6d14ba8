#pragma once

#include "kit/Database.h"
#include "platform/component/dispatch/Interface.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

/// What the tests of a study and of a series use: an object, and a row with other values.
namespace OXClass {

/// A study and its row in Study_T.
struct StudyRow {
    using Class = cStudy;
    static constexpr const char* name = "Study";

    static constexpr const char* table = "Study_T";
    static constexpr const char* key = "Study_ID";
    static constexpr const char* uid = "StudyInstanceUID";
    static constexpr const char* date = "StudyDateTime";
    /// All columns but the key.
    static constexpr const char* columns =
        "StudyInstanceUID, PatientID, accessionNumber, StudyDateTime, Studydesc, referDrName, studyID, PhysOfRecord";
    /// Distinct values for them, as literals and as the content of the row.
    static constexpr const char* distinctValues =
        "'1.2.5', 11, 'acc', '2024-03-05 14:07:09', 'descr', 'refer', 'sid', 'phys'";
    static constexpr const char* distinctContent = "1.2.5|11|acc|2024-03-05 14:07:09|descr|refer|sid|phys";
    /// The content of the row of an object that `FillStored` filled.
    static constexpr const char* filledContent =
        "9.9|91|old acc|2001-01-01 00:00:00|old descr|old refer|old sid|old phys";
    /// The tables whose rows name a study.
    static constexpr const char* below[] = {"Series_T", "ImageBild_T"};

    static constexpr auto load = &cStudy::loadStudy;
    static constexpr auto save = &cStudy::savestudy;
    static constexpr const char* sourceOfLoad = "cStudy.loadStudy, ";
    static constexpr const char* sourceOfSave = "cStudy.SaveStudy, ";
    static constexpr const char* boxOfKeyZero = "fel";
    static constexpr const char* loadByKey = "SELECT * FROM Study_T   WHERE study_id =5;";
    static constexpr const char* loadByMinusKey = "SELECT * FROM Study_T   WHERE study_id =-5;";
    static constexpr const char* loadByUid = "SELECT * FROM Study_T   WHERE StudyInstanceUID ='1.2.5';";
    static constexpr const char* saveByKey = "SELECT * FROM study_T WHERE study_id =5;";
    static constexpr const char* saveByUid = "SELECT * FROM study_T WHERE StudyInstanceUID = '1.2.5';";
    static constexpr const char* remove = "select * from Study_T where Study_T.Study_ID=5";

    static constexpr auto dateTime = &cStudy::dateTime;
    static constexpr String cStudy::*texts[] = {&cStudy::description, &cStudy::PhysOfRecord, &cStudy::referDrName,
                                                &cStudy::accessionNumber, &cStudy::studyID};

    /// All properties with their values, one text each.
    static std::vector<String> ValuesOf(const cStudy& study) {
        return {"Key " + study.Key,
                "location " + CStr(Long{study.location}),
                "PatientID " + CStr(study.PatientID),
                "referDrName " + study.referDrName,
                "PhysOfRecord " + study.PhysOfRecord,
                "accessionNumber " + study.accessionNumber,
                "instanceUID " + study.instanceUID,
                "description " + study.description,
                "dateTime " + FormatDate(study.dateTime, "yyyy-mm-dd hh:nn:ss"),
                "studyID " + study.studyID,
                "ID " + CStr(study.ID)};
    }

    static void FillStored(cStudy& study) {
        study.PatientID = 91;
        study.referDrName = "old refer";
        study.PhysOfRecord = "old phys";
        study.accessionNumber = "old acc";
        study.instanceUID = "9.9";
        study.description = "old descr";
        study.dateTime = DateFrom({2001, 1, 1, 0, 0, 0});
        study.studyID = "old sid";
        study.ID = 92;
    }
    static void FillUnstored(cStudy& study) {
        study.Key = "key";
        study.location = gdcmObjectLocServer;
    }
};

/// A series and its row in Series_T.
struct SeriesRow {
    using Class = cSerie;
    static constexpr const char* name = "Series";

    static constexpr const char* table = "Series_T";
    static constexpr const char* key = "Series_ID";
    static constexpr const char* uid = "SeriesInstanceUID";
    static constexpr const char* date = "SeriesDateTime";
    /// All columns but the key.
    static constexpr const char* columns =
        "SeriesInstanceUID, Modality, seriesNumber, template_ID, Study_ID, orgServerID, SeriesDescription, "
        "SeriesDateTime, Derived_BT, location, NumberOfImages";
    /// Distinct values for them, as literals and as the content of the row.
    static constexpr const char* distinctValues =
        "'1.2.5', 'IO', '17', 11, 12, 13, 'descr', '2024-03-05 14:07:09', 1, 2, 14";
    static constexpr const char* distinctContent = "1.2.5|IO|17|11|12|13|descr|2024-03-05 14:07:09|1|2|14";
    /// The content of the row of an object that `FillStored` filled.
    static constexpr const char* filledContent = "9.9|PX|old 96|94|93|91|old descr|2001-02-03 04:05:06|0|3|92";
    /// The tables whose rows name a series.
    static constexpr const char* below[] = {"ImageBild_T"};

    static constexpr auto load = &cSerie::loadSeries;
    static constexpr auto save = &cSerie::SaveSeries;
    static constexpr const char* sourceOfLoad = "cSerie.loadseries, ";
    static constexpr const char* sourceOfSave = "cSerie.SaveSeries, ";
    static constexpr const char* boxOfKeyZero = "FEL";
    static constexpr const char* loadByKey = "SELECT * FROM Series_T   WHERE series_id =5;";
    static constexpr const char* loadByMinusKey = "SELECT * FROM Series_T   WHERE series_id =-5;";
    static constexpr const char* loadByUid = "SELECT * FROM Series_T   WHERE seriesInstanceUID ='1.2.5';";
    static constexpr const char* saveByKey = "SELECT * FROM Series_T WHERE series_id =5;";
    static constexpr const char* saveByUid = "SELECT * FROM Series_T WHERE SeriesInstanceUID ='1.2.5';";
    static constexpr const char* remove = "select * from Series_T where Series_T.Series_ID=5";

    static constexpr auto dateTime = &cSerie::SeriesDateTime;
    static constexpr String cSerie::*texts[] = {&cSerie::SeriesDescription};

    /// All properties with their values, one text each.
    static std::vector<String> ValuesOf(const cSerie& series) {
        const auto flag = [](bool value) { return String(value ? "true" : "false"); };
        return {"SeriesDateTime " + FormatDate(series.SeriesDateTime, "yyyy-mm-dd hh:nn:ss"),
                "SeriesDerived " + flag(series.SeriesDerived),
                "SeriesDescription " + series.SeriesDescription,
                "InstanceAv " + series.InstanceAv,
                "OrgServer " + CStr(series.OrgServer),
                "Key " + series.Key,
                "location " + CStr(Long{series.location}),
                "SeriesName " + series.SeriesName,
                "ImgCount " + CStr(series.ImgCount),
                "studyID " + CStr(series.studyID),
                "TemplateID " + CStr(series.TemplateID),
                "ID " + CStr(series.ID),
                "seriesNumber " + series.seriesNumber,
                "Modality " + series.Modality,
                "instanceUID " + series.instanceUID,
                "Approved " + flag(series.Approved),
                "Changed " + flag(series.Changed)};
    }

    static void FillStored(cSerie& series) {
        series.SeriesDateTime = DateFrom({2001, 2, 3, 4, 5, 6});
        series.SeriesDerived = false;
        series.SeriesDescription = "old descr";
        series.OrgServer = 91;
        series.location = gdcmObjectLocBoth;
        series.ImgCount = 92;
        series.studyID = 93;
        series.TemplateID = 94;
        series.ID = 95;
        series.seriesNumber = "old 96";
        series.Modality = "PX";
        series.instanceUID = "9.9";
    }
    static void FillUnstored(cSerie& series) {
        series.InstanceAv = "ONLINE";
        series.Key = "key";
        series.SeriesName = "name";
        series.Approved = series.Changed = true;
    }
};

/// Assigns n to the n-th property, as "text n" to a text; a flag becomes true, `Approved` false.
inline void SetEachProperty(Object& object) {
    Long n = 0;
    for (const Platform::Member& member : object.Describe().Members()) {
        if (member.Kind != Platform::MemberKind::Put) continue;
        ++n;
        Variant value = n;
        switch (member.Arguments.back().Type.Is) {
            case Platform::MemberType::Kind::Text: value = "text " + CStr(n); break;
            case Platform::MemberType::Kind::Boolean: value = member.Name != "Approved"; break;
            default: break;
        }
        member.Call(object, {&value, 1});
    }
}

/// A test with an object and its table; `Row` is one of the two above.
template <class Row>
class RowTest : public TestKit::WithDatabase {
protected:
    using Class = typename Row::Class;

    /// Stores the distinct values under key 5.
    void StoreDistinct() {
        Run(String("INSERT INTO ") + Row::table + " (" + Row::key + ", " + Row::columns + ") VALUES (5, " +
            Row::distinctValues + ")");
    }
    void Set(const String& column, const String& value) {
        Run(String("UPDATE ") + Row::table + " SET " + column + " = " + value);
    }
    Variant OfRow(const String& column, Long id = 1) {
        return Ask("SELECT " + column + " FROM " + Row::table + " WHERE " + Row::key + " = " + CStr(id));
    }
    /// All columns but the key, with "|" between them.
    Variant ContentOf(Long id) { return OfRow(Replace(Row::columns, ", ", " || '|' || "), id); }
    Long Count() { return CLng(Ask(String("SELECT COUNT(*) FROM ") + Row::table)); }

    /// Assigns other values than those of the row.
    void FillOtherwise() {
        Row::FillStored(*record);
        Row::FillUnstored(*record);
    }

    std::vector<String> Values() const { return Row::ValuesOf(*record); }
    bool Load(const String& name) { return ((*record).*Row::load)(name, con); }
    bool Save(bool byKey) { return ((*record).*Row::save)(byKey, con); }

    Ref<Class> record = New<Class>();
};

}  // namespace OXClass
