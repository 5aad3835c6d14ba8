#include "cardlist/cUniCards.h"

#include "cards/CanvasSide.h"
#include "frame/Help.h"
#include "platform/component/dispatch/InterfaceTable.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace OXClass {

using namespace Platform;

namespace {

constexpr char SelectCards[] =
    "SELECT Patient_T.PatientID as PatientID,  Patient_T.*, ImageCard_T.* FROM Patient_T INNER JOIN "
    "ImageCard_T ON Patient_T.PatientId=ImageCard_T.PatientId WHERE ";
constexpr char NewestFirst[] = " ORDER BY ICDateCreated desc ";

String CardsStatement(const String& personalNumber) {
    return sql(SelectCards, "PersonNr_CH='", Verbatim(personalNumber), "'", NewestFirst);
}

String CardsStatement(Long patient) { return sql(SelectCards, "Patient_T.PatientID=", patient, NewestFirst); }

String SeriesStatement(Long patient) {
    return sql(
        "SELECT Series_T.Template_ID, Series_T.SeriesDescription, Series_T.SeriesDateTime, "
        "Series_T.Derived_BT, Series_T.NumberOfImages, Series_T.Series_ID, "
        "Series_T.SeriesNumber,Series_T.SeriesInstanceUID,Series_T.OrgServerID , "
        "Study_T.StudyInstanceUID,Study_T.ReferDrName, Study_T.PhysOfRecord, Study_T.StudyDesc , "
        "Study_T.StudyDateTime, Study_T.StudyID, Study_T.Study_ID, Study_T.PatientID, "
        "Study_T.Accessionnumber, Count(Series_T.Series_ID) AS ImageCount, "
        "Max(ImageBild_T.ImageBildID) AS ZeroImages, ",
        "Sum(ImageBild_T.Approved) AS ApprovedSum, Sum(ImageBild_T.DicomStatus_INT) AS DicomStatusSum, "
        "series_T.ICShortcut FROM (Study_T INNER JOIN Series_T ON Study_T.Study_ID = Series_T.study_id) "
        "LEFT JOIN ImageBild_T ON (Series_T.Series_ID = ImageBild_T.Series_ID and "
        "ImageBild_T.GraphicURL_NVC <> '') ",
        "Where Study_T.patientid =", patient, "",
        " GROUP BY Series_T.Series_ID, Study_T.StudyInstanceUID, Study_T.StudyDateTime, "
        "Study_T.StudyID,Study_T.StudyDesc, Study_T.ReferDrName, Series_T.SeriesInstanceUID, "
        "Series_T.SeriesNumber, Study_T.Study_ID, Study_T.PatientID,  "
        "Study_T.PhysOfRecord,Study_T.Accessionnumber, Series_T.SeriesNumber,series_T.ICShortcut, "
        "Series_T.NumberOfImages, Series_T.OrgServerID, Series_T.SeriesDescription, "
        "Series_T.SeriesDateTime, Series_T.Derived_BT,Series_T.Template_ID ",
        "ORDER BY Study_T.StudyDateTime DESC, Series_T.Series_ID DESC");
}

Ref<cImagecard> CardOf(const Ref<Recordset>& rs) {
    Ref<cImagecard> card = New<cImagecard>();
    card->ICCreateDate = Required<Date>(rs, "ICDateCreated");
    card->ICDescription = Required<String>(rs, "ICDescription");
    card->ICHeight = CLng(CanvasSide(rs, "ICFullViewHeight", "ICPreviewHeight"));
    card->ICWidth = CLng(CanvasSide(rs, "ICFullViewWidth", "ICPreviewWidth"));
    card->ICLastUpdate = Required<Date>(rs, "ICLastUpdate");
    card->ICName = Required<String>(rs, "ICName");
    card->ICID = Required<Long>(rs, "ImageCardID");
    card->ICPID = Required<Long>(rs, "PatientID");
    return card;
}

Ref<cStudy> StudyOf(const Ref<Recordset>& rs) {
    Ref<cStudy> study = New<cStudy>();
    study->studyID = Required<String>(rs, "StudyID");
    if (study->studyID.empty()) study->studyID = "&NEWSTUDY";
    study->dateTime = Required<Date>(rs, "StudyDateTime");
    study->description = Required<String>(rs, "StudyDesc");
    study->ID = Required<Long>(rs, "Study_ID");
    study->instanceUID = Required<String>(rs, "StudyInstanceUID");
    study->referDrName = TextOrEmpty(rs, "ReferDrName");
    study->PhysOfRecord = TextOrEmpty(rs, "PhysOfRecord");
    study->accessionNumber = TextOrEmpty(rs, "AccessionNumber");
    return study;
}

/// Returns a series with the members that decide whether it is an orphan.
Ref<cSerie> SeriesOf(const Ref<Recordset>& rs) {
    Ref<cSerie> series = New<cSerie>();
    series->ID = Required<Long>(rs, "Series_ID");
    series->OrgServer = Nz<Long>(rs, "orgServerID");
    series->SeriesDescription = TextOrEmpty(rs, "SeriesDescription");
    series->SeriesDateTime = NzWholeSeconds(rs, "SeriesDateTime");
    return series;
}

/// Returns true if a computed column has this value; false for a null.
bool Holds(const Ref<Recordset>& rs, const ColumnName& column, double number) {
    const ADODB::Field field = rs->FieldOf(column);
    return !field.IsNull() && field.As<double>() == number;
}

/// Returns true if the series has image files, or is under capture: captured here, less than ten minutes ago.
/// Sets number and location of the images, if there are any.
bool IsKept(cSerie& series, const Ref<Recordset>& rs) {
    constexpr double tenMinutes = 600, secondsADay = 86400;
    constexpr double resolution = 1e-5;  // in seconds, of what a date can hold
    if (!rs->Fields("ZeroImages").IsNull()) {
        series.ImgCount = Required<Long>(rs, "ImageCount");
        series.location = Holds(rs, "dicomstatussum", 2.0 * series.ImgCount) ? gdcmObjectLocBoth : gdcmObjectLocLocal;
        return true;
    }
    const Date captured = Nz<Date>(rs, "SeriesDateTime");  // with fractions of a second, unlike the member
    const double age = (Now().Days - captured.Days) * secondsADay;
    return age < tenMinutes - resolution && series.OrgServer == 0;
}

/// Reads the other members of a series that stays in the list.
void Complete(cSerie& series, const Ref<Recordset>& rs, Integer& step) {
    const Long images = Required<Long>(rs, "ImageCount");
    series.Approved = series.location == gdcmObjectLocUnknown || Holds(rs, "ApprovedSum", images) ||
                      Holds(rs, "ApprovedSum", -images);
    if (const String number = TextOrEmpty(rs, "SeriesNumber"); !number.empty()) series.seriesNumber = number;
    series.instanceUID = Required<String>(rs, "SeriesInstanceUID");
    series.studyID = Required<Long>(rs, "study_id");
    step = 13;
    series.SeriesDerived = Nz<double>(rs, "Derived_BT") != 0;
    series.TemplateID = Nz<Long>(rs, "template_ID");
}

/// Adds the image card of a row, and returns the key of the patient.
Long AddCard(const Ref<Recordset>& rs, Collection& entries, Integer& step) {
    step = 2;
    const Ref<cUniCard> entry = New<cUniCard>();
    entry->Imagecard = CardOf(rs);
    step = 3;
    const Long patient = Required<Long>(rs, "PatientID");
    entry->Key = "IC" + CStr(entry->Imagecard->ICID);
    entries.Add(entry, entry->Key);
    step = 4;
    return patient;
}

/// Calls `row` for each image card of the statement.
template <class Row>
void ReadCards(const Ref<Connection>& con, const String& statement, Integer& step, Row row) {
    con->CursorLocation = ADODB::adUseClient;
    const Ref<Recordset> rs = OpenPlain(con, statement, ADODB::adCmdUnspecified);
    step = 1;
    for (; !rs->Eof(); rs->MoveNext()) row(rs);
    step = 5;
    rs->Close();
}

/// Returns the key of a patient with this personal number, for one without image cards; 0 if there is none.
Long FindPatient(const Ref<Connection>& con, const String& personalNumber) {
    const Ref<Recordset> rs =
        OpenPlain(con, sql("SELECT Patient_T.* FROM Patient_T WHERE PersonNr_CH='", Verbatim(personalNumber), "'"),
                  ADODB::adCmdUnspecified);
    const Long patient = rs->Eof() ? 0 : Required<Long>(rs, "PatientID");
    rs->Close();
    return patient;
}

/// Adds the series of a row, or calls `orphan` with it. `study` is the study of the previous row; a series of
/// the same study refers to it, and another one replaces it.
template <class Orphan>
void AddSeries(const Ref<Recordset>& rs, Ref<cStudy>& study, Collection& entries, Integer& step, Orphan orphan) {
    step = 8;
    const Long lastStudy = study ? study->ID : 0;
    if (Required<Long>(rs, "Study_ID") != lastStudy) study = StudyOf(rs);
    step = 10;
    const Ref<cUniCard> entry = New<cUniCard>();
    entry->Series = SeriesOf(rs);
    step = 11;
    const bool kept = IsKept(*entry->Series, rs);
    if (!kept) orphan(entry->Series);
    step = 12;
    if (kept) {
        Complete(*entry->Series, rs, step);
        entry->Study = study;
        entry->Key = "SE" + CStr(entry->Series->ID);
        entries.Add(entry, entry->Key);
    }
    step = 14;
}

/// Calls `row` for each series of the patient. Returns the recordset, still open.
template <class Row>
Ref<Recordset> ReadSeries(const Ref<Connection>& con, Long patient, Integer& step, Row row) {
    Ref<Recordset> rs = New<Recordset>();
    rs->Open(SeriesStatement(patient), con, ADODB::adOpenStatic, ADODB::adLockReadOnly, ADODB::adCmdText);
    step = 7;
    for (; !rs->Eof(); rs->MoveNext()) row(rs);
    step = 15;
    return rs;
}

/// Runs `read` on a row. Adds a row that can't be read to `unread`, and raises nothing for it.
template <class Read>
void ReadOrNote(const Ref<Recordset>& rs, const char* kind, const ColumnName& key, std::vector<UnreadEntry>& unread,
                Read read) {
    try {
        read();
    } catch (const Error& failure) {
        unread.push_back({kind + TextOrEmpty(rs, key), failure});
    }
}

}  // namespace

Long cUniCards::GetICAndSEList4Patient(const Ref<Connection>& conn, const String& sPID, const Long&, const Date&,
                                       const Date&) {
    Integer step = 0;
    Long result = 0;
    Boxed(
        [&] {
            const Ref<Collection> entries = New<Collection>();
            Long patient = 0;
            ReadCards(conn, CardsStatement(sPID), step,
                      [&](const Ref<Recordset>& rs) { patient = AddCard(rs, *entries, step); });
            if (patient == 0) patient = FindPatient(conn, sPID);
            step = 6;
            result = patient;
            Ref<cStudy> study;
            const Ref<Recordset> series = ReadSeries(conn, patient, step, [&](const Ref<Recordset>& rs) {
                AddSeries(rs, study, *entries, step, [&](const Ref<cSerie>& orphan) { orphan->Delete(conn); });
            });
            Merge(*entries, step);
            series->Close();
            step = 18;
        },
        [&](const Error& failure) {
            return "cUniCards.GetICAndSEList4Patient error: " + CStr(failure.Number) + ", " + CStr(Long{step}) +
                   "\r\n" + failure.Description;
        });
    return result;
}

Readable cUniCards::ListReadable(const Ref<Connection>& conn, Long patient) {
    Readable found;
    Integer step = 0;
    const Ref<Collection> entries = New<Collection>();
    ReadCards(conn, CardsStatement(patient), step, [&](const Ref<Recordset>& rs) {
        ReadOrNote(rs, "IC", "ImageCardID", found.unread, [&] { AddCard(rs, *entries, step); });
    });
    Ref<cStudy> study;
    ReadSeries(conn, patient, step, [&](const Ref<Recordset>& rs) {
        ReadOrNote(rs, "SE", "Series_ID", found.unread, [&] {
            AddSeries(rs, study, *entries, step,
                      [&](const Ref<cSerie>& orphan) { found.orphans.push_back(orphan->ID); });
        });
    });
    Merge(*entries, step);
    return found;
}

/// Returns for each member the oldest date up to it: the first one that is older than an entry's date is the
/// place of the entry. Ends before a member that has no date, and stores the failure in `unreadable`.
std::vector<double> cUniCards::OldestSoFar(std::optional<Error>& unreadable) const {
    std::vector<double> oldest;
    try {
        for (const cUniCard& member : *this) {
            const double date = member.SortDate().Days;
            oldest.push_back(oldest.empty() ? date : std::min(oldest.back(), date));
        }
    } catch (const Error& failure) {
        unreadable = failure;
    }
    return oldest;
}

namespace {

/// Returns the entries that can be merged into `members`, in the order of arrival: all before the first one whose key
/// exists, or whose place depends on a member with an unreadable date. `refused` is the failure of that one.
std::vector<Ref<cUniCard>> Mergeable(const Collection& arrived, const Collection& members, double oldest,
                                     const std::optional<Error>& unreadable, std::optional<Error>& refused,
                                     Integer& step) {
    std::vector<Ref<cUniCard>> entries;
    for (cUniCard& entry : Each<cUniCard>(arrived)) {
        const double date = entry.SortDate().Days;
        const bool hasOlder = oldest < date;
        if (!entries.empty() || members.Count() > 0) step = hasOlder || unreadable ? 16 : 17;
        if (unreadable && !hasOlder)
            refused = unreadable;
        else if (members.HasKey(entry.Key))
            refused = Error(err::DuplicateKey, "Runtime", Platform::DescriptionOf(err::DuplicateKey));
        if (refused) break;
        oldest = std::min(oldest, date);
        entries.emplace_back(&entry);
    }
    return entries;
}

}  // namespace

/// The documented merge inserts each entry before the first member that is older than it, one after the other. One
/// stable sort and one pass over the members have the same result. If an entry can't be merged, those that arrived
/// before it are merged, and its failure is raised.
void cUniCards::Merge(const Collection& arrived, Integer& step) {
    std::optional<Error> unreadable, refused;
    const std::vector<double> oldest = OldestSoFar(unreadable);
    const double oldestOfAll = oldest.empty() ? std::numeric_limits<double>::infinity() : oldest.back();
    std::vector<Ref<cUniCard>> entries = Mergeable(arrived, Members(), oldestOfAll, unreadable, refused, step);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a->SortDate() > b->SortDate(); });
    std::size_t before = 0;  // members that are not older than the entry
    Long added = 0;
    for (const Ref<cUniCard>& entry : entries) {
        while (before < oldest.size() && oldest[before] >= entry->SortDate().Days) ++before;
        const Long place = static_cast<Long>(before) + ++added;
        AddMember(entry, entry->Key, place > Count() ? Variant() : Variant(place));
    }
    if (refused) throw *refused;
}

bool cUniCards::AddObj(const Ref<cUniCard>& oUC, const String& sKey, const String& sBefore) {
    AddMember(oUC, sKey, sBefore);
    return true;
}

const Interface& cUniCards::Describe() const {
    static const Interface& self = InterfaceOf<cUniCards>(
        "A patient's card list: the image cards and series, newest first.",
        {
            Operation<&cUniCards::GetICAndSEList4Patient>(
                "GetICAndSEList4Patient",
                "Adds a patient's image cards and series, returns the patient's key; deletes old empty series.",
                {{"conn", Help::Connection},
                 {"sPID", "The patient identifier (column PersonNr_CH), not the key of the patient."},
                 {"lPID", "Ignored."},
                 Optional("FromDate", "Ignored.", Date{}),
                 Optional("ToDate", "Ignored.", Date{})}),
            Operation<&cUniCards::AddObj>(
                "AddObj", "Inserts an entry before another one. Returns true.",
                {{"oUC", "The entry; the collection refers to it and makes no copy."},
                 Optional("sKey", Help::NewKey),
                 Optional("sBefore", "The key of the member behind the new one; without it the operation fails.")}),
            ReadOnly<&cUniCards::Item>("Item", "Returns an entry of the card list.",
                                       {{"vntIndexKey", Help::IndexOrKey}}, DefaultMember),
            ReadOnly<&cUniCards::Count>("Count", "The number of entries in the card list."),
            Operation<&cUniCards::Remove>("Remove",
                                          "Removes an entry from the card list; the database stays unchanged.",
                                          {{"vntIndexKey", Help::IndexOrKey}}),
            ReadOnly<&cUniCards::NewEnum>("NewEnum", "Returns an enumerator of the members, in their order.", {},
                                          EnumeratorMember),
        });
    return self;
}

}  // namespace OXClass
