#include "console/Commands.h"

#include "console/FindPatient.h"
#include "console/Hanging.h"
#include "console/Program.h"
#include "console/StoredFile.h"
#include "console/dicom/DicomFile.h"
#include "frame/Class1.h"
#include "frame/Statement.h"
#include "images/cImage.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

/// A file that was read, with its place.
struct Radiograph {
    fs::path path;
    RadiographFile file;
};

/// What an import came to, for the last line and the exit code.
struct Tally {
    std::size_t files = 0, stored = 0, known = 0, failed = 0;
    std::vector<Long> hung;  ///< series that were hung
};

Date DateOf(const std::string& text) { return ParseDate(text).value_or(Date{}); }

xigImageTypes TypeOf(const RadiographFile& file) {
    if (file.modality == "IO") return imggTypeDXIntraOral;
    if (file.modality == "PX") return imggTypeDXPanoramic;
    if (file.modality == "XC") return imggTypeVLPhotographic;
    if (file.modality != "DX") return imggTypeSC;
    const bool head = file.region == "T-11100" || Contains(UCase(file.seriesDescription), "CEPH");
    return head ? imggTypeDXCephalometric : imggTypeDXGeneral;
}

/// Refuses what is no DICOM identifier: the library would take a UID without a dot for a row's key.
void RequireUid(const std::string& uid, const char* what) {
    const bool formed =
        uid.find_first_not_of("0123456789.") == std::string::npos && Contains(uid, ".") && uid.size() <= 64;
    if (!formed) throw Complaint(fmt::format("its {} \"{}\" is no DICOM identifier", what, uid));
}

/// The files of the folders and files that were named, in the order of their names, each once.
struct FoundFiles {
    std::vector<fs::path> files;
    std::vector<std::pair<fs::path, std::string>> unreadable;  ///< folders, with the reason
};

void AddFolder(const fs::path& folder, FoundFiles& found) {
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::error_code unknown;
        if (entry->is_symlink(unknown) && entry->is_directory(unknown))
            continue;  // may lead round in a circle
        if (entry->is_directory(unknown)) AddFolder(entry->path(), found);
        if (entry->is_regular_file(unknown)) found.files.push_back(entry->path());
    }
    if (failure) found.unreadable.emplace_back(folder, "the folder can't be read: " + failure.message());
}

FoundFiles FilesOf(const std::vector<std::string>& names) {
    FoundFiles found;
    for (const std::string& name : names) {
        if (!fs::exists(name)) throw Complaint(fmt::format("there is no file or folder {}", name));
        if (fs::is_directory(name))
            AddFolder(name, found);
        else if (fs::is_regular_file(name))
            found.files.emplace_back(name);
        else
            throw Complaint(fmt::format("{} is neither a file nor a folder", name));
    }
    std::sort(found.files.begin(), found.files.end());
    found.files.erase(std::unique(found.files.begin(), found.files.end()), found.files.end());
    return found;
}

/// One import: reads files, and stores them series by series.
class Import {
public:
    explicit Import(const Clinic& clinic) : con_(clinic.Con()) {
        String root = services_->GetRootOnID(con_, 0);
        if (root.empty())
            throw Complaint("the database has no active storage root; add one with: oxclass roots --add DIR");
        root_ = root;
        services_->GetRoots(con_);
    }

    void Run(const FoundFiles& found);
    const Tally& Result() const noexcept { return tally_; }

private:
    using Group = std::vector<Radiograph>;

    std::vector<Group> ReadAll(const std::vector<fs::path>& paths);
    void StoreSeries(const Group& group);
    Long StoreGroup(const Group& group, std::vector<StoredFile>& files);
    Long PatientOf(const RadiographFile& file);
    Long StudyOf(const RadiographFile& file, Long patient);
    Ref<cSerie> SeriesOf(const RadiographFile& file, Long study);
    bool StoreImage(const Radiograph& radiograph, Long patient, const cSerie& series,
                    std::vector<StoredFile>& files);
    Ref<cImage> ImageOf(const RadiographFile& file);
    void RequireSame(const Radiograph& radiograph, const cImage& image, Long patient, const cSerie& series,
                     std::vector<StoredFile>& files) const;
    void Fill(cImage& image, const Radiograph& radiograph, Long patient, const cSerie& series) const;
    void Report(const fs::path& path, const std::string& reason);

    Ref<Connection> con_;
    Ref<Class1> services_ = New<Class1>();
    std::string root_;
    Tally tally_;
    Progress* progress_ = nullptr;
};

void Import::Report(const fs::path& path, const std::string& reason) {
    if (progress_) progress_->Clear();
    ++tally_.failed;
    fmt::print(stderr, "{}: not imported: {}\n", path.string(), reason);
}

/// All readable files, grouped by series in the order in which the series were met.
std::vector<Import::Group> Import::ReadAll(const std::vector<fs::path>& paths) {
    std::vector<Group> groups;
    std::map<std::string, std::size_t> groupOf;
    Progress progress("files read", paths.size());
    progress_ = &progress;
    for (const fs::path& path : paths) {
        ++tally_.files;
        try {
            RadiographFile file = ReadRadiograph(path);
            if (file.patientID.empty()) throw Complaint("it has no Patient ID, so it belongs to nobody");
            RequireUid(file.studyUID, "Study Instance UID");
            RequireUid(file.seriesUID, "Series Instance UID");
            RequireUid(file.sopInstanceUID, "SOP Instance UID");
            const auto [group, isNew] = groupOf.try_emplace(file.seriesUID, groups.size());
            if (isNew) groups.emplace_back();
            groups[group->second].push_back({path, std::move(file)});
        } catch (const std::exception& failure) {
            Report(path, failure.what());
        }
        progress.Step();
    }
    progress_ = nullptr;
    return groups;
}

void Import::Run(const FoundFiles& found) {
    for (const auto& [folder, reason] : found.unreadable) Report(folder, reason);
    const std::vector<Group> groups = ReadAll(found.files);
    std::size_t images = 0;
    for (const Group& group : groups) images += group.size();
    Progress progress("images stored", images);
    progress_ = &progress;
    for (const Group& group : groups) StoreSeries(group);
    progress_ = nullptr;
}

/// Stores one series whole, or nothing of it: a failure rolls its rows back and removes its copies.
void Import::StoreSeries(const Group& group) {
    const Tally before = tally_;
    std::vector<StoredFile> files;
    con_->BeginTrans();
    try {
        const Long series = StoreGroup(group, files);
        if (tally_.stored == before.stored) return con_->RollbackTrans();
        HangStored(con_, series);
        tally_.hung.push_back(series);
        con_->CommitTrans();
        for (StoredFile& file : files) file.Keep();
    } catch (const std::exception& failure) {
        con_->RollbackTrans();
        tally_ = before;
        const auto* error = dynamic_cast<const Error*>(&failure);
        const std::string reason =
            error ? fmt::format("error {}: {}", error->Number, error->Description) : failure.what();
        for (const Radiograph& radiograph : group) Report(radiograph.path, reason);
    }
}

Long Import::StoreGroup(const Group& group, std::vector<StoredFile>& files) {
    const RadiographFile& first = group.front().file;
    const Long patient = PatientOf(first);
    const Ref<cSerie> series = SeriesOf(first, StudyOf(first, patient));
    for (const Radiograph& radiograph : group) {
        if (!EqualsIgnoringCase(radiograph.file.patientID, first.patientID))
            throw Complaint(fmt::format("the files of series {} name two patients, {} and {}",
                                        first.seriesUID, first.patientID, radiograph.file.patientID));
        progress_->Step();
        try {
            (StoreImage(radiograph, patient, *series, files) ? tally_.stored : tally_.known) += 1;
        } catch (const Complaint& refused) {  // raised before anything of the image was written
            Report(radiograph.path, refused.what());
        }
    }
    return series->ID;
}

/// The patient's number; a patient that isn't known yet is made, a known one stays as it is.
Long Import::PatientOf(const RadiographFile& file) {
    const Ref<cPatient> patient = New<cPatient>();
    if (FindPatient(con_, *patient, file.patientID)) return patient->ID;
    patient->PatientID = file.patientID;
    patient->LastName = file.familyName;
    patient->FirstName = file.givenName;
    patient->Sex = WithoutQuotes(Left(file.sex, 1));
    patient->BirthDate = DateOf(file.birthDate);
    Long place = 0;
    for (const std::string& identifier : file.otherPatientIDs) {
        String other = WithoutQuotes(identifier);
        patient->OtherIDs->Add(other, place, "K" + CStr(place));
        ++place;
    }
    patient->Save(con_);
    return patient->ID;
}

Long Import::StudyOf(const RadiographFile& file, Long patient) {
    const Ref<cStudy> study = New<cStudy>();
    if (study->loadStudy(file.studyUID, con_)) {
        if (study->PatientID != patient)
            throw Complaint(fmt::format("its study {} belongs to another patient already", file.studyUID));
        return study->ID;
    }
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

Ref<cSerie> Import::SeriesOf(const RadiographFile& file, Long study) {
    Ref<cSerie> series = New<cSerie>();
    if (series->loadSeries(file.seriesUID, con_)) {
        if (series->studyID != study)
            throw Complaint(fmt::format("its series {} belongs to another study already", file.seriesUID));
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

/// The stored image of the file, or a new one.
Ref<cImage> Import::ImageOf(const RadiographFile& file) {
    Ref<cImage> image = New<cImage>();
    const Ref<Recordset> known =
        con_->Execute(sql("SELECT ImageBildID FROM ImageBild_T WHERE SOPInstanceUID_NVC = '",
                          FixSqlString(file.sopInstanceUID), "'"));
    if (!known->Eof()) image->GetImage(con_, CLng(known->Fields(0).Value()));
    return image;
}

/// Refuses a file whose stored image is another one. A copy that is gone from its root is made
/// again, since that is what the user imports it for.
void Import::RequireSame(const Radiograph& radiograph, const cImage& image, Long patient,
                         const cSerie& series, std::vector<StoredFile>& files) const {
    if (image.PatID != patient || image.seriesID != series.ID)
        throw Complaint(fmt::format("its SOP Instance UID {} belongs to an image of another series already",
                                    radiograph.file.sopInstanceUID));
    files.emplace_back(radiograph.path, StoredPath(image.Root_RootDirectory, image.URL)).Keep();
}

/// Copies the file and stores its image; false if the image is stored already, with the same file.
bool Import::StoreImage(const Radiograph& radiograph, Long patient, const cSerie& series,
                        std::vector<StoredFile>& files) {
    const Ref<cImage> image = ImageOf(radiograph.file);
    if (image->ID != 0 && !image->URL.empty()) {
        RequireSame(radiograph, *image, patient, series, files);
        return false;
    }
    const std::string name =
        services_->GetSubFolder(patient) + "\\" + radiograph.file.sopInstanceUID + ".dcm";
    files.emplace_back(radiograph.path, StoredPath(root_, name));
    Fill(*image, radiograph, patient, series);
    image->URL = name;
    image->SaveEx(false, con_);
    return true;
}

void Import::Fill(cImage& image, const Radiograph& radiograph, Long patient, const cSerie& series) const {
    const RadiographFile& file = radiograph.file;
    const auto whole = [](double value) { return CLng(std::clamp(value, 0.0, 2e9)); };
    image.ImageType = TypeOf(file);
    image.PatID = patient;
    image.studyID = series.studyID;
    image.seriesID = series.ID;
    image.instanceUID = file.sopInstanceUID;
    image.dateTime = DateOf(file.acquisitionDateTime);
    image.ImageNumberInSeries = file.instanceNumber;
    image.RootId = services_->ActiveRootID;
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

void PrintTally(const Tally& tally, bool json) {
    if (json)
        return PrintJson({{"files", tally.files},
                          {"stored", tally.stored},
                          {"known", tally.known},
                          {"failed", tally.failed},
                          {"series", tally.hung}});
    fmt::print("{} files: {} new images stored, {} were stored already, {} not imported; {} series hung.\n",
               tally.files, tally.stored, tally.known, tally.failed, tally.hung.size());
    if (tally.stored == 0 && tally.known > 0) fmt::print("Nothing was stored twice.\n");
}

void ImportFolders(Program& program, const std::vector<std::string>& names) {
    const Clinic clinic(program.options);
    Import import(clinic);
    import.Run(FilesOf(names));
    PrintTally(import.Result(), program.options.json);
    if (import.Result().failed > 0) program.exitCode = PartlyDone;
}

}  // namespace

void AddImport(Program& program) {
    const auto names = std::make_shared<std::vector<std::string>>();
    auto* command = program.app.add_subcommand(
        "import", "read radiographs from folders of DICOM files, store them and hang each series");
    command->add_option("FOLDER", *names, "folders, with all below them, or single files")->required();
    command->footer(
        "Importing the same files again stores nothing twice. Exit code 3: some files were not imported.\n"
        "Example: oxclass --db clinic.db import ~/radiographs");
    command->callback([&program, names] { ImportFolders(program, *names); });
}

}  // namespace Console
