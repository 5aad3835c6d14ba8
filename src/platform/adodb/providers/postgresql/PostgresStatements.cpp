#include "platform/adodb/providers/postgresql/PostgresStatements.h"

#include "platform/adodb/providers/postgresql/PostgresErrors.h"
#include "platform/runtime/Convert.h"

#include <array>
#include <charconv>

namespace ADODB {

using namespace Platform;

namespace {

/// Returns the decimal digits of a number; they are in `buffer`.
template <class Number>
std::string_view Digits(Number number, std::array<char, 32>& buffer) {
    const auto [end, failure] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    static_cast<void>(failure);
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

}  // namespace

void PostgresValues::Add(std::string_view text) {
    if (text.find('\0') != std::string_view::npos)
        RaisePostgres(CantConvertValue, "22021", "The server can't store a text with a zero character.", {});
    offsets_.push_back(bytes_.size());
    bytes_ += text;
    bytes_ += '\0';
}

void PostgresValues::Point() {
    texts_.clear();
    for (const std::size_t offset : offsets_) texts_.push_back(offset == NullOffset ? nullptr : bytes_.data() + offset);
}

void PostgresValues::Set(const PostgresStatement& statement, const std::vector<Literal>& literals) {
    bytes_.clear();
    offsets_.clear();
    std::array<char, 32> digits;
    for (std::size_t i = 0; i < literals.size(); ++i) {
        const Literal& literal = literals[i];
        if (literal.isText && literal.body.empty() && statement.nullIfBlank[i]) {
            offsets_.push_back(NullOffset);
            continue;
        }
        if (literal.isText) {
            const bool quoted = literal.body.find('\'') != std::string_view::npos;
            Add(quoted ? std::string_view(Unquoted(literal.body)) : literal.body);
            continue;
        }
        const std::size_t start = bytes_.size();
        if (statement.negative[i]) bytes_ += '-';
        Add(literal.isReal ? literal.body : Digits(literal.number, digits));
        offsets_.back() = start;
    }
    Point();
}

void PostgresValues::Set(std::span<const Variant> values) {
    bytes_.clear();
    offsets_.clear();
    std::array<char, 32> digits;
    for (const Variant& value : values) {
        const Cell cell = CellOf(value);
        switch (cell.kind) {
            case Cell::Kind::Null: offsets_.push_back(NullOffset); break;
            case Cell::Kind::Whole: Add(Digits(cell.whole, digits)); break;
            case Cell::Kind::Real: Add(Digits(cell.real, digits)); break;
            case Cell::Kind::Text: Add(cell.Text()); break;
        }
    }
    Point();
}

}  // namespace ADODB
