#include "bench/Servers.h"

#include "bench/CompareImages.h"
#include "bench/OdbcByHand.h"
#include "bench/PostgresByHand.h"

#include "platform/adodb/ConnectionString.h"

namespace Bench {
namespace {

using namespace OXClass;

/// Image i belongs to patient i % 10.
constexpr const char* FillColumns =
    "INSERT INTO ImageBild_T (PatientID, DateCaptured_SD, HardwareSourcetxt_NVC, RootId, GraphicURL_NVC, Invert_BT, "
    "Contrast_INT, Brightness_INT, ExposureTime_F, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, CRC, "
    "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Study_ID, Series_ID, SOPInstanceUID_NVC, "
    "ImageNumberInSeries, DicomStatus_INT, FrameNumber_INT, AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, "
    "AnaRegionMod, PriStructure, SubType_INT, Gamma_INT) SELECT i % 10, ";
constexpr const char* FillValues =
    ", 'Sensor 3 serial ' || (i % 7), 1, '0_\\2.25.' || i || '.dcm', 0, 10, -5, 120, 'Anna Ek', -1, 1, 1, '9AF3' || i, "
    "577, 577, 65, 7, 'Bo Alm', floor(i / 20), floor(i / 20), '2.25.' || i, i % 20, 2, i % 20 + 1, '', 0, 'R', "
    "'T-11170', "
    "'T-5100B', '16,17,18,', 0, 100 FROM ";

/// Fills the table of images. `date` is the date of image i in the engine's own form, `numbers` a table of the numbers
/// i.
void Fill(const Ref<Connection>& con, const std::string& date, const std::string& numbers) {
    con->Execute("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '/srv/images', 1)");
    con->Execute(FillColumns + date + FillValues + numbers);
}

ImageWork WorkOf(const std::string& key, const std::string& engine) {
    return {key, engine, 100'000, "100,000", 5'000, "5,000", 2'000, "2,000"};
}

void BenchPostgres(Report& report, const Ref<Connection>& con, const ADODB::ConnectionString& settings) {
    Fill(con, "timestamp '2001-01-01' + i * interval '97 minutes'", "generate_series(1, 100000) i");
    con->Execute("VACUUM ANALYZE");
    PostgresByHand hand("dbname=clinic user=oxclass host=" + settings.Value("Server"));
    ImageComparison(report, con, hand, WorkOf("postgresql-", "PostgreSQL: ")).Run();
}

void BenchMariaDb(Report& report, const Ref<Connection>& con, const ADODB::ConnectionString& settings) {
    Fill(con, "timestamp '2001-01-01 00:00:00' + INTERVAL i * 97 MINUTE", "(SELECT seq AS i FROM seq_1_to_100000) n");
    con->Execute("ANALYZE TABLE ImageBild_T");
    OdbcByHand hand("Driver=" + settings.Value("Driver") + ";Socket=" + settings.Value("Socket") +
                    ";Database=clinic;UID=" + settings.Value("User ID") + ";Charset=utf8mb4");
    ImageComparison(report, con, hand, WorkOf("mariadb-", "MariaDB: ")).Run();
}

}  // namespace

void BenchServer(Report& report, const std::string& server) {
    const Ref<Connection> con = New<Connection>();
    con->Open(server + ";Database=clinic");
    con->SetCommandTimeout(0);
    const ADODB::ConnectionString settings(server);
    const auto bench = settings.Value("Provider") == "PostgreSQL" ? BenchPostgres : BenchMariaDb;
    bench(report, con, settings);
}

}  // namespace Bench
