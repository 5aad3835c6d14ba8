#include "bench/CardsByHand.h"

#include "bench/HandRow.h"

#include <algorithm>
#include <stdexcept>

namespace Bench {
namespace {

constexpr const char* CardsText =
    "SELECT Patient_T.PatientID as PatientID,  Patient_T.*, ImageCard_T.* FROM Patient_T INNER JOIN "
    "ImageCard_T ON "
    "Patient_T.PatientId=ImageCard_T.PatientId WHERE PersonNr_CH=? ORDER BY ICDateCreated desc ";

constexpr const char* SeriesText =
    "SELECT Series_T.Template_ID, Series_T.SeriesDescription, Series_T.SeriesDateTime, Series_T.Derived_BT, "
    "Series_T.NumberOfImages, Series_T.Series_ID, Series_T.SeriesNumber,Series_T.SeriesInstanceUID,"
    "Series_T.OrgServerID , Study_T.StudyInstanceUID,Study_T.ReferDrName, Study_T.PhysOfRecord, "
    "Study_T.StudyDesc , "
    "Study_T.StudyDateTime, Study_T.StudyID, Study_T.Study_ID, Study_T.PatientID, Study_T.Accessionnumber, "
    "Count(Series_T.Series_ID) AS ImageCount, Max(ImageBild_T.ImageBildID) AS ZeroImages, "
    "Sum(ImageBild_T.Approved) AS ApprovedSum, Sum(ImageBild_T.DicomStatus_INT) AS DicomStatusSum, "
    "series_T.ICShortcut FROM (Study_T INNER JOIN Series_T ON Study_T.Study_ID = Series_T.study_id) LEFT "
    "JOIN "
    "ImageBild_T ON (Series_T.Series_ID = ImageBild_T.Series_ID and ImageBild_T.GraphicURL_NVC <> '') Where "
    "Study_T.patientid =? GROUP BY Series_T.Series_ID, Study_T.StudyInstanceUID, Study_T.StudyDateTime, "
    "Study_T.StudyID,Study_T.StudyDesc, Study_T.ReferDrName, Series_T.SeriesInstanceUID, "
    "Series_T.SeriesNumber, "
    "Study_T.Study_ID, Study_T.PatientID,  Study_T.PhysOfRecord,Study_T.Accessionnumber, "
    "Series_T.SeriesNumber,"
    "series_T.ICShortcut, Series_T.NumberOfImages, Series_T.OrgServerID, Series_T.SeriesDescription, "
    "Series_T.SeriesDateTime, Series_T.Derived_BT,Series_T.Template_ID ORDER BY Study_T.StudyDateTime DESC, "
    "Series_T.Series_ID DESC";

/// Returns the card of a row. Its columns follow the seventeen columns of the patient.
HandEntry CardOf(sqlite3_stmt* row) {
    constexpr int card = 17;
    HandEntry entry;
    entry.patient = sqlite3_column_int64(row, 0);
    entry.id = sqlite3_column_int64(row, card);
    entry.name = Text(row, card + 2);
    entry.date = Days(row, card + 3);
    entry.changed = Days(row, card + 4);
    entry.description = Text(row, card + 5);
    entry.width = sqlite3_column_int64(row, card + 6);
    entry.height = sqlite3_column_int64(row, card + 7);
    return entry;
}

HandEntry SeriesOf(sqlite3_stmt* row) {
    HandEntry entry;
    entry.series = true;
    entry.layout = sqlite3_column_int64(row, 0);
    entry.description = Text(row, 1);
    entry.date = Days(row, 2);
    entry.derived = sqlite3_column_int64(row, 3) != 0;
    entry.id = sqlite3_column_int64(row, 5);
    entry.number = Text(row, 6);
    entry.uid = Text(row, 7);
    entry.server = sqlite3_column_int64(row, 8);
    entry.studyUID = Text(row, 9);
    entry.referring = Text(row, 10);
    entry.physicians = Text(row, 11);
    entry.studyText = Text(row, 12);
    entry.studyDate = Days(row, 13);
    entry.studyID = Text(row, 14);
    entry.study = sqlite3_column_int64(row, 15);
    entry.accession = Text(row, 17);
    entry.images = sqlite3_column_int64(row, 18);
    entry.approved = entry.images == std::abs(sqlite3_column_int64(row, 20));
    entry.both = sqlite3_column_int64(row, 21) == 2 * entry.images;
    return entry;
}

template <class Take>
void Walk(sqlite3_stmt* statement, Take take) {
    while (sqlite3_step(statement) == SQLITE_ROW) take(statement);
    sqlite3_reset(statement);
}

}  // namespace

CardsByHand::CardsByHand(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
    cards_ = Prepare(CardsText);
    series_ = Prepare(SeriesText);
    placed_ = Prepare("SELECT * FROM ImageAttribute_T WHERE ImageCardID = ?;");
    steps_ = Prepare("SELECT * FROM ImageManipulation_T WHERE ImageAttributeID=? ORDER BY SequenceNo;");
    layout_ = Prepare("SELECT * FROM TemplateCard_T WHERE TCDicomId = ?");
    slots_ = Prepare(
        "SELECT TemplateImageId, TemplateID, TAGroupName, TASequence, TARotation, TAFullViewWidth, "
        "TAFullViewHeight, "
        "TAFullViewPosX, TAFullViewPosY,TAPreviewWidth, TAPreviewHeight, TAPreviewPosX, TAPreviewPosY, "
        "TANumberInTemplate , TAProportions, TAComments, TATGId FROM TemplateAttribute_T WHERE TemplateID = "
        "? ORDER BY "
        "TANumberInTemplate");
}

CardsByHand::~CardsByHand() {
    for (sqlite3_stmt* statement : all_) sqlite3_finalize(statement);
    sqlite3_close(database_);
}

sqlite3_stmt* CardsByHand::Prepare(const char* statement) {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v3(database_, statement, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
    all_.push_back(prepared);
    return prepared;
}

std::vector<HandEntry> CardsByHand::List(const std::string& personalNumber) {
    std::vector<HandEntry> entries;
    sqlite3_bind_text(cards_, 1, personalNumber.data(), static_cast<int>(personalNumber.size()), SQLITE_STATIC);
    Walk(cards_, [&](sqlite3_stmt* row) { entries.push_back(CardOf(row)); });
    sqlite3_bind_int64(series_, 1, entries.empty() ? 0 : entries.front().patient);
    Walk(series_, [&](sqlite3_stmt* row) { entries.push_back(SeriesOf(row)); });
    std::stable_sort(entries.begin(), entries.end(),
                     [](const HandEntry& a, const HandEntry& b) { return a.date > b.date; });
    return entries;
}

std::vector<HandPlaced> CardsByHand::PlacedOn(std::int64_t card) {
    std::vector<HandPlaced> placed;
    sqlite3_bind_int64(placed_, 1, card);
    Walk(placed_, [&](sqlite3_stmt* row) {
        HandPlaced one;
        one.id = sqlite3_column_int64(row, 0);
        one.image = sqlite3_column_int64(row, 2);
        one.width = sqlite3_column_double(row, 3);
        one.height = sqlite3_column_double(row, 4);
        one.x = sqlite3_column_double(row, 5);
        one.y = sqlite3_column_double(row, 6);
        one.sequence = sqlite3_column_int64(row, 20);
        one.comments = Text(row, 21);
        one.form = sqlite3_column_int64(row, 22);
        sqlite3_bind_int64(steps_, 1, one.id);
        Walk(steps_, [&](sqlite3_stmt*) { ++one.steps; });
        placed.push_back(std::move(one));
    });
    return placed;
}

std::vector<HandPlaced> CardsByHand::SlotsOf(std::int64_t layout) {
    std::int64_t key = 0;
    sqlite3_bind_int64(layout_, 1, layout);
    Walk(layout_, [&](sqlite3_stmt* row) { key = sqlite3_column_int64(row, 0); });
    std::vector<HandPlaced> slots;
    sqlite3_bind_int64(slots_, 1, key);
    Walk(slots_, [&](sqlite3_stmt* row) {
        HandPlaced slot;
        slot.id = sqlite3_column_int64(row, 0);
        slot.comments = Text(row, 2);
        slot.width = sqlite3_column_double(row, 5);
        slot.height = sqlite3_column_double(row, 6);
        slot.x = sqlite3_column_double(row, 7);
        slot.y = sqlite3_column_double(row, 8);
        slot.sequence = sqlite3_column_int64(row, 13);
        slots.push_back(std::move(slot));
    });
    return slots;
}

}  // namespace Bench
