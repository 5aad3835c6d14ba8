#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace Bench {

/// What a program that uses the engine's C interface alone would keep of an image: the same 36 columns.
struct HandImage {
    bool approved, invert;
    std::int64_t brightness, contrast, exposure, id, type, patient, root, mirror, dpiY, dpiX, voltage, current, study,
        series, number, status, frame, subType, gamma, derived, rootStatus;
    double captured;
    std::string url, source, responsible, rootDirectory, region, modifier, laterality, teeth, crc, capture, uid, crop;
};

/// The same work by hand: statements prepared once, values bound, columns read by position.
class ByHand {
public:
    static constexpr const char* BeginText = "BEGIN IMMEDIATE";

    explicit ByHand(const std::string& path);
    ~ByHand();
    ByHand(const ByHand&) = delete;

    void Execute(const char* statement);
    std::vector<HandImage> LoadPatient(std::int64_t patient) { return Load(ofPatient_, patient); }
    std::vector<HandImage> LoadSeries(std::int64_t series) { return Load(ofSeries_, series); }
    /// The images of a series by the statement that reads whole rows.
    std::vector<HandImage> LoadSeriesWhole(std::int64_t series) { return Load(ofSeriesWhole_, series); }
    /// The images of these keys, in the order of capture, by the same statement.
    std::vector<HandImage> LoadChosen(const std::vector<std::int64_t>& ids);
    /// Returns the image with this key; one with the key 0 if there is none.
    HandImage LoadImage(std::int64_t id);
    /// Inserts the image and reads its new key.
    std::int64_t Insert(const HandImage& image);
    void Update(const HandImage& image);
    /// Deletes what saves put in, also those of a run that was cut short.
    void Forget();

private:
    sqlite3_stmt* Prepare(const char* statement);
    std::vector<HandImage> Load(sqlite3_stmt* statement, std::int64_t key);
    const std::vector<int>& PlacesOf(sqlite3_stmt* statement);
    std::vector<HandImage> Walk(sqlite3_stmt* statement);

    sqlite3* database_ = nullptr;
    std::map<std::size_t, sqlite3_stmt*> chosen_;  // by the number of keys
    std::map<sqlite3_stmt*, std::vector<int>> places_;
    std::vector<sqlite3_stmt*> all_;
    sqlite3_stmt *ofPatient_, *ofSeries_, *ofSeriesWhole_, *one_, *insert_, *newest_, *update_;
};

}  // namespace Bench
