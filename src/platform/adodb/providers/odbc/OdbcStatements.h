#pragma once

#include "platform/adodb/providers/odbc/OdbcApi.h"
#include "platform/adodb/providers/StatementCache.h"
#include "platform/adodb/providers/odbc/OdbcCatalog.h"

namespace ADODB {

/// A value of the current row, as the driver writes it.
struct OdbcValue {
    bool isBound = false;  ///< the driver writes it when it reads the row; otherwise it is read by itself
    std::int64_t whole = 0;
    double real = 0;
    unsigned char bit = 0;
    SQL_TIMESTAMP_STRUCT time{};
    std::vector<char> text;
    SQLLEN bytes = 0;  ///< of a text; or the mark of a null
};

/// Returns a value for each column. They are bound to the columns of the statement, and must live as long as it runs;
/// not bound are bytes, and texts of a driver that returns UTF-16. `utf8` is that of the dialect.
std::vector<OdbcValue> BoundValues(const OdbcHandle& statement, const OdbcColumns& columns, bool utf8);

/// A statement that the driver has prepared, or one that runs once.
struct OdbcStatement {
    Shape shape;
    std::optional<PieceBindings> bindings;  ///< if it ran as pieces
    String prepared;                        ///< its text with "?"
    OdbcHandle handle;
    OdbcTargets targets;                           ///< of its literals
    std::optional<std::vector<bool>> nullIfBlank;  ///< for each literal: an empty text is a null; once one was empty
    bool isDescribed = false;                      ///< `columns` is set
    std::shared_ptr<const OdbcColumns> columns;    ///< null if it does not return rows
    std::vector<OdbcValue> row;                    ///< of `columns`
};

/// The values of the parameters of one run of a statement.
class OdbcValues {
public:
    /// `utf8` is that of the dialect.
    explicit OdbcValues(bool utf8) : utf8_(utf8) {}

    /// Sets the values from literals; `nullIfBlank` is not read unless a literal is an empty text.
    void Set(const std::vector<Literal>& literals, const std::optional<std::vector<bool>>& nullIfBlank);
    /// Sets the values of a statement of the database layer.
    void Set(std::span<const Variant> values);

    /// Binds the values to the parameters of a statement. They are read when it runs, before the next call of `Set`.
    void Bind(const OdbcHandle& statement);

private:
    struct Value {
        Cell::Kind kind = Cell::Kind::Null;
        std::int64_t whole = 0;
        double real = 0;
        std::size_t start = 0;   // of a text, in `bytes_`
        std::int64_t bytes = 0;  // of a text; or the mark of a null, while it is bound
    };
    void Add(const Cell& cell);
    void BindText(const OdbcHandle& statement, unsigned short number, Value& value);

    bool utf8_;
    std::vector<Value> values_;
    String bytes_;  // the texts, in the encoding that the driver takes
};

/// The rows of a statement that has run. The destructor closes the cursor.
class OdbcRows final : public RowReader {
public:
    /// The arguments must outlive this object; `text` is what errors are about.
    OdbcRows(OdbcLink& link, const OdbcStatement& statement, std::string_view text);
    ~OdbcRows() override;

    bool Next() override;
    Cell At(Long ordinal) const override;

private:
    /// Reads the values that are not bound, and the texts that are longer than their memory.
    void Complete(bool mayBeCut);
    /// Returns a time as a text.
    Cell TimeIn(std::size_t column);
    /// Returns true for a text that is longer than its memory.
    static bool IsCut(const OdbcValue& value);
    /// Reads a value that is not bound.
    Cell Read(std::size_t column);
    /// Reads a text of any length and returns a cell that points to it.
    Cell ReadText(std::size_t column);
    /// Does the same for bytes, or for a text that the driver returns as UTF-8.
    Cell ReadBytes(std::size_t column, short type);
    /// Reads a value of any length in units of one or two bytes to the end of `units`; returns false for a null.
    template <class Unit>
    bool ReadAll(std::size_t column, short type, std::vector<Unit>& units, std::size_t& count);
    [[noreturn]] void Fail();

    OdbcLink& link_;
    const OdbcStatement& statement_;
    std::string_view text_;
    std::vector<std::size_t> unbound_;  // the columns that are not bound
    std::vector<std::size_t> times_;    // the columns of times
    bool isCut_ = false;                // some text of the current row is longer than its memory
    std::vector<Cell> cells_;           // of the current row, where `Complete` has read them
    std::vector<String> texts_;         // which the cells point to
    std::vector<char16_t> units_;
    std::vector<char> bytes_;
};

}  // namespace ADODB
