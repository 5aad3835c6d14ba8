#pragma once

#include "console/dicom/DicomFile.h"
#include "console/import/Staging.h"
#include "console/import/StorageRoot.h"
#include "console/patients/PatientStore.h"
#include "images/cImage.h"
#include "series/cSerie.h"

#include <optional>

namespace Console {

/// A file that was read, with its path.
struct Radiograph {
    std::filesystem::path path;
    RadiographFile file;
    std::string noPicture;  ///< why its picture can't be drawn; empty if it can
};

/// The user's decision about the patient of all files of an import.
struct PatientDecision {
    std::string patient;      ///< "#5" or an identifier: the files belong to this
                              ///< patient, whatever differs
    bool newPatient = false;  ///< the files belong to a patient who isn't in the database yet
};

/// Thrown if the files state another person than the patient under whom they would be stored.
class IdentityConflict : public UserError {
public:
    IdentityConflict(const std::string& reason, std::string told, nlohmann::ordered_json described)
        : UserError(reason), table(std::move(told)), json(std::move(described)) {}

    std::string table;            ///< both people side by side, several lines
    nlohmann::ordered_json json;  ///< the same for scripts
};

/// Thrown if the connection to the server is lost.
class LostConnection : public UserError {
public:
    using UserError::UserError;
};

/// The result of storing a series.
struct SeriesResult {
    std::size_t stored = 0, known = 0;
    std::size_t restored = 0;  ///< images whose file, or whose file's name, was
                               ///< missing and is there again
    std::vector<std::pair<std::filesystem::path, std::string>> refused;  ///< files, with the reason
    std::vector<std::string> notes;  ///< what was stored otherwise than the file has it
    Platform::Long hung = 0;         ///< the series, if it was hung
};

/// Stores the files of one series: all of them or none.
///
/// Files are copied and flushed before the transaction begins; the database is locked only while rows are
/// written and names are taken. A series of which every file is stored already is only compared. Used by the
/// thread of its connection.
class SeriesImport {
public:
    SeriesImport(Ref<Connection> con, PatientDecision decision);

    /// Stores a series; `files` isn't empty, and all name the same series. Throws `IdentityConflict`,
    /// `UserError` and the library's `Error` for a series of which nothing was stored, and `Stopped`. Throws
    /// `LostConnection` if the connection was lost: the series is then stored whole or not at all, and its files stay
    /// until the next import sees which of both.
    SeriesResult Store(const std::vector<Radiograph>& files);

private:
    struct NewImage {
        const Radiograph* radiograph;
        StagedFile staged;
    };

    SeriesResult StoreOn(const std::vector<Radiograph>& files);
    std::vector<const Radiograph*> NewFiles(const std::vector<Radiograph>& files, SeriesResult& result);
    void TakeKnown(const Radiograph& radiograph, const OXClass::cImage& image, SeriesResult& result);
    void RequireSame(const Radiograph& radiograph, const OXClass::cImage& image);
    bool CompareOrRestoreFile(const Radiograph& radiograph, const OXClass::cImage& image);
    void Restore(const Radiograph& radiograph, const std::filesystem::path& target, Platform::Long root);
    std::vector<NewImage> Copied(const std::vector<const Radiograph*>& files);
    void StoreRows(const std::vector<NewImage>& images, SeriesResult& result);
    void TryToStoreRows(const std::vector<NewImage>& images, SeriesResult& result);
    Platform::Long StoreInTransaction(const std::vector<NewImage>& images, NamedFiles& names, SeriesResult& result);
    void StoreImage(const NewImage& image, Platform::Long patient, const OXClass::cSerie& series, NamedFiles& names,
                    SeriesResult& result);
    void RequireOnePerson(const std::vector<Radiograph>& files);
    Platform::Long PatientOf(const RadiographFile& file, SeriesResult& result);
    void Fill(Platform::Long patient, SeriesResult& result);
    std::optional<Platform::Long> KnownPatientOf(const RadiographFile& file);
    std::optional<Platform::Long> PatientOfStudy(const RadiographFile& file);
    void RequireNoContradiction(const RadiographFile& file, Platform::Long patient);
    Platform::Long NewPatient(const RadiographFile& file, SeriesResult& result);
    void TellSamePerson(const PatientIdentity& made, SeriesResult& result);
    OXClass::Ref<OXClass::cSerie> SeriesOf(const RadiographFile& file, Platform::Long study);
    Platform::Long StudyOf(const RadiographFile& file, Platform::Long patient);
    std::string StoredNameOf(const RadiographFile& file, Platform::Long patient) const;
    void Fill(OXClass::cImage& image, const RadiographFile& file, Platform::Long patient,
              const OXClass::cSerie& series) const;
    Staging& Stage();

    Ref<Connection> con_;
    PatientDecision decision_;
    std::optional<Platform::Long> decidedPatient_;
    std::vector<PatientIdentity> said_;         // what the files of the series say, each person once
    PatientIdentity person_;                    // the same in one
    std::vector<PatientIdentity> newPatients_;  // committed by this import, for `newPatient`
    std::optional<PatientIdentity> storedNew_;  // inserted or filled by the transaction that is open
    StorageRoots roots_;
    Platform::Long root_;
    bool claims_ = false;  ///< the database has a table of the imported images, since version 2
    std::optional<Staging> staging_;
};

}  // namespace Console
