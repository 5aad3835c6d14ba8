#include "bench/Clinic.h"

#include "Schema.h"

#include <cstdio>
#include <filesystem>
#include <sqlite3.h>
#include <stdexcept>

namespace Bench {
namespace {

void Run(sqlite3* database, const std::string& script) {
    char* message = nullptr;
    sqlite3_exec(database, script.c_str(), nullptr, nullptr, &message);
    if (message) throw std::runtime_error(message);
}

std::string FillStatement(ClinicSize size) {
    return "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(size.images) +
           ") INSERT INTO ImageBild_T (ImageBildID, ToothCollectionID, PatientID, DateCaptured_SD, "
           "Comments_NVC, "
           "StandCollName_NVC, ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, RootId, "
           "GraphicURL_NVC, "
           "Invert_BT, StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, "
           "ExposureTime_F, "
           "HorizMirror_BT, VerticalMirror_BT, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, "
           "CRC, "
           "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, "
           "PrevXrayDate_DT, Dosage_INT, Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, "
           "DicomStatus_INT, FrameNumber_INT, AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, "
           "AnaRegionMod, "
           "PriStructure, SubType_INT, Gamma_INT) SELECT i, 0, i % " +
           std::to_string(size.patients) +
           ", datetime('2001-01-01', '+' || (i * 97 % 9000000) || ' minutes'), '', '', 577, 100, 'Sensor 3 "
           "serial ' || "
           "(i % 7), 1, '0_\\2.25.' || (i * 1000003) || '.dcm', 0, 0, 0, 10, -5, 0, 120, 0, 0, 'Anna Ek', "
           "-1, 1, 1, "
           "'9AF3' || i, 577, 577, 65, 7, 'Bo Alm', NULL, '', '1899-12-30 00:00:00', 0, i / 20, i / 20, "
           "'2.25.' || (i * "
           "1000003), i % 20, 2, i % 20 + 1, '', 0, 'R', 'T-11170', 'T-5100B', '16,17,18,', 0, 100 FROM n;";
}

/// A patient with as many image cards as series, each series with the 20 images that bear its number, each
/// card with 20 of them placed and every fourth one turned. Cards and series alternate by date.
std::string ListStatements(const ListOfCards& list) {
    const int patient = list.patient, firstSeries = list.firstKey, count = list.entries / 2;
    const auto text = [](int number) { return std::to_string(number); };
    const std::string numbers =
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < " + text(count) + ") ";
    const std::string key = text(firstSeries) + " + i";
    return "INSERT INTO Patient_T (PatientID, PersonNr_CH, LastName_NVC) VALUES (" + text(patient) + ", 'P" +
           text(patient) + "', 'Ek');" +
           "INSERT INTO Study_T (Study_ID, StudyInstanceUID, PatientID, "
           "accessionNumber, StudyDateTime, Studydesc, referDrName, studyID, PhysOfRecord) " +
           numbers + "SELECT " + key + ", '2.25.8' || i, " + text(patient) +
           ", '', datetime('2001-01-01', '+' || i || ' hours'), 'Control', "
           "'', 'S' || i, '' FROM n;" +
           "INSERT INTO Series_T (Series_ID, SeriesInstanceUID, Modality, seriesNumber, "
           "template_ID, Study_ID, orgServerID, SeriesDescription, SeriesDateTime, Derived_BT, location, "
           "NumberOfImages) " +
           numbers + "SELECT " + key + ", '2.25.7' || i, 'IO', '1', 5, " + key +
           ", 0, 'Full mouth', datetime('2001-01-01', '+' || i || ' hours'), 0, 1, 20 FROM n;"
           "INSERT INTO ImageCard_T (ImageCardID, PatientID, ICName, ICDateCreated, ICLastUpdate, "
           "ICDescription, "
           "ICFullViewWidth, ICFullViewHeight, ICMaximized) " +
           numbers + "SELECT " + key + ", " + text(patient) +
           ", 'Card ' || i, datetime('2001-01-01', '+' || i || ' hours', '+30 minutes'), '2020-01-01 "
           "10:00:00', '', "
           "1000, 700, 0 FROM n;"
           "INSERT INTO ImageAttribute_T (ImageCardID, ImageBildId, IAFullViewWidth, IAFullViewHeight, "
           "IAFullViewPosX, IAFullViewPosY, IASequence, IAComments, IAMirrRotStatus) " +
           numbers + ", k(j) AS (SELECT 1 UNION ALL SELECT j + 1 FROM k WHERE j < 20) SELECT " + key + ", (" + key +
           ") * 20 + j, 0.19, 0.19, j % 5 * 0.2, j / 5 * 0.2, j, '', 1 FROM n, k;"
           "INSERT INTO ImageManipulation_T (ImageAttributeID, SequenceNo, Type, LongParameter, "
           "StringParameter) "
           "SELECT ImageAttributeID, 1, 6, 90, '' FROM ImageAttribute_T WHERE IASequence % 4 = 0 AND "
           "ImageCardID "
           "BETWEEN " +
           text(firstSeries) + " AND " + text(firstSeries + count - 1) + ";";
}

}  // namespace

std::string ClinicIn(const std::string& folder, const std::string& name, ClinicSize size,
                     const std::vector<ListOfCards>& lists) {
    std::string path = folder + "/" + name;
    if (std::filesystem::exists(path)) return path;
    std::fprintf(stderr, "Making %s with %d images ...\n", path.c_str(), size.images);
    const std::string partial = path + ".part";
    std::filesystem::remove(partial);
    sqlite3* database = nullptr;
    sqlite3_open(partial.c_str(), &database);
    std::string script = "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN;" + std::string(schema::sqlite_sql) +
                         std::string(schema::layouts_sql) +
                         "INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '/srv/images', 1);" +
                         FillStatement(size);
    for (const ListOfCards& list : lists) script += ListStatements(list);
    Run(database, script + "COMMIT;");
    sqlite3_close(database);
    std::filesystem::rename(partial, path);
    return path;
}

Platform::Ref<ADODB::Connection> Connect(const std::string& path) {
    Platform::Ref<ADODB::Connection> con = Platform::New<ADODB::Connection>();
    con->Open("Provider=SQLite;Data Source=" + path);
    return con;
}

}  // namespace Bench
