#include "anatomy/RegionCodes.h"
#include "console/import/SeriesImport.h"

#include "console/Completeness.h"
#include "console/Hanging.h"
#include "console/WriteTransaction.h"
#include "console/import/StopSignals.h"
#include "console/patients/PatientSearch.h"
#include "console/trash/Trash.h"
#include "frame/Class1.h"
#include "frame/Statement.h"
#include "series/cStudy.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;
using Json = nlohmann::ordered_json;

Date DateOf(const std::string& text) { return ParseDate(text).value_or(Date{}); }

/// Returns true for photographs: pictures of the kinds for visible light and of the modalities of cameras, and coloured
/// secondary captures, because X-ray pictures have no colours.
bool IsPhotograph(const RadiographFile& file) {
    constexpr std::string_view visibleLight = "1.2.840.10008.5.1.4.1.1.77.1.",
                               secondaryCapture = "1.2.840.10008.5.1.4.1.1.7";
    const std::string& kind = file.sopClassUID;
    const bool captured = kind == secondaryCapture || kind.starts_with(std::string(secondaryCapture) + ".");
    return file.modality == "XC" || file.modality == "ES" || file.modality == "GM" || kind.starts_with(visibleLight) ||
           (file.colour && captured);
}

xigImageTypes TypeOf(const RadiographFile& file) {
    if (IsPhotograph(file)) return imggTypeVLPhotographic;
    if (file.modality == "IO") return imggTypeDXIntraOral;
    if (file.modality == "PX") return imggTypeDXPanoramic;
    if (file.modality != "DX") return imggTypeSC;
    const bool head = file.region == RegionCode::Skull || Contains(UCase(file.seriesDescription), "CEPH");
    return head ? imggTypeDXCephalometric : imggTypeDXGeneral;
}

Json JsonOf(const PatientIdentity& person) {
    Json fields;
    if (person.number != 0) fields["number"] = person.number;
    fields["patient_id"] = person.patientID;
    fields["issuer"] = person.issuer;
    fields["name"] = person.Name();
    fields["born"] = DateText(person.birthDate);
    fields["sex"] = person.sex;
    return fields;
}

/// A conflict between a file and the patients that it was compared with.
[[noreturn]] void RaiseConflict(const std::string& reason, const RadiographFile& file, const PatientIdentity& person,
                                const std::vector<PatientIdentity>& others, const std::string& titleOfOther) {
    std::string table;
    Json conflict{{"series", file.seriesUID}, {"file", JsonOf(person)}, {"others", Json::array()}};
    for (const PatientIdentity& other : others) {
        const std::string title = other.number != 0 ? fmt::format("stored as #{}", other.number) : titleOfOther;
        table += SideBySide(other, title, person, "in the file");
        conflict["others"].push_back(JsonOf(other));
    }
    throw IdentityConflict(reason, table, conflict);
}

/// Returns true if two identities can belong to one person.
bool CanBeOne(const PatientIdentity& a, const PatientIdentity& b) {
    return EqualsIgnoringCase(a.patientID, b.patientID) && Contradictions(a, b).empty();
}

/// "#5 Ek, Anna", or "#5" for a patient without name.
std::string Called(const PatientIdentity& stored) { return Trim(fmt::format("#{} {}", stored.number, stored.Name())); }

/// Loads the study of a file; false if it isn't known. Throws `UserError` for one that can't be read whole.
bool LoadStudy(const Ref<Connection>& con, cStudy& study, const RadiographFile& file) {
    return WithRowName("study " + file.studyUID, [&] { return study.loadStudy(file.studyUID, con); });
}

/// Loads the series of a file; false if it isn't known. Throws `UserError` for one that can't be read whole.
bool LoadSeries(const Ref<Connection>& con, cSerie& series, const RadiographFile& file) {
    return WithRowName("series " + file.seriesUID, [&] { return series.loadSeries(file.seriesUID, con); });
}

/// Throws `UserError` if an image without SOP Instance UID has the file of this UID: it is the same image.
void RequireNoneWithoutUid(const Ref<Connection>& con, const std::string& uid) {
    const Ref<Recordset> rows =
        con->Execute(sql("SELECT ImageBildID FROM ImageBild_T WHERE "
                         "(SOPInstanceUID_NVC IS NULL OR "
                         "SOPInstanceUID_NVC = '') AND GraphicURL_NVC LIKE '%\\",
                         FixSqlString(uid), ".dcm'"));
    if (rows->Eof()) return;
    throw UserError(
        fmt::format("image {} has this file already, and its column "
                    "SOPInstanceUID_NVC is empty; enter {} in it",
                    rows->Fields(0).As<Long>(), uid));
}

/// Returns the image of this SOP Instance UID; `ID` is 0 if there is none. Throws `UserError` for one that can't be
/// read whole.
Ref<cImage> ImageOf(const Ref<Connection>& con, const std::string& uid) {
    const Ref<Recordset> known =
        con->Execute(sql("SELECT ImageBildID FROM ImageBild_T WHERE SOPInstanceUID_NVC = '", FixSqlString(uid), "'"));
    if (!known->Eof()) return LoadWholeImage(con, known->Fields(0).As<Long>());
    RequireNoneWithoutUid(con, uid);
    return New<cImage>();
}

/// Records that an image is stored, so that no other import stores it too. Raises `ADODB::LockConflict` if another one
/// has recorded it meanwhile.
void ClaimImage(const Ref<Connection>& con, const std::string& uid, Long image) {
    const auto insert = [&] {
        con->Execute(sql("INSERT INTO ImportedImage_T (SOPInstanceUID, ImageBildID) VALUES ('", FixSqlString(uid),
                         "', ", image, ")"));
    };
    try {
        return insert();
    } catch (const Error& failure) {
        if (failure.Number != ADODB::IntegrityViolation) throw;
    }
    con->Execute(sql("DELETE FROM ImportedImage_T WHERE SOPInstanceUID = '", FixSqlString(uid),
                     "' AND NOT EXISTS (SELECT 1 FROM ImageBild_T WHERE ImageBildID = ImportedImage_T.ImageBildID "
                     "AND ImageBildID <> ",
                     image, " AND SOPInstanceUID_NVC = '", FixSqlString(uid), "')"));
    try {
        insert();
    } catch (const Error& failure) {
        if (failure.Number != ADODB::IntegrityViolation) throw;
        Raise(ADODB::LockConflict,
              fmt::format("another import has stored the image {} meanwhile; run the command again", uid));
    }
}

bool HasFile(const cImage& image) { return image.ID != 0 && !image.URL.empty(); }

void StoreFileName(const Ref<Connection>& con, Long image, const std::string& name, Long root,
                   const std::string& sha256) {
    con->Execute(sql("UPDATE ImageBild_T SET GraphicURL_NVC = '", FixSqlString(name), "', RootId = ", root, ", CRC = '",
                     FixSqlString(sha256), "' WHERE ImageBildID = ", image));
}

/// Throws the `UserError` for an image whose stored series is not the file's series; the message names the difference.
[[noreturn]] void RefuseSeriesOf(const Ref<Connection>& con, const cImage& image, const RadiographFile& file) {
    if (image.seriesID == 0)
        throw UserError(fmt::format("image {} is this film, and its column Series_ID names no series", image.ID));
    const Ref<Recordset> row =
        con->Execute(sql("SELECT SeriesInstanceUID FROM Series_T WHERE Series_ID = ", image.seriesID));
    if (row->Eof())
        throw UserError(
            fmt::format("image {} is this film, and its series {} isn't in the database", image.ID, image.seriesID));
    const ADODB::Field uid = row->Fields(0);
    if (uid.IsNull() || Trim(uid.As<String>()).empty())
        throw UserError(
            fmt::format("image {} is this film, and the column SeriesInstanceUID "
                        "of its series {} is empty; enter {} in it",
                        image.ID, image.seriesID, file.seriesUID));
    throw UserError(fmt::format("its SOP Instance UID {} belongs to image {} of another series already",
                                file.sopInstanceUID, image.ID));
}

}  // namespace

SeriesImport::SeriesImport(Ref<Connection> con, PatientDecision decision)
    : con_(std::move(con)), decision_(std::move(decision)), roots_(con_), root_(roots_.ActiveRoot()) {
    if (!decision_.patient.empty()) decidedPatient_ = LoadPatient(con_, decision_.patient)->ID;
    RemoveLeftovers(con_, roots_.Folder(root_));
    RecoverTrash(con_);
}

SeriesResult SeriesImport::Store(const std::vector<Radiograph>& files) {
    try {
        return StoreOn(files);
    } catch (const std::exception& failure) {
        if (!HasReported(con_, ADODB::ConnectionLost)) throw;
        throw LostConnection(
            fmt::format("the connection to the server is lost; what was stored stays stored. Run the same command "
                        "again when the server is back, and it stores the rest ({})",
                        failure.what()));
    }
}

SeriesResult SeriesImport::StoreOn(const std::vector<Radiograph>& files) {
    SeriesResult result;
    const std::vector<const Radiograph*> fresh = NewFiles(files, result);
    if (fresh.empty()) return result;
    RequireOnePerson(files);
    KnownPatientOf(fresh.front()->file);  // a conflict is met before anything is copied
    StoreRows(Copied(fresh), result);
    return result;
}

/// Returns the files that have no stored image. The others are compared with their images, and files that another
/// one of the list repeats are left out.
std::vector<const Radiograph*> SeriesImport::NewFiles(const std::vector<Radiograph>& files, SeriesResult& result) {
    std::vector<const Radiograph*> fresh;
    std::map<std::string, const Radiograph*> seen;
    for (const Radiograph& radiograph : files) {
        if (StopSignals::Requested()) throw Stopped();
        try {
            const auto [first, isFirst] = seen.try_emplace(radiograph.file.sopInstanceUID, &radiograph);
            if (!isFirst && !SameContent(first->second->path, radiograph.path))
                throw UserError(
                    fmt::format("{} has the same SOP Instance UID and another content", first->second->path.string()));
            const Ref<cImage> image = isFirst ? ImageOf(con_, radiograph.file.sopInstanceUID) : nullptr;
            if (!isFirst)
                ++result.known;
            else if (HasFile(*image))
                TakeKnown(radiograph, *image, result);
            else
                fresh.push_back(&radiograph);
        } catch (const UserError& refused) {
            result.refused.emplace_back(radiograph.path, refused.what());
        }
    }
    return fresh;
}

/// Counts a file that is already stored. Throws `UserError` if its stored image differs, or belongs to another patient
/// than the user decided.
void SeriesImport::TakeKnown(const Radiograph& radiograph, const cImage& image, SeriesResult& result) {
    RequireSame(radiograph, image);
    (CompareOrRestoreFile(radiograph, image) ? result.known : result.restored) += 1;
}

/// Refuses a file whose stored image belongs to another series, or to another patient than the user decided.
void SeriesImport::RequireSame(const Radiograph& radiograph, const cImage& image) {
    const Ref<cSerie> series = New<cSerie>();
    if (!LoadSeries(con_, *series, radiograph.file) || series->ID != image.seriesID)
        RefuseSeriesOf(con_, image, radiograph.file);
    if (!decidedPatient_ || image.PatID == *decidedPatient_) return;
    const Ref<cPatient> owner = PatientOfRow(con_, image.PatID);
    throw UserError(fmt::format(
        "it is stored already, as image {} of patient {}; nothing is moved", image.ID,
        owner ? Called(IdentityOf(con_, *owner)) : fmt::format("#{}, who isn't in the database", image.PatID)));
}

/// Compares a file with the stored one. If the stored file is missing, stores the file again and returns false.
bool SeriesImport::CompareOrRestoreFile(const Radiograph& radiograph, const cImage& image) {
    const fs::path target = StoredPath(roots_.Folder(image.RootId).string(), image.URL);
    if (!fs::exists(target)) {
        Restore(radiograph, target, image.RootId);
        return false;
    }
    if (!SameContent(radiograph.path, target))
        throw UserError(fmt::format("another file is stored as {} already", target.string()));
    return true;
}

void SeriesImport::Restore(const Radiograph& radiograph, const fs::path& target, Long root) {
    Staging staging(roots_.Folder(root));
    NamedFiles names(roots_.Folder(root));
    names.Name(staging.Copy(radiograph.path), target);
    names.Sync();
    names.Keep();
}

Staging& SeriesImport::Stage() {
    if (!staging_) staging_.emplace(roots_.Folder(root_));
    return *staging_;
}

/// Returns copies of the files, flushed to the disk.
std::vector<SeriesImport::NewImage> SeriesImport::Copied(const std::vector<const Radiograph*>& files) {
    roots_.Folder(root_);  // may have gone since the last series
    std::vector<NewImage> images;
    for (const Radiograph* radiograph : files) {
        if (StopSignals::Requested()) throw Stopped();
        images.push_back({radiograph, Stage().BeginCopy(radiograph->path)});
    }
    Stage().Flush();
    return images;
}

void SeriesImport::StoreRows(const std::vector<NewImage>& images, SeriesResult& result) {
    SeriesResult now;
    const RootLock lock(con_, roots_.Folder(root_));
    RepeatAfterConflicts(con_, [&] {
        now = result;
        TryToStoreRows(images, now);
    });
    if (storedNew_) {
        std::erase_if(newPatients_, [&](const auto& made) { return made.number == storedNew_->number; });
        newPatients_.push_back(*storedNew_);
    }
    result = std::move(now);
}

/// Stores the rows and names the files in one transaction. After a failure the files are staged again, unless it is not
/// known whether the server has committed.
void SeriesImport::TryToStoreRows(const std::vector<NewImage>& images, SeriesResult& result) {
    storedNew_.reset();
    WriteTransaction transaction(con_);
    claims_ = HasTable(con_, "ImportedImage_T");
    NamedFiles names(roots_.Folder(root_));
    bool committing = false;
    try {
        ThrowTextBoxes([&] { result.hung = StoreInTransaction(images, names, result); });
        names.Sync();
        committing = true;
        transaction.Commit();
        names.Keep();
    } catch (const std::exception&) {
        const bool unclear = committing && IsServer(con_) && !HasReported(con_, ADODB::LockConflict);
        if (unclear || HasReported(con_, ADODB::ConnectionLost)) {
            names.Keep();
            Stage().Leave();
        }
        throw;
    }
}

/// Returns the series if it was hung, 0 if another program has stored all of its images meanwhile.
Long SeriesImport::StoreInTransaction(const std::vector<NewImage>& images, NamedFiles& names, SeriesResult& result) {
    const RadiographFile& first = images.front().radiograph->file;
    const Long patient = PatientOf(first, result);
    const Ref<cSerie> series = SeriesOf(first, StudyOf(first, patient));
    std::vector<std::string> storedNames;
    storedNames.reserve(images.size());
    for (const NewImage& image : images) storedNames.push_back(StoredNameOf(image.radiograph->file, patient));
    Stage().Announce(storedNames);
    const std::size_t before = result.stored;
    for (const NewImage& image : images) {
        if (StopSignals::Requested()) throw Stopped();
        const std::size_t storedBefore = result.stored;
        StoreImage(image, patient, *series, names, result);
        if (result.stored > storedBefore && !image.radiograph->noPicture.empty())
            result.notes.push_back(fmt::format("{}: stored, but it has no picture: {}", image.radiograph->path.string(),
                                               image.radiograph->noPicture));
    }
    if (result.stored == before) return 0;
    HangStored(con_, series->ID);
    return series->ID;
}

std::string SeriesImport::StoredNameOf(const RadiographFile& file, Long patient) const {
    return New<Class1>()->GetSubFolder(patient) + "\\" + file.sopInstanceUID + ".dcm";
}

/// Names the file and stores its image. If another program has stored the image meanwhile, compares its file. If the
/// stored row lacks the name of the file, writes the name and nothing else.
void SeriesImport::StoreImage(const NewImage& fresh, Long patient, const cSerie& series, NamedFiles& names,
                              SeriesResult& result) {
    const Ref<cImage> image = ImageOf(con_, fresh.radiograph->file.sopInstanceUID);
    if (HasFile(*image)) return TakeKnown(*fresh.radiograph, *image, result);
    const bool isNew = image->ID == 0;
    if (!isNew) RequireSame(*fresh.radiograph, *image);
    const std::string name = StoredNameOf(fresh.radiograph->file, isNew ? patient : image->PatID);
    names.Name(fresh.staged, StoredPath(roots_.Folder(root_).string(), name));
    (isNew ? result.stored : result.restored) += 1;
    if (!isNew) return StoreFileName(con_, image->ID, name, root_, fresh.staged.sha256);
    Fill(*image, fresh.radiograph->file, patient, series);
    image->URL = name;
    image->CRC = fresh.staged.sha256;
    image->SaveEx(false, con_);
    if (claims_) ClaimImage(con_, image->instanceUID, image->ID);
}

/// Stores the identities that the files state. Throws `IdentityConflict` if two of them contradict each other, unless
/// the user has decided whose files they are. Compares each pair of files, because a file may state what another lacks.
void SeriesImport::RequireOnePerson(const std::vector<Radiograph>& files) {
    said_.clear();
    for (const auto& [path, file, noPicture] : files) {
        const PatientIdentity person = IdentityOf(file);
        if (std::ranges::any_of(said_, [&](const auto& other) { return other == person; })) continue;
        for (const PatientIdentity& other : said_) {
            if (decidedPatient_ || CanBeOne(other, person)) continue;
            RaiseConflict(fmt::format("the files of series {} name two patients, {} {} and {} "
                                      "{}; decide with "
                                      "--patient '#N'; --new-patient doesn't help here",
                                      file.seriesUID, other.patientID, other.Name(), person.patientID, person.Name()),
                          file, person, {other}, "in another file");
        }
        said_.push_back(person);
    }
    person_ = said_.front();
    if (decidedPatient_) return;
    for (const PatientIdentity& person : said_) Complete(person_, person);
}

/// Throws `IdentityConflict` if anything that a file of the series says contradicts the stored patient.
void SeriesImport::RequireNoContradiction(const RadiographFile& file, Long patient) {
    const PatientIdentity stored = ComparableIdentityOf(con_, *PatientOfRow(con_, patient));
    for (const PatientIdentity& person : said_)
        if (!Contradictions(stored, person).empty())
            RaiseConflict(fmt::format("a file of the series belongs to another "
                                      "person than patient {}; decide "
                                      "with --patient '#{}' or --new-patient",
                                      Called(stored), stored.number),
                          file, person, {stored}, {});
}

/// Returns the patient under whom the series is stored, if there is one. Throws `IdentityConflict` for a person who
/// contradicts the stored one.
std::optional<Long> SeriesImport::KnownPatientOf(const RadiographFile& file) {
    if (file.patientID.empty() && !decidedPatient_)
        throw UserError(
            "it has no Patient ID, so it belongs to nobody; say whose "
            "it is with --patient");
    if (const auto patient = PatientOfStudy(file)) return patient;
    if (decidedPatient_) return decidedPatient_;
    if (decision_.newPatient) {
        for (const PatientIdentity& made : newPatients_)
            if (std::ranges::all_of(said_, [&](const auto& person) { return CanBeOne(made, person); }))
                return static_cast<Long>(made.number);
        return std::nullopt;
    }
    const PatientMatch match = MatchPatient(con_, person_);
    if (match.number != 0) {
        RequireNoContradiction(file, match.number);
        return match.number;
    }
    if (match.IsNew()) return std::nullopt;
    const PatientIdentity& first = match.refused.front();
    const std::string known = match.refused.size() > 1 ? "several patients" : "patient " + Called(first);
    const std::string reason =
        match.contradicted
            ? fmt::format("Patient ID {} belongs to {} in the database, {}", person_.patientID,
                          match.refused.size() > 1 ? "several patients" : "another person", Called(first))
            : fmt::format(
                  "there is not enough to tell whether this is {}, who "
                  "has the Patient ID {}",
                  known, person_.patientID);
    RaiseConflict(fmt::format("{}; decide with --patient '#{}' or --new-patient", reason, first.number), file, person_,
                  match.refused, {});
}

/// Returns the patient of the file's study, if the study is known.
std::optional<Long> SeriesImport::PatientOfStudy(const RadiographFile& file) {
    const Ref<cStudy> study = New<cStudy>();
    if (!LoadStudy(con_, *study, file)) return std::nullopt;
    if (decidedPatient_ && study->PatientID == *decidedPatient_) return decidedPatient_;
    const Ref<cPatient> patient = PatientOfRow(con_, study->PatientID);
    if (!patient)
        throw UserError(fmt::format("its study {} belongs to patient #{}, who isn't in the database", file.studyUID,
                                    study->PatientID));
    const PatientIdentity stored = decidedPatient_ ? IdentityOf(con_, *patient) : ComparableIdentityOf(con_, *patient);
    const auto other = std::ranges::find_if(said_, [&](const PatientIdentity& person) {
        return !HasIdentifier(*patient, person.patientID) || !Contradictions(stored, person).empty();
    });
    if (other == said_.end() && !decidedPatient_) return study->PatientID;
    RaiseConflict(fmt::format("its study {} belongs to another patient already, "
                              "{}; decide with --patient "
                              "'#{}'; --new-patient doesn't help here",
                              file.studyUID, Called(stored), stored.number),
                  file, other == said_.end() ? person_ : *other, {stored}, {});
}

Long SeriesImport::PatientOf(const RadiographFile& file, SeriesResult& result) {
    const auto known = KnownPatientOf(file);
    if (!known) return NewPatient(file, result);
    Fill(*known, result);
    return *known;
}

/// Stores the data of the files that the patient's row lacks, so that the next file is compared with them. Ignores
/// files of another identifier and of a person who contradicts the patient.
void SeriesImport::Fill(Long number, SeriesResult& result) {
    PatientIdentity stored = IdentityOf(con_, *PatientOfRow(con_, number));
    if (!std::ranges::all_of(said_, [&](const auto& person) { return CanBeOne(stored, person); })) return;
    const std::string told = FillPatient(con_, stored, person_, "the files");
    if (told.empty()) return;
    result.notes.push_back(told);
    Complete(stored, person_);
    if (decision_.newPatient) storedNew_ = stored;
}

Long SeriesImport::NewPatient(const RadiographFile& file, SeriesResult& result) {
    PatientIdentity person = person_;
    const Ref<cPatient> patient = New<cPatient>();
    patient->PatientID = file.patientID;
    if (!person.names.empty()) {
        patient->LastName = person.names.front().family;
        patient->FirstName = person.names.front().given;
    }
    patient->Sex = person.sex;
    patient->BirthDate = person.birthDate;
    for (const std::string& left : AddOtherIDs(*patient, file.otherPatientIDs))
        result.notes.push_back(
            fmt::format("patient {}: the other identifier {} is not stored: the "
                        "column has no space for it",
                        file.patientID, left));
    SavePatient(con_, *patient);
    StoreIssuer(con_, patient->ID, person.issuer);
    person.number = patient->ID;
    TellSamePerson(person, result);
    storedNew_ = std::move(person);
    return patient->ID;
}

/// Reports the patients that have the same data as the new one.
void SeriesImport::TellSamePerson(const PatientIdentity& made, SeriesResult& result) {
    for (const auto& patient : PatientsWithID(con_, made.patientID)) {
        const PatientIdentity stored = IdentityOf(con_, *patient);
        if (stored.number != made.number && SameInEachField(stored, made))
            result.notes.push_back(
                fmt::format("new patient #{} agrees with patient {} in every field; if they are "
                            "one person, import with --patient '#{}' instead",
                            made.number, Called(stored), stored.number));
    }
}

Long SeriesImport::StudyOf(const RadiographFile& file, Long patient) {
    const Ref<cStudy> study = New<cStudy>();
    if (LoadStudy(con_, *study, file)) return study->ID;
    study->instanceUID = file.studyUID;
    study->PatientID = patient;
    study->dateTime = DateOf(file.studyDateTime);
    study->description = file.studyDescription;
    study->studyID = file.studyID;
    study->accessionNumber = file.accessionNumber;
    study->referDrName = file.referringPhysician;
    study->PhysOfRecord = fmt::format("{}", fmt::join(file.physiciansOfRecord, "\\"));
    study->savestudy(false, con_);
    return study->ID;
}

Ref<cSerie> SeriesImport::SeriesOf(const RadiographFile& file, Long study) {
    Ref<cSerie> series = New<cSerie>();
    if (LoadSeries(con_, *series, file)) {
        if (series->studyID != study)
            throw UserError(fmt::format("its series {} belongs to another study already", file.seriesUID));
        return series;
    }
    series->instanceUID = file.seriesUID;
    series->studyID = study;
    series->Modality = file.modality;
    series->seriesNumber = CStr(Long{file.seriesNumber});
    series->SeriesDescription = file.seriesDescription;
    series->SeriesDateTime = DateOf(file.seriesDateTime);
    series->location = gdcmObjectLocLocal;
    series->SaveSeries(false, con_);
    return series;
}

void SeriesImport::Fill(cImage& image, const RadiographFile& file, Long patient, const cSerie& series) const {
    const auto whole = [](double value) { return CLng(std::clamp(value, 0.0, 2e9)); };
    image.ImageType = TypeOf(file);
    image.PatID = patient;
    image.studyID = series.studyID;
    image.seriesID = series.ID;
    image.instanceUID = file.sopInstanceUID;
    image.dateTime = DateOf(file.acquisitionDateTime);
    image.ImageNumberInSeries = file.instanceNumber;
    image.RootId = root_;
    image.MirrRotStatus = 1;
    image.DPIX = file.dpiX;
    image.DPIY = file.dpiY;
    image.sTeeth = file.teeth;
    image.Laterality = file.laterality;
    image.AnaRegion = file.region;
    image.AnaRegionMod = file.regionModifier;
    image.Voltage_kV = whole(file.kvp);
    image.Current_mA = whole(file.tubeCurrent_mA);
    image.ExposureTime_ms = whole(file.exposureTime_ms);
    image.HWSourceTxt = Trim(file.manufacturer + " " + file.model + " " + file.serialNumber);
    image.RespPerson = WithoutQuotes(file.operatorsName);
}

}  // namespace Console
