#include "console/import/SeriesImport.h"

#include "console/Hanging.h"
#include "console/import/StopSignals.h"
#include "frame/Class1.h"
#include "frame/Statement.h"
#include "platform/adodb/Transaction.h"
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

xigImageTypes TypeOf(const RadiographFile& file) {
    if (file.modality == "IO") return imggTypeDXIntraOral;
    if (file.modality == "PX") return imggTypeDXPanoramic;
    if (file.modality == "XC") return imggTypeVLPhotographic;
    if (file.modality != "DX") return imggTypeSC;
    const bool head = file.region == "T-11100" || Contains(UCase(file.seriesDescription), "CEPH");
    return head ? imggTypeDXCephalometric : imggTypeDXGeneral;
}

Json JsonOf(const PatientIdentity& person) {
    Json json;
    if (person.number != 0) json["number"] = person.number;
    json["patient_id"] = person.patientID;
    json["issuer"] = person.issuer;
    json["name"] = person.Name();
    json["born"] = DateText(person.birthDate);
    json["sex"] = person.sex;
    return json;
}

/// A conflict between a file and the patients that it was compared with.
[[noreturn]] void RaiseConflict(const std::string& reason, const RadiographFile& file,
                                const std::vector<PatientIdentity>& others, const std::string& titleOfOther) {
    const PatientIdentity person = IdentityOf(file);
    std::string table;
    Json json{{"series", file.seriesUID}, {"file", JsonOf(person)}, {"others", Json::array()}};
    for (const PatientIdentity& other : others) {
        const std::string title =
            other.number != 0 ? fmt::format("stored as #{}", other.number) : titleOfOther;
        table += SideBySide(other, title, person, "in the file");
        json["others"].push_back(JsonOf(other));
    }
    throw IdentityConflict(reason, table, json);
}

void RequireOnePerson(const std::vector<Radiograph>& files) {
    const RadiographFile& first = files.front().file;
    const PatientIdentity person = IdentityOf(first);
    for (const auto& [path, file, noPicture] : files) {
        const PatientIdentity other = IdentityOf(file);
        if (EqualsIgnoringCase(other.patientID, person.patientID) && Contradictions(person, other).empty())
            continue;
        RaiseConflict(
            fmt::format("the files of series {} name two patients, {} {} and {} {}", first.seriesUID,
                        person.patientID, person.Name(), other.patientID, other.Name()),
            file, {person}, "in the first file");
    }
}

/// The image of this SOP Instance UID; `ID` is 0 if there is none.
Ref<cImage> ImageOf(const Ref<Connection>& con, const std::string& uid) {
    Ref<cImage> image = New<cImage>();
    const Ref<Recordset> known = con->Execute(
        sql("SELECT ImageBildID FROM ImageBild_T WHERE SOPInstanceUID_NVC = '", FixSqlString(uid), "'"));
    if (!known->Eof()) image->GetImage(con, known->Fields(0).As<Long>());
    return image;
}

bool HasFile(const cImage& image) { return image.ID != 0 && !image.URL.empty(); }

}  // namespace

SeriesImport::SeriesImport(Ref<Connection> con, PatientDecision decision)
    : con_(std::move(con)), decision_(std::move(decision)), roots_(con_), root_(roots_.ActiveRoot()) {
    if (!decision_.patient.empty()) decidedPatient_ = LoadPatient(con_, decision_.patient)->ID;
    RemoveLeftovers(con_, roots_.Folder(root_));
}

SeriesResult SeriesImport::Store(const std::vector<Radiograph>& files) {
    SeriesResult result;
    const std::vector<const Radiograph*> fresh = NewFiles(files, result);
    if (fresh.empty()) return result;
    if (!decidedPatient_) RequireOnePerson(files);
    KnownPatientOf(fresh.front()->file);  // a conflict is met before anything is copied
    StoreRows(Copied(fresh), result);
    return result;
}

/// The files that have no stored image. The others are compared with their images, and files that another
/// one of the list repeats are left out.
std::vector<const Radiograph*> SeriesImport::NewFiles(const std::vector<Radiograph>& files,
                                                      SeriesResult& result) {
    std::vector<const Radiograph*> fresh;
    std::map<std::string, const Radiograph*> seen;
    for (const Radiograph& radiograph : files) {
        if (StopSignals::Requested()) throw Stopped();
        try {
            const auto [first, isFirst] = seen.try_emplace(radiograph.file.sopInstanceUID, &radiograph);
            if (!isFirst && !SameContent(first->second->path, radiograph.path))
                throw UserError(fmt::format("{} has the same SOP Instance UID and another content",
                                            first->second->path.string()));
            if (!isFirst || IsStored(radiograph))
                ++result.known;
            else
                fresh.push_back(&radiograph);
        } catch (const UserError& refused) {
            result.refused.emplace_back(radiograph.path, refused.what());
        }
    }
    return fresh;
}

/// True if the file is stored already. Throws `UserError` where its stored image is another one.
bool SeriesImport::IsStored(const Radiograph& radiograph) {
    const Ref<cImage> image = ImageOf(con_, radiograph.file.sopInstanceUID);
    if (!HasFile(*image)) return false;
    RequireSame(radiograph, *image);
    return true;
}

/// Refuses a file whose stored image is another one. A stored file that is missing is stored again, since
/// that is what the user imports it for.
void SeriesImport::RequireSame(const Radiograph& radiograph, const cImage& image) {
    const RadiographFile& file = radiograph.file;
    const Ref<cSerie> series = New<cSerie>();
    if (!series->loadSeries(file.seriesUID, con_) || series->ID != image.seriesID)
        throw UserError(fmt::format("its SOP Instance UID {} belongs to an image of another series already",
                                    file.sopInstanceUID));
    const fs::path target = StoredPath(roots_.Folder(image.RootId).string(), image.URL);
    if (!fs::exists(target)) return Restore(radiograph, target, image.RootId);
    if (!SameContent(radiograph.path, target))
        throw UserError(fmt::format("another file is stored as {} already", target.string()));
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

/// Copies of the files, flushed to the disk.
std::vector<SeriesImport::NewImage> SeriesImport::Copied(const std::vector<const Radiograph*>& files) {
    roots_.Folder(root_);  // may have gone since the last series
    std::vector<NewImage> images;
    for (const Radiograph* radiograph : files) {
        if (StopSignals::Requested()) throw Stopped();
        images.push_back({radiograph, Stage().Copy(radiograph->path)});
    }
    return images;
}

void SeriesImport::StoreRows(const std::vector<NewImage>& images, SeriesResult& result) {
    SeriesResult now = result;
    insertedPatient_.reset();
    ADODB::Transaction transaction(con_);
    NamedFiles names(roots_.Folder(root_));
    ComplainOfTextBoxes([&] { now.hung = StoreInTransaction(images, names, now); });
    names.Sync();
    transaction.Commit();
    names.Keep();
    if (insertedPatient_) newPatients_.push_back(*insertedPatient_);
    result = std::move(now);
}

/// Returns the series if it was hung, 0 if another program has stored all of its images meanwhile.
Long SeriesImport::StoreInTransaction(const std::vector<NewImage>& images, NamedFiles& names,
                                      SeriesResult& result) {
    const RadiographFile& first = images.front().radiograph->file;
    const Long patient = PatientOf(first, result);
    const Ref<cSerie> series = SeriesOf(first, StudyOf(first, patient));
    std::vector<std::string> storedNames;
    for (const NewImage& image : images) storedNames.push_back(StoredNameOf(image.radiograph->file, patient));
    Stage().Announce(storedNames);
    const std::size_t before = result.stored;
    for (const NewImage& image : images) {
        if (StopSignals::Requested()) throw Stopped();
        const bool isNew = StoreImage(image, patient, *series, names);
        (isNew ? result.stored : result.known) += 1;
        if (isNew && !image.radiograph->noPicture.empty())
            result.notes.push_back(fmt::format("{}: stored, but it has no picture: {}",
                                               image.radiograph->path.string(), image.radiograph->noPicture));
    }
    if (result.stored == before) return 0;
    HangStored(con_, series->ID);
    return series->ID;
}

std::string SeriesImport::StoredNameOf(const RadiographFile& file, Long patient) const {
    return New<Class1>()->GetSubFolder(patient) + "\\" + file.sopInstanceUID + ".dcm";
}

/// Names the file and stores its image; false if another program has stored it meanwhile.
bool SeriesImport::StoreImage(const NewImage& fresh, Long patient, const cSerie& series, NamedFiles& names) {
    const Ref<cImage> image = ImageOf(con_, fresh.radiograph->file.sopInstanceUID);
    if (HasFile(*image)) {
        RequireSame(*fresh.radiograph, *image);
        return false;
    }
    Fill(*image, fresh.radiograph->file, patient, series);
    image->URL = StoredNameOf(fresh.radiograph->file, patient);
    image->CRC = fresh.staged.sha256;
    names.Name(fresh.staged, StoredPath(roots_.Folder(root_).string(), image->URL));
    image->SaveEx(false, con_);
    return true;
}

/// The patient under whom the series is stored, if there is one. Throws `IdentityConflict` for a person who
/// contradicts the stored one.
std::optional<Long> SeriesImport::KnownPatientOf(const RadiographFile& file) {
    const PatientIdentity person = IdentityOf(file);
    if (file.patientID.empty() && !decidedPatient_)
        throw UserError("it has no Patient ID, so it belongs to nobody; say whose it is with --patient");
    if (const auto patient = PatientOfStudy(file, person)) return patient;
    if (decidedPatient_) return decidedPatient_;
    if (decision_.newPatient) {
        for (const PatientIdentity& made : newPatients_)
            if (EqualsIgnoringCase(made.patientID, person.patientID) && Contradictions(made, person).empty())
                return static_cast<Long>(made.number);
        return std::nullopt;
    }
    const PatientMatch match = MatchPatient(con_, person);
    if (match.number != 0) return match.number;
    if (match.IsNew()) return std::nullopt;
    const bool several = match.refused.size() > 1;
    RaiseConflict(
        fmt::format("Patient ID {} belongs to {} in the database; decide with --patient '#{}' or "
                    "--new-patient",
                    person.patientID,
                    several ? "several patients" : "another person, " + match.refused.front().Name() + ",",
                    match.refused.front().number),
        file, match.refused, {});
}

/// The patient of the file's study, if the study is known.
std::optional<Long> SeriesImport::PatientOfStudy(const RadiographFile& file, const PatientIdentity& person) {
    const Ref<cStudy> study = New<cStudy>();
    if (!study->loadStudy(file.studyUID, con_)) return std::nullopt;
    if (decidedPatient_ && study->PatientID == *decidedPatient_) return decidedPatient_;
    const Ref<cPatient> patient = PatientOfRow(con_, study->PatientID);
    if (!patient)
        throw UserError(fmt::format("its study {} belongs to patient #{}, who isn't in the database",
                                    file.studyUID, study->PatientID));
    const PatientIdentity stored = IdentityOf(con_, *patient);
    const bool same = EqualsIgnoringCase(stored.patientID, Trim(person.patientID)) &&
                      Contradictions(stored, person).empty();
    if (same && !decidedPatient_) return study->PatientID;
    RaiseConflict(fmt::format("its study {} belongs to another patient already, #{} {}", file.studyUID,
                              stored.number, stored.Name()),
                  file, {stored}, {});
}

Long SeriesImport::PatientOf(const RadiographFile& file, SeriesResult& result) {
    const auto known = KnownPatientOf(file);
    return known ? *known : NewPatient(file, result);
}

Long SeriesImport::NewPatient(const RadiographFile& file, SeriesResult& result) {
    PatientIdentity person = IdentityOf(file);
    const Ref<cPatient> patient = New<cPatient>();
    patient->PatientID = file.patientID;
    patient->LastName = file.familyName;
    patient->FirstName = file.givenName;
    patient->Sex = person.sex;
    patient->BirthDate = person.birthDate;
    for (const std::string& left : AddOtherIDs(*patient, file.otherPatientIDs))
        result.notes.push_back(
            fmt::format("patient {}: the other identifier {} is not stored: the column has no space for it",
                        file.patientID, left));
    SavePatient(con_, *patient);
    StoreIssuer(con_, patient->ID, file.issuer);
    person.number = patient->ID;
    insertedPatient_ = std::move(person);
    return patient->ID;
}

Long SeriesImport::StudyOf(const RadiographFile& file, Long patient) {
    const Ref<cStudy> study = New<cStudy>();
    if (study->loadStudy(file.studyUID, con_)) return study->ID;
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
    if (series->loadSeries(file.seriesUID, con_)) {
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
