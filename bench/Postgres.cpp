#include "bench/Postgres.h"

#include "bench/ByHand.h"
#include "bench/Samples.h"

#include "images/cImages.h"
#include "platform/adodb/ConnectionString.h"
#include "platform/adodb/Transaction.h"

#include <charconv>
#include <libpq-fe.h>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>

namespace Bench {
namespace {

using namespace OXClass;

constexpr int Stored = 100'000;
constexpr int PatientsStored = 10;

struct Clear {
    void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, Clear>;

/// The columns that are read of an image: the same 36 as those of the other comparison, in one order.
#define READ_COLUMNS                                                                                       \
    "SELECT Approved, Brightness_INT, Contrast_INT, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC, "     \
    "HardwareSourcetxt_NVC, ImageBildID, ImageType, Invert_BT, PatientID, Responsible_Person_NVC, "        \
    "ImageBild_T.RootId, Root_T.Status, Root_T.RootDirectory, AnaRegion, AnaRegionMod, Laterality, "       \
    "PriStructure, MirrRotStatus, CRC, DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, " \
    "Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, DicomStatus_INT, FrameNumber_INT, "     \
    "SubType_INT, Gamma_INT, AnatomicRegion, DCMDerived_BT FROM ImageBild_T LEFT JOIN Root_T ON "          \
    "ImageBild_T.RootId=Root_T.RootId "

/// The work by hand.
class PostgresByHand {
public:
    explicit PostgresByHand(const std::string& settings) : connection_(PQconnectdb(settings.c_str()), PQfinish) {
        Prepare("patient", READ_COLUMNS "WHERE PatientID=$1 ORDER BY DateCaptured_SD NULLS FIRST, ImageBildID");
        Prepare("image", READ_COLUMNS "WHERE ImageBildID=$1");
        std::string marks;
        for (int i = 1; i <= 47; ++i) marks += (i == 1 ? "$" : ",$") + std::to_string(i);
        Prepare(
            "insert",
            "INSERT INTO ImageBild_T (ToothCollectionID, PatientID, DateCaptured_SD, Comments_NVC, StandCollName_NVC, "
            "ComputedDPI_INT, HardwareSourceId_INT, HardwareSourcetxt_NVC, RootId, GraphicURL_NVC, Invert_BT, "
            "StretchIntens_BT, Rotation_INT, Contrast_INT, Brightness_INT, Histogram_BT, ExposureTime_F, "
            "HorizMirror_BT, VerticalMirror_BT, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, CRC, "
            "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Pregnant_BT, XRaySource_NVC, "
            "PrevXrayDate_DT, Dosage_INT, Study_ID, Series_ID, SOPInstanceUID_NVC, ImageNumberInSeries, "
            "DicomStatus_INT, FrameNumber_INT, AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, AnaRegionMod, "
            "PriStructure, SubType_INT, Gamma_INT) VALUES (" +
                marks + ")");
        Prepare("newest", "SELECT MAX(ImageBildID) FROM ImageBild_T WHERE GraphicURL_NVC=$1 AND PatientID=$2");
    }

    void Execute(const char* statement) {
        Require(PQresultStatus(Result(PQexec(connection_.get(), statement)).get()) <= PGRES_TUPLES_OK);
    }

    std::vector<HandImage> LoadPatient(std::int64_t patient) { return Read(Run("patient", {std::to_string(patient)})); }
    std::vector<HandImage> LoadImage(std::int64_t id) { return Read(Run("image", {std::to_string(id)})); }

    std::int64_t Insert(const HandImage& i) {
        const auto number = [](std::int64_t value) { return std::to_string(value); };
        const std::string zeroDate = "1899-12-30 00:00:00";
        Run("insert", {"0",
                       number(i.patient),
                       zeroDate,
                       "",
                       "",
                       number(i.dpiX),
                       "100",
                       i.source,
                       number(i.root),
                       i.url,
                       number(i.invert),
                       "0",
                       "0",
                       number(i.contrast),
                       number(i.brightness),
                       "0",
                       number(i.exposure),
                       "0",
                       "0",
                       i.responsible,
                       i.approved ? "-1" : "0",
                       number(i.mirror),
                       number(i.type),
                       i.crc,
                       number(i.dpiY),
                       number(i.dpiX),
                       number(i.voltage),
                       number(i.current),
                       "",
                       "0",
                       "",
                       zeroDate,
                       "0",
                       number(i.study),
                       number(i.series),
                       i.uid,
                       number(i.number),
                       number(i.status),
                       number(i.frame),
                       i.crop,
                       number(i.derived),
                       i.laterality,
                       i.region,
                       i.modifier,
                       i.teeth,
                       number(i.subType),
                       number(i.gamma)});
        return std::stoll(PQgetvalue(Run("newest", {i.url, number(i.patient)}).get(), 0, 0));
    }

private:
    void Prepare(const char* name, const std::string& statement) {
        const Result result(PQprepare(connection_.get(), name, statement.c_str(), 0, nullptr));
        if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
            throw std::runtime_error(PQerrorMessage(connection_.get()));
    }

    Result Run(const char* name, const std::vector<std::string>& values) {
        std::vector<const char*> texts;
        texts.reserve(values.size());
        for (const std::string& value : values) texts.push_back(value.c_str());
        Result result(
            PQexecPrepared(connection_.get(), name, static_cast<int>(texts.size()), texts.data(), nullptr, nullptr, 0));
        if (PQresultStatus(result.get()) != PGRES_COMMAND_OK && PQresultStatus(result.get()) != PGRES_TUPLES_OK)
            throw std::runtime_error(PQerrorMessage(connection_.get()));
        return result;
    }

    static std::vector<HandImage> Read(const Result& rows) {
        std::vector<HandImage> images(static_cast<std::size_t>(PQntuples(rows.get())));
        for (std::size_t row = 0; row < images.size(); ++row) ReadRow(rows.get(), static_cast<int>(row), images[row]);
        return images;
    }

    static void ReadRow(const PGresult* rows, int row, HandImage& image) {
        int column = 0;
        const auto text = [&] {
            const int at = column++;
            return std::string(PQgetvalue(rows, row, at), static_cast<std::size_t>(PQgetlength(rows, row, at)));
        };
        const auto whole = [&] {
            const int at = column++;
            const char* const digits = PQgetvalue(rows, row, at);
            std::int64_t value = 0;
            std::from_chars(digits, digits + PQgetlength(rows, row, at), value);
            return value;
        };
        image.approved = whole() != 0;
        image.brightness = whole();
        image.contrast = whole();
        image.captured = static_cast<double>(Platform::ParseDate(text())->Days);
        image.exposure = whole();
        image.url = text();
        image.source = text();
        image.id = whole();
        image.type = whole();
        image.invert = whole() != 0;
        image.patient = whole();
        image.responsible = text();
        image.root = whole();
        image.rootStatus = whole();
        image.rootDirectory = text();
        image.region = text();
        image.modifier = text();
        image.laterality = text();
        image.teeth = text();
        image.mirror = whole();
        image.crc = text();
        image.dpiY = whole();
        image.dpiX = whole();
        image.voltage = whole();
        image.current = whole();
        image.capture = text();
        image.study = whole();
        image.series = whole();
        image.uid = text();
        image.number = whole();
        image.status = whole();
        image.frame = whole();
        image.subType = whole();
        image.gamma = whole();
        image.crop = text();
        image.derived = whole();
    }

    std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
};

/// Fills the table of images; image i belongs to patient i % PatientsStored.
void Fill(const Ref<Connection>& con) {
    con->Execute("INSERT INTO Root_T (RootID, RootDirectory, Status) VALUES (1, '/srv/images', 1)");
    con->Execute(
        "INSERT INTO ImageBild_T (PatientID, DateCaptured_SD, HardwareSourcetxt_NVC, RootId, GraphicURL_NVC, "
        "Invert_BT, "
        "Contrast_INT, Brightness_INT, ExposureTime_F, Responsible_Person_NVC, Approved, MirrRotStatus, ImageType, "
        "CRC, "
        "DPIY_INT, DPIX_INT, Voltage_INT, Current_INT, Capture_Person_NVC, Study_ID, Series_ID, SOPInstanceUID_NVC, "
        "ImageNumberInSeries, DicomStatus_INT, FrameNumber_INT, AnatomicRegion, DCMDerived_BT, Laterality, AnaRegion, "
        "AnaRegionMod, PriStructure, SubType_INT, Gamma_INT) SELECT i % " +
        std::to_string(PatientsStored) +
        ", timestamp '2001-01-01' + i * interval '97 minutes', 'Sensor 3 serial ' || i % 7, 1, '0_\\2.25.' || i || "
        "'.dcm', "
        "0, 10, -5, 120, 'Anna Ek', -1, 1, 1, '9AF3' || i, 577, 577, 65, 7, 'Bo Alm', i / 20, i / 20, '2.25.' || i, i "
        "% 20, "
        "2, i % 20 + 1, '', 0, 'R', 'T-11170', 'T-5100B', '16,17,18,', 0, 100 FROM generate_series(1, " +
        std::to_string(Stored) + ") i");
    con->Execute("VACUUM ANALYZE");
}

void CompareSaves(Report& report, const Ref<Connection>& con, PostgresByHand& hand, bool oneTransaction) {
    constexpr int count = 2'000;
    std::vector<HandImage> values;
    for (int i = 0; i < count; ++i) values.push_back(SampleOf(i));
    report.Compare(
        oneTransaction ? "postgresql-save-together" : "postgresql-save-alone",
        oneTransaction ? "PostgreSQL: 2,000 saves in one transaction" : "PostgreSQL: 2,000 saves each on its own",
        "each", count, 9,
        [&] {
            std::optional<ADODB::Transaction> transaction;
            if (oneTransaction) transaction.emplace(con);
            for (const HandImage& value : values) {
                const Ref<cImage> image = ObjectOf(value);
                image->Save(con);
                Require(image->ID > 0);
            }
            if (transaction) transaction->Commit();
        },
        [&] {
            if (oneTransaction) hand.Execute("BEGIN");
            for (const HandImage& value : values) Require(hand.Insert(value) > 0);
            if (oneTransaction) hand.Execute("COMMIT");
        },
        [&] {
            hand.Execute("DELETE FROM ImageBild_T WHERE Series_ID >= 9000000");
            hand.Execute("VACUUM ImageBild_T");
        });
}

}  // namespace

void BenchPostgres(Report& report, const std::string& server) {
    const Ref<Connection> con = New<Connection>();
    con->Open(server + ";Database=clinic");
    con->SetCommandTimeout(0);
    Fill(con);
    PostgresByHand hand("dbname=clinic user=oxclass host=" + ADODB::ConnectionString(server).Value("Server"));
    constexpr std::size_t expected = Stored / PatientsStored;
    report.Compare(
        "postgresql-load-patient", "PostgreSQL: load 10,000 images of a patient, of 100,000", "an image", expected, 15,
        [&] {
            const Ref<cImages> images = New<cImages>();
            Require(images->LoadAll4Object(con, iootPatient, 7) == Long{expected});
        },
        [&] { Require(hand.LoadPatient(7).size() == expected); });
    std::mt19937 random(1);
    std::vector<Long> ids(5'000);
    for (Long& id : ids) id = static_cast<Long>(random() % Stored) + 1;
    report.Compare(
        "postgresql-load-single", "PostgreSQL: 5,000 single loads", "each", ids.size(), 15,
        [&] {
            for (const Long id : ids) {
                const Ref<cImage> image = New<cImage>();
                Require(image->GetImage(con, id) && image->ID == id);
            }
        },
        [&] {
            for (const Long id : ids) Require(hand.LoadImage(id).front().id == id);
        });
    CompareSaves(report, con, hand, true);
    CompareSaves(report, con, hand, false);
}

}  // namespace Bench
