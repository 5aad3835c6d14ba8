#pragma once

#include "bench/ByHand.h"

#include <memory>

namespace Bench {

/// The work by hand on the ODBC driver manager: statements prepared once, values and columns bound, a hundred rows by
/// each call.
class OdbcByHand {
public:
    static constexpr const char* BeginText = "START TRANSACTION";

    /// `settings` is a connection string of the driver manager.
    explicit OdbcByHand(const std::string& settings);
    ~OdbcByHand();
    OdbcByHand(const OdbcByHand&) = delete;

    void Execute(const char* statement);
    std::vector<HandImage> LoadPatient(std::int64_t patient);
    HandImage LoadImage(std::int64_t id);
    /// Inserts the image and reads its new key.
    std::int64_t Insert(const HandImage& image);
    /// Deletes what was saved.
    void Forget();

private:
    struct Statement;
    using Owned = std::unique_ptr<Statement, void (*)(Statement*)>;
    Owned Prepare(const std::string& text);
    std::vector<HandImage> Load(Statement& statement, std::int64_t key);

    void* environment_ = nullptr;
    void* connection_ = nullptr;
    Owned patient_, image_, insert_, newest_;
};

}  // namespace Bench
