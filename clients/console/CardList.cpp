#include "console/CardList.h"

#include "frame/Statement.h"
#include "platform/adodb/Transaction.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

Long SeriesOf(const Clinic& clinic, Long patient) {
    return clinic.Number(
        sql("SELECT count(*) FROM Series_T JOIN Study_T ON Study_T.Study_ID = Series_T.Study_ID "
            "WHERE Study_T.PatientID = ",
            patient));
}

void ReadEntries(const Clinic& clinic, const cPatient& patient, cUniCards& entries) {
    // The list finds the patient by the identifier, which is spliced between quotes.
    const auto read = [&](const std::string& id) {
        ComplainOfTextBoxes(
            [&] { entries.GetICAndSEList4Patient(clinic.Con(), Replace(id, "'", "''"), patient.ID); });
    };
    if (PatientsWithID(clinic.Con(), patient.PatientID).size() == 1) return read(patient.PatientID);
    ADODB::Transaction transaction(clinic.Con());
    WithUniqueID(clinic.Con(), patient, read);
    transaction.Commit();
}

}  // namespace

CardList ListCards(const Clinic& clinic, const std::string& patient) {
    CardList list{.patient = LoadPatient(clinic, patient), .entries = New<cUniCards>()};
    const Long before = SeriesOf(clinic, list.patient->ID);
    try {
        ReadEntries(clinic, *list.patient, *list.entries);
    } catch (const Complaint& told) {
        throw Complaint(
            fmt::format("the list of patient {} can't be read whole; look for the damaged card, study or "
                        "series, or for a database that can't be written: {}",
                        list.patient->PatientID, told.what()));
    }
    list.orphansRemoved = before - SeriesOf(clinic, list.patient->ID);
    return list;
}

std::map<Long, ImagesOfEntry> ImagesOfCards(const Clinic& clinic, Long patient) {
    std::map<Long, ImagesOfEntry> cards;
    const Ref<Recordset> rows = clinic.Read(sql(
        "SELECT c.ImageCardID, count(*), sum(i.Approved <> 0) FROM ImageCard_T c JOIN ImageAttribute_T a ON "
        "a.ImageCardID = c.ImageCardID LEFT JOIN ImageBild_T i ON i.ImageBildID = a.ImageBildId WHERE "
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
