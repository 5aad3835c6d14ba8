#include "console/maintenance/ClinicCheck.h"

#include "console/Completeness.h"
#include "console/Server.h"
#include "console/import/ReadFile.h"
#include "console/import/Staging.h"
#include "console/maintenance/ClinicFiles.h"
#include "console/patients/PatientStore.h"
#include "console/records/RecordChange.h"
#include "console/trash/Trash.h"
#include "frame/Statement.h"
#include "frame/StoredName.h"
#include "images/cImages.h"
#include "platform/adodb/Transaction.h"
#include "series/cSerie.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <unordered_set>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;

/// Rows of one table that refer to a missing row of another table.
struct Reference {
    const char *what, *table, *key, *column, *owner, *ownerKey;
    const char* also = "";  ///< a further condition
};

constexpr Reference References[] = {
    {"image", "ImageBild_T", "ImageBildID", "PatientID", "Patient_T", "PatientID"},
    {"image", "ImageBild_T", "ImageBildID", "Series_ID", "Series_T", "Series_ID"},
    {"image", "ImageBild_T", "ImageBildID", "Study_ID", "Study_T", "Study_ID"},
    {"image", "ImageBild_T", "ImageBildID", "RootId", "Root_T", "RootID", " AND c.GraphicURL_NVC <> ''"},
    {"series", "Series_T", "Series_ID", "Study_ID", "Study_T", "Study_ID"},
    {"study", "Study_T", "Study_ID", "PatientID", "Patient_T", "PatientID"},
    {"image card", "ImageCard_T", "ImageCardID", "PatientID", "Patient_T", "PatientID"},
    {"placed image", "ImageAttribute_T", "ImageAttributeID", "ImageCardID", "ImageCard_T", "ImageCardID"},
    {"placed image", "ImageAttribute_T", "ImageAttributeID", "ImageBildId", "ImageBild_T", "ImageBildID"},
    {"manipulation", "ImageManipulation_T", "ImageManipulationID", "ImageAttributeID", "ImageAttribute_T",
     "ImageAttributeID"},
    {"comment", "Comments_T", "CommentID", "objectID", "ImageBild_T", "ImageBildID", " AND c.tabelID = 1"},
};

enum class Holds { Text, Number, Date };

/// A column that the program reads, and that must have a valid value in every row.
struct Needed {
    const char *what, *table, *key, *column;
    Holds holds;
};

constexpr Needed NeededColumns[] = {
    {"storage root", "Root_T", "RootID", "RootDirectory", Holds::Text},
    {"study", "Study_T", "Study_ID", "PatientID", Holds::Number},
    {"study", "Study_T", "Study_ID", "StudyInstanceUID", Holds::Text},
    {"study", "Study_T", "Study_ID", "StudyDateTime", Holds::Date},
    {"study", "Study_T", "Study_ID", "Studydesc", Holds::Text},
    {"study", "Study_T", "Study_ID", "StudyID", Holds::Text},
    {"study", "Study_T", "Study_ID", "ReferDrName", Holds::Text},
    {"study", "Study_T", "Study_ID", "Accessionnumber", Holds::Text},
    {"series", "Series_T", "Series_ID", "Study_ID", Holds::Number},
    {"series", "Series_T", "Series_ID", "SeriesInstanceUID", Holds::Text},
    {"image card", "ImageCard_T", "ImageCardID", "PatientID", Holds::Number},
    {"image card", "ImageCard_T", "ImageCardID", "ICName", Holds::Text},
    {"image card", "ImageCard_T", "ImageCardID", "ICDateCreated", Holds::Date},
    {"image card", "ImageCard_T", "ImageCardID", "ICLastUpdate", Holds::Date},
    {"image card", "ImageCard_T", "ImageCardID", "ICDescription", Holds::Text},
    {"placed image", "ImageAttribute_T", "ImageAttributeID", "ImageCardID", Holds::Number},
    {"placed image", "ImageAttribute_T", "ImageAttributeID", "ImageBildId", Holds::Number},
    {"placed image", "ImageAttribute_T", "ImageAttributeID", "IASequence", Holds::Number},
    {"manipulation", "ImageManipulation_T", "ImageManipulationID", "ImageAttributeID", Holds::Number},
    {"manipulation", "ImageManipulation_T", "ImageManipulationID", "SequenceNo", Holds::Number},
    {"comment", "Comments_T", "CommentID", "tabelID", Holds::Number},
    {"comment", "Comments_T", "CommentID", "objectID", Holds::Number},
    {"comment", "Comments_T", "CommentID", "dates", Holds::Date},
    {"comment", "Comments_T", "CommentID", "signature", Holds::Text},
    {"comment", "Comments_T", "CommentID", "commentString", Holds::Text},
};

/// Returns the reason why a column of a row can't be read; null if it can.
std::optional<Error> DamageOfColumn(const Ref<Recordset>& row, const Needed& needed) {
    try {
        switch (needed.holds) {
            case Holds::Text: ValueOf<String>(row, needed.column); break;
            case Holds::Number: ValueOf<Long>(row, needed.column); break;
            case Holds::Date: ValueOf<Date>(row, needed.column); break;
        }
        return std::nullopt;
    } catch (const Error& failure) {
        return failure;
    }
}

/// Returns "Ek, Anna, born 1980-01-31, sex F"; omits what is unknown.
std::string Said(const PatientIdentity& person) {
    const std::string born = DateText(person.birthDate);
    return person.Name() + (born.empty() ? "" : ", born " + born) + (person.sex.empty() ? "" : ", sex " + person.sex);
}

/// One check of one clinic.
class ClinicCheck {
public:
    ClinicCheck(const Database& database, bool repair)
        : database_(database),
          con_(database.Con()),
          repair_(repair),
          folders_(FoldersOfRoots(con_)),
          givenToOthers_(ImagesGivenToOthers(con_)) {}

    CheckResult Run() {
        CheckIntegrity();
        Roots();
        InterruptedRemovals();
        const std::vector<ClinicFile> files = FilesOfClinic(con_);
        result_.images = static_cast<std::size_t>(database_.Number("SELECT count(*) FROM ImageBild_T"));
        StoredFiles(files);
        FilesWithoutRow(files);
        for (const Reference& reference : References) OrphanedRows(reference);
        DamagedPatients();
        for (const Needed& needed : NeededColumns) DamagedRows(needed);
        DamagedSeries();
        DamagedImages();
        ImagesWithoutOwner();
        DoubleImages();
        DoublePatients();
        return std::move(result_);
    }

private:
    /// A person whom a file names, and the image of the first such file.
    struct SaidBy {
        Long image;
        PatientIdentity person;
    };
    struct People {
        PatientIdentity stored;
        std::vector<SaidBy> said;
    };

    void Found(const char* kind, std::string where, std::string text, bool repaired = false) {
        result_.findings.push_back({kind, std::move(where), std::move(text), repaired});
    }

    void FoundNames(const PatientIdentity& a, const PatientIdentity& b, Long image, std::string text) {
        const bool corrected = DifferInFamilyNameOnly(a, b);
        Found(corrected ? "other-name" : "two-names", fmt::format("image {}", image), std::move(text));
        result_.findings.back().note = corrected || givenToOthers_.contains(image);
    }

    void CheckIntegrity() {
        if (IsServer(con_)) return;
        const Ref<Recordset> rows = database_.Read("PRAGMA integrity_check");
        for (; !rows->Eof(); rows->MoveNext()) {
            const std::string text = rows->Fields(0).As<String>();
            if (text != "ok") Found("damaged-database", "the database", text);
        }
    }

    /// Roots that can't be used; their files are not looked at one by one.
    void Roots() {
        StorageRoots roots(con_);
        for (const auto& [number, folder] : folders_) {
            try {
                roots.Inspect(number);
                sound_.insert(number);
                Leftovers(folder);
            } catch (const UserError& refused) {
                Found("unusable-root", fmt::format("storage root {}", number), refused.what());
            } catch (const Error&) {
                // Its directory can't be read: a damaged row.
            }
        }
    }

    void Leftovers(const fs::path& folder) {
        const std::size_t files = repair_ ? RemoveLeftovers(con_, folder) : CountLeftovers(folder);
        if (files > 0)
            Found("leftover", folder.string(), fmt::format("{} files of an import that was killed", files), repair_);
    }

    /// Entries of the trash that a killed program has left.
    void InterruptedRemovals() {
        for (const TrashListing& entry : TrashEntries(con_)) {
            const std::string folder = entry.record.parent_path().string();
            try {
                const TrashRecord record = TrashRecord::Read(entry.record);
                if (entry.state != TrashState::Complete) InterruptedRemoval(folder, record);
            } catch (const UserError& damage) {
                Found("damaged-trash", folder, damage.what());
            }
        }
        if (repair_) RecoverTrash(con_);
    }

    /// The files of such an entry are not reported as strays.
    void InterruptedRemoval(const std::string& folder, const TrashRecord& record) {
        for (const TrashFile& file : record.files)
            if (sound_.contains(file.root)) removed_.insert(FileBelow(folders_.at(file.root).string(), file.name));
        Found("leftover", folder, fmt::format("the removal of {} was interrupted", record.what), repair_);
    }

    fs::path PathOf(const ClinicFile& file) const {
        const auto folder = folders_.find(file.root);
        return folder == folders_.end() ? std::string() : FileBelow(folder->second.string(), file.name);
    }

    void StoredFiles(const std::vector<ClinicFile>& all) {
        std::vector<const ClinicFile*> files;
        for (const ClinicFile& file : all) {
            if (PathOf(file).empty() && folders_.contains(file.root))
                Found("bad-name", Image(file),
                      fmt::format("its stored name \"{}\" does not name a file below its root", file.name));
            else if (sound_.contains(file.root))
                files.push_back(&file);
        }
        ReadFiles(
            files.size(), true, "files checked", [&](std::size_t i) { return PathOf(*files[i]).string(); },
            [&](std::size_t i, const FileContent& content) { StoredFile(*files[i], content); });
    }

    static std::string Image(const ClinicFile& file) { return fmt::format("image {}", file.image); }

    void StoredFile(const ClinicFile& file, const FileContent& content) {
        ++result_.files;
        const fs::path path = PathOf(file);
        std::error_code failure;
        if (!fs::exists(path, failure))
            return Found("missing-file", Image(file), fmt::format("its file {} is missing", path.string()));
        if (content.sha256.empty()) return Found("unreadable-file", Image(file), content.failure);
        if (file.sha256.empty())
            StoreChecksum(file, content.sha256);
        else if (file.sha256 != content.sha256)
            Found("altered-file", Image(file), fmt::format("its file {} was altered", path.string()));
        Person(file, Unpacked(content.packedImage));
    }

    void StoreChecksum(const ClinicFile& file, const std::string& sha256) {
        ++result_.withoutChecksum;
        if (!repair_) return;
        con_->Execute(
            sql("UPDATE ImageBild_T SET CRC = '", FixSqlString(sha256), "' WHERE ImageBildID = ", file.image));
    }

    /// Reports a file that names another person than its patient.
    void Person(const ClinicFile& file, const ReadFile& read) {
        if (!read.file || file.patient == 0) return;
        const auto [known, isNew] = people_.try_emplace(file.patient);
        if (isNew) known->second.stored = StoredPatient(file.patient);
        PatientIdentity said = IdentityOf(*read.file);
        said.issuer.clear();  // a person may have decided that two issuers mean one patient
        const PatientIdentity& stored = known->second.stored;
        if (stored.number != 0 && !Contradictions(stored, said).empty())
            FoundNames(
                stored, said, file.image,
                fmt::format("its file names {}, and its patient #{} is {}", Said(said), stored.number, Said(stored)));
        else
            CompareWithOtherFiles(file, said, known->second);
    }

    /// Reports files of one patient whose names contradict each other, also if the patient has no name.
    void CompareWithOtherFiles(const ClinicFile& file, const PatientIdentity& said, People& people) {
        const auto same = [&](const SaidBy& other) { return other.person == said; };
        if (std::ranges::any_of(people.said, same)) return;
        for (const SaidBy& other : people.said) {
            if (Contradictions(other.person, said).empty()) continue;
            if (givenToOthers_.contains(other.image)) continue;
            FoundNames(other.person, said, file.image,
                       fmt::format("its file names {}, and that of image {} of the same "
                                   "patient #{} names {}",
                                   Said(said), other.image, file.patient, Said(other.person)));
            break;
        }
        people.said.push_back({file.image, said});
    }

    /// Returns the patient of a row; number 0 where there is none, or none that can be read.
    PatientIdentity StoredPatient(Long number) const {
        try {
            const auto patient = PatientOfRow(con_, number);
            return patient ? IdentityOf(con_, *patient) : PatientIdentity{};
        } catch (const UserError&) {
            return {};  // found as a damaged row
        }
    }

    void Damaged(const std::string& where, const Error& failure) { Found("damaged-row", where, DamageOf(failure)); }

    void DamagedPatients() {
        const Ref<Recordset> rows = database_.Read("SELECT PatientID FROM Patient_T ORDER BY PatientID");
        for (; !rows->Eof(); rows->MoveNext()) {
            const Long number = rows->Fields(0).As<Long>();
            const Ref<cPatient> patient = New<cPatient>();
            WithoutTextBoxes([&] { patient->LoadOnPatientIDorPDBID(con_, String(), number); });
            if (!patient->LoadCompletion().Complete())
                Damaged(fmt::format("patient #{}", number), patient->LoadCompletion().Failure());
        }
    }

    void DamagedRows(const Needed& needed) {
        const Ref<Recordset> rows = database_.Read(
            fmt::format("SELECT {}, {} FROM {} ORDER BY {}", needed.key, needed.column, needed.table, needed.key));
        for (; !rows->Eof(); rows->MoveNext())
            if (const auto damage = DamageOfColumn(rows, needed))
                Damaged(fmt::format("{} {}", needed.what, rows->Fields(0).As<Long>()), *damage);
    }

    /// Reports columns of a series that may be null and contain an invalid value.
    void DamagedSeries() {
        const Ref<Recordset> rows = database_.Read("SELECT * FROM Series_T ORDER BY Series_ID");
        for (; !rows->Eof(); rows->MoveNext()) {
            const Long number = rows->Fields("Series_ID").As<Long>();
            try {
                New<cSerie>()->ReadRow(rows);
            } catch (const Error& failure) {
                if (!IsNeeded("series", failure.Column)) Damaged(fmt::format("series {}", number), failure);
            }
        }
    }

    static bool IsNeeded(std::string_view what, const std::string& column) {
        return std::ranges::any_of(NeededColumns, [&](const Needed& needed) {
            return what == needed.what && EqualsIgnoringCase(needed.column, column);
        });
    }

    /// Images that name no series, or have no SOP Instance UID: an import takes their files for new ones.
    void ImagesWithoutOwner() {
        const std::pair<const char*, const char*> lacks[] = {
            {"Series_ID", "Series_ID IS NULL OR Series_ID = 0"},
            {"SOPInstanceUID_NVC", "trim(coalesce(SOPInstanceUID_NVC, '')) = ''"}};
        for (const auto& [column, condition] : lacks) {
            const Ref<Recordset> rows = database_.Read(
                fmt::format("SELECT ImageBildID FROM ImageBild_T WHERE {} ORDER BY ImageBildID", condition));
            for (; !rows->Eof(); rows->MoveNext())
                Found("damaged-row", fmt::format("image {}", rows->Fields(0).As<Long>()),
                      fmt::format("{}: it is empty", column));
        }
    }

    void FilesWithoutRow(const std::vector<ClinicFile>& files) {
        std::unordered_set<std::string> known = removed_;
        for (const ClinicFile& file : files) {
            known.insert(PathOf(file).string());
            if (folders_.contains(file.root)) continue;
            // An unknown root is a finding already; the file may be in any.
            for (const Long root : sound_) known.insert(FileBelow(folders_.at(root).string(), file.name));
        }
        for (const Long root : sound_) {
            std::error_code failure;
            for (fs::recursive_directory_iterator entry(folders_.at(root), failure), end; !failure && entry != end;
                 entry.increment(failure)) {
                const std::string name = entry->path().filename().string();
                if (entry.depth() == 0 && name.starts_with(".oxclass-")) {
                    entry.disable_recursion_pending();
                    continue;
                }
                if (entry->is_regular_file(failure) && !known.contains(entry->path().string()))
                    Found("orphaned-file", entry->path().string(),
                          "no image has this file; import it, or move it away");
            }
        }
    }

    void OrphanedRows(const Reference& reference) {
        const std::string condition = fmt::format(
            "FROM {} c WHERE {} AND c.{} <> 0{} AND NOT "
            "EXISTS (SELECT 1 FROM {} o WHERE o.{} "
            "= c.{})",
            reference.table, IsWhole(con_, fmt::format("c.{}", reference.column)), reference.column, reference.also,
            reference.owner, reference.ownerKey, reference.column);
        const Ref<Recordset> rows = database_.Read(fmt::format("SELECT c.{}, c.{} {} ORDER BY c.{}", reference.key,
                                                               reference.column, condition, reference.key));
        const bool repaired = repair_ && std::string_view(reference.what) == "manipulation" && !rows->Eof();
        for (; !rows->Eof(); rows->MoveNext()) {
            const Long key = rows->Fields(0).As<Long>();
            Found("orphaned-row", fmt::format("{} {}", reference.what, key),
                  fmt::format("{} {} of {} isn't there", reference.column, rows->Fields(1).As<Long>(), reference.owner),
                  repaired);
            if (repaired) con_->Execute(sql("DELETE FROM ImageManipulation_T WHERE ImageManipulationID = ", key));
        }
    }

    /// Reads patient by patient, so that the memory does not grow with the clinic.
    void DamagedImages() {
        const std::string known = IsWhole(con_, "PatientID");
        DamagedImages("where NOT (" + known + ")");
        const Ref<Recordset> patients =
            database_.Read("SELECT DISTINCT PatientID FROM ImageBild_T WHERE " + known + " ORDER BY PatientID");
        for (; !patients->Eof(); patients->MoveNext())
            DamagedImages(sql("where PatientID=", patients->Fields(0).As<Long>()));
    }

    void DamagedImages(const String& clause) {
        const Ref<cImages> images = New<cImages>();
        images->LoadReadable(con_, iootUnknown, 0, clause);
        for (const UnreadRow& row : images->Unread()) Damaged(fmt::format("image {}", row.ID), row.Failure);
    }

    void DoubleImages() {
        const Ref<Recordset> rows = database_.Read(
            "SELECT SOPInstanceUID_NVC, count(*), min(ImageBildID), "
            "max(ImageBildID) FROM ImageBild_T WHERE "
            "SOPInstanceUID_NVC <> '' GROUP BY SOPInstanceUID_NVC "
            "HAVING count(*) > 1 ORDER BY SOPInstanceUID_NVC");
        for (; !rows->Eof(); rows->MoveNext())
            Found("double-image",
                  fmt::format("images {} and {}", rows->Fields(2).As<Long>(), rows->Fields(3).As<Long>()),
                  fmt::format("{} images have the SOP Instance UID {}", rows->Fields(1).As<Long>(),
                              rows->Fields(0).As<String>()));
    }

    void DoublePatients() {
        const Ref<Recordset> rows = database_.Read(
            "SELECT PersonNr_CH FROM Patient_T WHERE PersonNr_CH <> "
            "'' GROUP BY PersonNr_CH HAVING count(*) "
            "> 1 ORDER BY PersonNr_CH");
        for (; !rows->Eof(); rows->MoveNext()) PatientsOfID(rows->Fields(0).As<String>());
    }

    /// Patients of different issuers may have the same identifier.
    void PatientsOfID(const String& id) {
        std::set<std::string> issuers;
        std::string names;
        std::size_t count = 0;
        const Ref<Recordset> rows = con_->Execute(
            sql("SELECT PatientID FROM Patient_T WHERE PersonNr_CH = '", FixSqlString(id), "' ORDER BY PatientID"));
        for (; !rows->Eof(); rows->MoveNext()) {
            const PatientIdentity person = StoredPatient(rows->Fields(0).As<Long>());
            if (person.number == 0) continue;
            if (!person.issuer.empty()) issuers.insert(UCase(person.issuer));
            names += fmt::format("{}#{} {}", names.empty() ? "" : ", ", person.number, person.Name());
            ++count;
        }
        if (issuers.size() < count)
            Found("shared-id", fmt::format("patient ID {}", id), fmt::format("several patients have it: {}", names));
    }

    const Database& database_;
    Ref<Connection> con_;
    bool repair_;
    std::map<Long, fs::path> folders_;
    std::set<Long> sound_;
    std::map<Long, People> people_;
    std::set<Long> givenToOthers_;
    std::unordered_set<std::string> removed_;
    CheckResult result_;
};

}  // namespace

CheckResult CheckClinic(const Database& database, bool repair) { return ClinicCheck(database, repair).Run(); }

}  // namespace Console
