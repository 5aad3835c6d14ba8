#include "bench/ByHand.h"

#include "bench/HandRow.h"
#include "bench/ImageByHand.h"

#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>
#include <stdexcept>

namespace Bench {
namespace {

/// The statement of the card list's entries, word for word, up to the condition.
#define WHOLE_ROWS "SELECT * FROM ImageBild_T LEFT JOIN Root_T ON ImageBild_T.RootId=Root_T.RootId "

/// The same columns by name, as a whole row has them.
constexpr const char* ColumnNames[] = {"Approved",
                                       "Brightness_INT",
                                       "Contrast_INT",
                                       "DateCaptured_SD",
                                       "ExposureTime_F",
                                       "GraphicURL_NVC",
                                       "HardwareSourcetxt_NVC",
                                       "ImageBildID",
                                       "ImageType",
                                       "Invert_BT",
                                       "PatientID",
                                       "Responsible_Person_NVC",
                                       "RootId",
                                       "Status",
                                       "RootDirectory",
                                       "AnaRegion",
                                       "AnaRegionMod",
                                       "Laterality",
                                       "PriStructure",
                                       "MirrRotStatus",
                                       "CRC",
                                       "DPIY_INT",
                                       "DPIX_INT",
                                       "Voltage_INT",
                                       "Current_INT",
                                       "Capture_Person_NVC",
                                       "Study_ID",
                                       "Series_ID",
                                       "SOPInstanceUID_NVC",
                                       "ImageNumberInSeries",
                                       "DicomStatus_INT",
                                       "FrameNumber_INT",
                                       "SubType_INT",
                                       "Gamma_INT",
                                       "AnatomicRegion",
                                       "DCMDerived_BT"};

/// Where a statement has these columns.
std::vector<int> PlacesIn(sqlite3_stmt* statement) {
    std::vector<int> places;
    for (const char* name : ColumnNames)
        for (int i = 0; i < sqlite3_column_count(statement); ++i)
            if (std::string_view(name) == sqlite3_column_name(statement, i)) {
                places.push_back(i);
                break;
            }
    if (places.size() != std::size(ColumnNames)) throw std::runtime_error("a column is missing");
    return places;
}

/// Reads the columns of a row one after the other.
class SqliteRow {
public:
    SqliteRow(sqlite3_stmt* row, const std::vector<int>& places) : row_(row), column_(places.begin()) {}
    std::int64_t Whole() { return sqlite3_column_int64(row_, *column_++); }
    std::string Text() { return Bench::Text(row_, *column_++); }
    double Days() { return Bench::Days(row_, *column_++); }

private:
    sqlite3_stmt* row_;
    std::vector<int>::const_iterator column_;
};

/// Binds values in order; texts are not copied.
class Binder {
public:
    explicit Binder(sqlite3_stmt* statement) : statement_(statement) {}
    Binder& operator<<(std::int64_t value) {
        sqlite3_bind_int64(statement_, ++at_, value);
        return *this;
    }
    Binder& operator<<(const std::string& value) {
        sqlite3_bind_text(statement_, ++at_, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
        return *this;
    }

private:
    sqlite3_stmt* statement_;
    int at_ = 0;
};

}  // namespace

ByHand::ByHand(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK)
        throw std::runtime_error("can't open " + path);
    Execute("PRAGMA journal_mode=WAL");
    Execute("PRAGMA synchronous=NORMAL");
    ofPatient_ = Prepare(READ_COLUMNS "WHERE PatientID=? ORDER BY DateCaptured_SD, ImageBildID");
    ofSeries_ = Prepare(READ_COLUMNS "WHERE Series_ID=? ORDER BY DateCaptured_SD, ImageBildID");
    ofSeriesWhole_ = Prepare(WHOLE_ROWS "where Series_ID=? ORDER BY DateCaptured_SD, ImageBildID");
    one_ = Prepare(READ_COLUMNS "WHERE ImageBildID=?");
    std::string marks = "(?";
    for (int i = 1; i < InsertedValues; ++i) marks += ",?";
    insert_ = Prepare((INSERT_IMAGE + marks + ")").c_str());
    newest_ = Prepare("SELECT MAX(ImageBildID) FROM ImageBild_T WHERE GraphicURL_NVC=? AND PatientID=?");
    update_ = Prepare(
        "UPDATE ImageBild_T SET ImageType=?, GraphicURL_NVC=?, Approved=?, MirrRotStatus=?, DPIY_INT=?, "
        "DPIX_INT=?, "
        "ComputedDPI_INT=?, PriStructure=?, Study_ID=?, Series_ID=?, SOPInstanceUID_NVC=?, "
        "HardwareSourcetxt_NVC=?, "
        "ImageNumberInSeries=?, dicomStatus_INT=?, AnaRegion=?, AnaRegionMod=?, FrameNumber_INT=?, "
        "Gamma_INT=?, "
        "Invert_BT=?, Contrast_INT=?, Brightness_INT=?, CRC=?, Laterality=?, PatientID=?, "
        "Capture_Person_NVC=?, "
        "Responsible_Person_NVC=?, Voltage_INT=?, DCMDerived_BT=?, SubType_INT=?, Current_INT=?, "
        "AnatomicRegion=?, "
        "ExposureTime_F=? WHERE ImageBildID=?");
}

ByHand::~ByHand() {
    for (sqlite3_stmt* statement : all_) sqlite3_finalize(statement);
    sqlite3_close(database_);
}

void ByHand::Execute(const char* statement) {
    if (sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
}

sqlite3_stmt* ByHand::Prepare(const char* statement) {
    sqlite3_stmt* compiled = nullptr;
    if (sqlite3_prepare_v3(database_, statement, -1, SQLITE_PREPARE_PERSISTENT, &compiled, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
    all_.push_back(compiled);
    return compiled;
}

std::vector<HandImage> ByHand::Load(sqlite3_stmt* statement, std::int64_t key) {
    sqlite3_bind_int64(statement, 1, key);
    return Walk(statement);
}

const std::vector<int>& ByHand::PlacesOf(sqlite3_stmt* statement) {
    std::vector<int>& places = places_[statement];
    if (places.empty()) places = PlacesIn(statement);
    return places;
}

std::vector<HandImage> ByHand::Walk(sqlite3_stmt* statement) {
    std::vector<HandImage> images;
    const std::vector<int>& places = PlacesOf(statement);
    while (sqlite3_step(statement) == SQLITE_ROW) ReadImage(SqliteRow(statement, places), images.emplace_back());
    sqlite3_reset(statement);
    return images;
}

std::vector<HandImage> ByHand::LoadChosen(const std::vector<std::int64_t>& ids) {
    sqlite3_stmt*& statement = chosen_[ids.size()];
    if (!statement) {
        std::string text = WHOLE_ROWS "WHERE ";
        for (std::size_t i = 0; i < ids.size(); ++i) text += i == 0 ? "ImageBildID=?" : " OR ImageBildID=?";
        statement = Prepare((text + " ORDER BY DateCaptured_SD, ImageBildID").c_str());
    }
    int at = 0;
    for (const std::int64_t id : ids) sqlite3_bind_int64(statement, ++at, id);
    return Walk(statement);
}

HandImage ByHand::LoadImage(std::int64_t id) {
    HandImage image{};
    sqlite3_bind_int64(one_, 1, id);
    if (sqlite3_step(one_) == SQLITE_ROW) ReadImage(SqliteRow(one_, PlacesOf(one_)), image);
    sqlite3_reset(one_);
    return image;
}

std::int64_t ByHand::Insert(const HandImage& i) {
    BindImage(Binder(insert_), i);
    if (sqlite3_step(insert_) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database_));
    sqlite3_reset(insert_);
    Binder(newest_) << i.url << i.patient;
    sqlite3_step(newest_);
    const std::int64_t id = sqlite3_column_int64(newest_, 0);
    sqlite3_reset(newest_);
    return id;
}

void ByHand::Update(const HandImage& i) {
    Binder(update_) << i.type << i.url << (i.approved ? -1 : 0) << i.mirror << i.dpiY << i.dpiX << i.dpiX << i.teeth
                    << i.study << i.series << i.uid << i.source << i.number << i.status << i.region << i.modifier
                    << i.frame << i.gamma << i.invert << i.contrast << i.brightness << i.crc << i.laterality
                    << i.patient << i.capture << i.responsible << i.voltage << i.derived << i.subType << i.current
                    << i.crop << i.exposure << i.id;
    if (sqlite3_step(update_) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database_));
    sqlite3_reset(update_);
}

void ByHand::Forget() {
    Execute("DELETE FROM ImageBild_T WHERE Series_ID >= 9000000");
    Execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

}  // namespace Bench
