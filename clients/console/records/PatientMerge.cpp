#include "console/records/PatientMerge.h"

#include "console/Completeness.h"
#include "console/patients/PatientSearch.h"
#include "console/patients/PatientStore.h"
#include "frame/Statement.h"

#include <algorithm>
#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

/// Loads the patient that `text` names, whose row must be readable in whole.
Ref<cPatient> LoadWholePatient(const Ref<Connection>& con, const std::string& text) {
    Ref<cPatient> patient = LoadPatient(con, text);
    RequireComplete(*patient, fmt::format("patient #{}", patient->ID));
    return patient;
}

std::string CalledBy(const cPatient& patient) { return PatientCalled(patient.ID, patient.PatientID); }

std::set<Long> ImagesOfPatient(const Ref<Connection>& con, Long patient) {
    std::set<Long> images;
    const Ref<Recordset> rows = con->Execute(sql("SELECT ImageBildID FROM ImageBild_T WHERE PatientID = ", patient));
    for (; !rows->Eof(); rows->MoveNext()) images.insert(rows->Fields(0).As<Long>());
    return images;
}

void RequireOnePerson(const Ref<Connection>& con, const cPatient& removed, const cPatient& kept) {
    PatientIdentity a = IdentityOf(con, removed), b = IdentityOf(con, kept);
    a.issuer.clear();  // two identifiers may have two issuers
    if (Contradictions(a, b).empty()) return;
    fmt::print(stderr, "{}", SideBySide(a, fmt::format("#{}", removed.ID), b, fmt::format("#{}", kept.ID)));
    throw UserError(
        fmt::format("patients {} and {} contradict each other, and nothing was changed; if they are one "
                    "person, correct the wrong one, or use --force",
                    CalledBy(removed), CalledBy(kept)));
}

/// The texts of a patient that another one takes over if it lacks them. The comments of both are kept.
constexpr String cPatient::*const TakenOver[] = {&cPatient::LastName,  &cPatient::FirstName, &cPatient::Sex,
                                                 &cPatient::Address,   &cPatient::TelOne,    &cPatient::TelTwo,
                                                 &cPatient::TelMobile, &cPatient::EMail,     &cPatient::IDImg};

void TakeOverData(const cPatient& from, cPatient& to) {
    for (String cPatient::*const text : TakenOver)
        if (Trim(to.*text).empty()) to.*text = from.*text;
    if (to.BirthDate.Days == 0) to.BirthDate = from.BirthDate;
    if (to.PrevXrayDate < from.PrevXrayDate) to.PrevXrayDate = from.PrevXrayDate;
    if (to.RespDoctor == 0) to.RespDoctor = from.RespDoctor;
    if (!from.Comments.empty()) to.Comments += (to.Comments.empty() ? "" : "\n") + from.Comments;
}

void TakeOverIDs(RecordChange& change, const cPatient& from, cPatient& to) {
    std::vector<std::string> identifiers{from.PatientID};
    for (const cStringItem& other : *from.OtherIDs) identifiers.push_back(other.str);
    const std::string before = to.OtherIDs->GetAllAsString();
    const std::vector<std::string> left = AddOtherIDs(to, identifiers);
    if (!left.empty())
        throw UserError(
            fmt::format("the column of other identifiers of patient {} has no space for {}, and nothing was "
                        "changed; remove some first with: oxclass patient '#{}' OtherIDs=A\\B",
                        CalledBy(to), left.front(), to.ID));
    change.Tell(fmt::format("other identifiers of {}", CalledBy(to)), before, to.OtherIDs->GetAllAsString());
}

/// Gives the rows of a table to another patient.
void GiveRows(RecordChange& change, const char* table, const char* what, const cPatient& from, const cPatient& to) {
    Long count = 0;
    change.Con()->Execute(sql("UPDATE ", Clause(table), " SET PatientID = ", to.ID, " WHERE PatientID = ", from.ID),
                          &count);
    if (count > 0) change.Tell(fmt::format("{} {}", count, what), CalledBy(from), CalledBy(to));
}

}  // namespace

void MergePatients(RecordChange& change, const std::string& removed, const std::string& kept, bool force) {
    const Ref<Connection>& con = change.Con();
    const Ref<cPatient> from = LoadWholePatient(con, removed), to = LoadWholePatient(con, kept);
    if (from->ID == to->ID) throw UserError(fmt::format("both are patient {}; name two patients", CalledBy(*to)));
    if (!force) RequireOnePerson(con, *from, *to);
    change.Comment(ImagesOfPatient(con, from->ID), MergedComment(CalledBy(*from), CalledBy(*to)));
    GiveRows(change, "Study_T", "studies", *from, *to);
    GiveRows(change, "ImageBild_T", "images", *from, *to);
    GiveRows(change, "ImageCard_T", "cards", *from, *to);
    TakeOverIDs(change, *from, *to);
    TakeOverData(*from, *to);
    to->Comments = change.WithRemark(to->Comments, fmt::format("merged with patient {}", CalledBy(*from)));
    SavePatient(con, *to);
    ForgetIssuer(con, from->ID);
    con->Execute(sql("DELETE FROM Patient_T WHERE PatientID = ", from->ID));
    change.Tell(fmt::format("patient {}", CalledBy(*from)), "in the database", "removed");
}

void CorrectPatientID(RecordChange& change, const std::string& patient, const std::string& id) {
    const Ref<Connection>& con = change.Con();
    const Ref<cPatient> corrected = LoadPatient(con, patient);
    const std::string before = corrected->PatientID;
    ChangePatientID(con, *corrected, id);
    if (corrected->PatientID == before)
        throw UserError(fmt::format("patient {} has this ID already", CalledBy(*corrected)));
    const std::string remark =
        fmt::format("Patient ID corrected from {} to {}", PatientCalled(corrected->ID, before), corrected->PatientID);
    change.Comment(ImagesOfPatient(con, corrected->ID), remark);
    corrected->Comments = change.WithRemark(corrected->Comments, remark);
    SavePatient(con, *corrected);
    change.Tell(fmt::format("ID of patient #{}", corrected->ID), before, corrected->PatientID);
}

}  // namespace Console
