#pragma once

#include "bench/ByHand.h"

#include <memory>

struct pg_conn;
struct pg_result;

namespace Bench {

/// The work by hand on the client library of PostgreSQL: statements prepared once, values passed as texts, columns read
/// by position.
class PostgresByHand {
public:
    static constexpr const char* BeginText = "BEGIN";

    /// `settings` is a connection string of the client library.
    explicit PostgresByHand(const std::string& settings);

    void Execute(const char* statement);
    std::vector<HandImage> LoadPatient(std::int64_t patient);
    HandImage LoadImage(std::int64_t id);
    /// Inserts the image and reads its new key.
    std::int64_t Insert(const HandImage& image);
    /// Deletes what was saved.
    void Forget();

private:
    struct Close {
        void operator()(pg_conn* connection) const;
    };
    struct Clear {
        void operator()(pg_result* result) const;
    };
    using Result = std::unique_ptr<pg_result, Clear>;

    void Prepare(const char* name, const std::string& statement);
    Result Run(const char* name, const std::vector<std::string>& values);

    std::unique_ptr<pg_conn, Close> connection_;
};

}  // namespace Bench
