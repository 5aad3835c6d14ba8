#include "bench/PostgresByHand.h"

#include "bench/ImageByHand.h"
#include "bench/Report.h"

#include "platform/runtime/Convert.h"

#include <charconv>
#include <libpq-fe.h>
#include <stdexcept>

namespace Bench {
namespace {

/// Reads the columns of a row one after the other.
class PostgresRow {
public:
    PostgresRow(const PGresult* rows, int row) : rows_(rows), row_(row) {}

    std::string Text() {
        const int at = column_++;
        return {PQgetvalue(rows_, row_, at), static_cast<std::size_t>(PQgetlength(rows_, row_, at))};
    }
    std::int64_t Whole() {
        const int at = column_++;
        const char* const digits = PQgetvalue(rows_, row_, at);
        std::int64_t value = 0;
        std::from_chars(digits, digits + PQgetlength(rows_, row_, at), value);
        return value;
    }
    double Days() { return Platform::ParseDate(Text())->Days; }

private:
    const PGresult* rows_;
    int row_;
    int column_ = 0;
};

/// Collects the values of a statement.
class PostgresBinder {
public:
    PostgresBinder& operator<<(std::int64_t value) {
        values.push_back(std::to_string(value));
        return *this;
    }
    PostgresBinder& operator<<(const std::string& value) {
        values.push_back(value);
        return *this;
    }

    std::vector<std::string> values;
};

}  // namespace

void PostgresByHand::Close::operator()(pg_conn* connection) const { PQfinish(connection); }
void PostgresByHand::Clear::operator()(pg_result* result) const { PQclear(result); }

PostgresByHand::PostgresByHand(const std::string& settings) : connection_(PQconnectdb(settings.c_str())) {
    Prepare("patient", READ_COLUMNS "WHERE PatientID=$1 ORDER BY DateCaptured_SD NULLS FIRST, ImageBildID");
    Prepare("image", READ_COLUMNS "WHERE ImageBildID=$1");
    std::string marks;
    for (int i = 1; i <= InsertedValues; ++i) marks += (i == 1 ? "($" : ",$") + std::to_string(i);
    Prepare("insert", INSERT_IMAGE + marks + ")");
    Prepare("newest", "SELECT MAX(ImageBildID) FROM ImageBild_T WHERE GraphicURL_NVC=$1 AND PatientID=$2");
}

void PostgresByHand::Execute(const char* statement) {
    Require(PQresultStatus(Result(PQexec(connection_.get(), statement)).get()) <= PGRES_TUPLES_OK);
}

std::vector<HandImage> PostgresByHand::LoadPatient(std::int64_t patient) {
    const Result rows = Run("patient", {std::to_string(patient)});
    std::vector<HandImage> images(static_cast<std::size_t>(PQntuples(rows.get())));
    for (std::size_t row = 0; row < images.size(); ++row)
        ReadImage(PostgresRow(rows.get(), static_cast<int>(row)), images[row]);
    return images;
}

HandImage PostgresByHand::LoadImage(std::int64_t id) {
    const Result rows = Run("image", {std::to_string(id)});
    HandImage image{};
    if (PQntuples(rows.get()) > 0) ReadImage(PostgresRow(rows.get(), 0), image);
    return image;
}

std::int64_t PostgresByHand::Insert(const HandImage& image) {
    PostgresBinder binder;
    BindImage(binder, image);
    Run("insert", binder.values);
    return std::stoll(PQgetvalue(Run("newest", {image.url, std::to_string(image.patient)}).get(), 0, 0));
}

void PostgresByHand::Forget() {
    Execute("DELETE FROM ImageBild_T WHERE Series_ID >= 9000000");
    Execute("VACUUM ImageBild_T");
}

void PostgresByHand::Prepare(const char* name, const std::string& statement) {
    const Result result(PQprepare(connection_.get(), name, statement.c_str(), 0, nullptr));
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) throw std::runtime_error(PQerrorMessage(connection_.get()));
}

PostgresByHand::Result PostgresByHand::Run(const char* name, const std::vector<std::string>& values) {
    std::vector<const char*> texts;
    texts.reserve(values.size());
    for (const std::string& value : values) texts.push_back(value.c_str());
    Result result(
        PQexecPrepared(connection_.get(), name, static_cast<int>(texts.size()), texts.data(), nullptr, nullptr, 0));
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK && PQresultStatus(result.get()) != PGRES_TUPLES_OK)
        throw std::runtime_error(PQerrorMessage(connection_.get()));
    return result;
}

}  // namespace Bench
