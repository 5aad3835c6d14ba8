#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace Bench {

/// What a program that uses the engine's C interface alone would keep of an image: the same 36 columns.
struct HandImage {
    bool approved, invert;
    std::int64_t brightness, contrast, exposure, id, type, patient, root, mirror, dpiY, dpiX, voltage,
        current, study, series, number, status, frame, subType, gamma, derived, rootStatus;
    double captured;
    std::string url, source, responsible, rootDirectory, region, modifier, laterality, teeth, crc, capture,
        uid, crop;
};

/// The same work by hand: statements prepared once, values bound, columns read by position.
class ByHand {
public:
    explicit ByHand(const std::string& path);
    ~ByHand();
    ByHand(const ByHand&) = delete;

    void Execute(const char* statement);
    std::vector<HandImage> LoadPatient(std::int64_t patient) { return Load(ofPatient_, patient); }
    std::vector<HandImage> LoadSeries(std::int64_t series) { return Load(ofSeries_, series); }
    bool LoadImage(std::int64_t id, HandImage& image);
    /// Inserts the image and reads its new key.
    std::int64_t Insert(const HandImage& image);
    void Update(const HandImage& image);

private:
    sqlite3_stmt* Prepare(const char* statement);
    std::vector<HandImage> Load(sqlite3_stmt* statement, std::int64_t key);

    sqlite3* database_ = nullptr;
    std::vector<sqlite3_stmt*> all_;
    sqlite3_stmt *ofPatient_, *ofSeries_, *one_, *insert_, *newest_, *update_;
};

}  // namespace Bench
