#include "console/CardList.h"

#include "console/WriteTransaction.h"
#include "console/patients/PatientSearch.h"
#include "frame/Statement.h"

#include <fmt/format.h>
#include <optional>

namespace Console {
namespace {

using namespace OXClass;

/// Returns the SQL of the images without a series that may belong to this one: no readable column of their rows names
/// another study.
std::string ImagesThatMayBelongTo(const Ref<Connection>& con, Long series) {
    const auto unknown = [&](const char* column) { return "NOT (" + IsWhole(con, column) + ")"; };
    return fmt::format(
        "FROM ImageBild_T i WHERE ({} OR i.Series_ID = 0) AND ({} OR i.Study_ID = 0 OR i.Study_ID = "
        "(SELECT Study_ID FROM Series_T WHERE Series_ID = {})) AND ({} OR i.PatientID = "
        "(SELECT PatientID FROM Study_T WHERE Study_ID = (SELECT Study_ID FROM Series_T WHERE Series_ID = {})))",
        unknown("i.Series_ID"), unknown("i.Study_ID"), series, unknown("i.PatientID"), series);
}

/// Deletes a series without image files and returns whether it was deleted. The statement checks for files again,
/// because a capture may have stored one since the list was read. On a server a statement does not see what an import
/// stores meanwhile, so the imports wait.
bool DeleteOrphan(const Database& database, Long series) {
    Long deleted = 0;
    const std::string unknown = ImagesThatMayBelongTo(database.Con(), series);
    const auto remove = [&] {
        database.Con()->Execute(sql("DELETE FROM Series_T WHERE Series_ID = ", series,
                                    " AND NOT EXISTS (SELECT 1 FROM ImageBild_T WHERE Series_ID = ", series,
                                    " AND GraphicURL_NVC <> '') AND NOT EXISTS (SELECT 1 ", Clause(unknown), ")"),
                                &deleted);
    };
    IsServer(database.Con()) ? Write(database.Con(), remove) : remove();
    return deleted > 0;
}

/// Returns the damage of an image whose series can't be read and which may therefore belong to this series; null if
/// there is none.
std::optional<Error> ImageOfUnknownSeries(const Database& database, Long series) {
    const Ref<Recordset> rows =
        database.Read("SELECT ImageBildID " + ImagesThatMayBelongTo(database.Con(), series) + " ORDER BY ImageBildID");
    if (rows->Eof()) return std::nullopt;
    Error failure(err::TypeMismatch, "CardList", "it names no series, and may belong to this one");
    failure.Column = fmt::format("Series_ID of image {}", rows->Fields(0).As<Long>());
    return failure;
}

/// Deletes a series without image files, or counts it as kept if the database can't be written. A series with an image
/// that can't be read is reported as damaged and kept: the damage may be the reason why it has no file.
void Remove(const Database& database, Long orphan, CardList& list) {
    const Ref<cImages> images = New<cImages>();
    images->LoadReadable(database.Con(), iootSeries, orphan);
    if (!images->Unread().empty())
        return list.damaged.push_back({"SE" + CStr(orphan), images->Unread().front().Failure});
    if (const auto unknown = ImageOfUnknownSeries(database, orphan))
        return list.damaged.push_back({"SE" + CStr(orphan), *unknown});
    try {
        list.orphansRemoved += DeleteOrphan(database, orphan);
    } catch (const Error& failure) {
        if (failure.Number != ADODB::NoPermission) throw;
        ++list.orphansKept;
    }
}

}  // namespace

CardList ListCards(const Database& database, const std::string& patient) {
    CardList list{.patient = LoadPatient(database, patient), .entries = New<cUniCards>()};
    Readable found = list.entries->ListReadable(database.Con(), list.patient->ID);
    list.damaged = std::move(found.unread);
    for (const Long orphan : found.orphans) Remove(database, orphan, list);
    return list;
}

std::map<Long, ImagesOfEntry> ImagesOfCards(const Database& database, Long patient) {
    std::map<Long, ImagesOfEntry> cards;
    const Ref<Recordset> rows = database.Read(
        sql("SELECT c.ImageCardID, count(*), sum(CASE WHEN i.Approved <> 0 THEN 1 WHEN i.Approved = 0 THEN 0 "
            "END) "
            "FROM ImageCard_T c JOIN ImageAttribute_T a ON "
            "a.ImageCardID = c.ImageCardID LEFT JOIN ImageBild_T i "
            "ON i.ImageBildID = a.ImageBildId WHERE "
            "c.PatientID = ",
            patient, " GROUP BY c.ImageCardID"));
    for (; !rows->Eof(); rows->MoveNext()) {
        const Long count = rows->Fields(1).As<Long>();
        const ADODB::Field approved = rows->Fields(2);
        cards[rows->Fields(0).As<Long>()] = {count, !approved.IsNull() && approved.As<Long>() == count};
    }
    return cards;
}

}  // namespace Console
