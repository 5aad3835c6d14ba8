#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace Bench {

/// What a program that uses the engine's C interface alone would keep of an entry of a card list.
struct HandEntry {
    std::int64_t id = 0, patient = 0, width = 0, height = 0, study = 0, images = 0, layout = 0, server = 0;
    double date = 0, changed = 0, studyDate = 0;
    bool series = false, approved = false, both = false, derived = false;
    std::string name, description, uid, number, studyUID, studyText, studyID, referring, physicians, accession;
};

/// An image as it lies on a card.
struct HandPlaced {
    std::int64_t id = 0, image = 0, sequence = 0, form = 0, steps = 0;
    double x = 0, y = 0, width = 0, height = 0;
    std::string comments;
};

/// The statements of the card list and of an entry by hand: prepared once, values bound, columns read by
/// position.
class CardsByHand {
public:
    explicit CardsByHand(const std::string& path);
    ~CardsByHand();
    CardsByHand(const CardsByHand&) = delete;

    /// A patient's cards and series, newest first.
    std::vector<HandEntry> List(const std::string& personalNumber);

    /// The placed images of a card, with their manipulations counted.
    std::vector<HandPlaced> PlacedOn(std::int64_t card);

    /// The slots of the layout of this number.
    std::vector<HandPlaced> SlotsOf(std::int64_t layout);

private:
    sqlite3_stmt* Prepare(const char* statement);

    sqlite3* database_ = nullptr;
    std::vector<sqlite3_stmt*> all_;
    sqlite3_stmt *cards_, *series_, *placed_, *steps_, *layout_, *slots_;
};

}  // namespace Bench
