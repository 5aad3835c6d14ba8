#pragma once

#include "platform/adodb/providers/StatementCache.h"
#include "platform/adodb/providers/odbc/OdbcCatalog.h"

namespace ADODB {

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
    /// The statement and the texts that the arguments refer to must outlive this object; `statement` is what errors are
    /// about.
    OdbcRows(OdbcLink& link, const OdbcHandle& handle, std::shared_ptr<const OdbcColumns> columns,
             std::string_view statement);
    ~OdbcRows() override;

    bool Next() override;
    Cell At(Long ordinal) const override { return cells_[static_cast<std::size_t>(ordinal)]; }

private:
    Cell Read(std::size_t column);
    /// Reads a value in a type of the interface; returns false for a null.
    bool Get(std::size_t column, short type, void* value, std::int64_t size);
    /// Reads a text of any length and returns a cell that points to it.
    Cell ReadText(std::size_t column);
    /// Does the same for bytes, or for a text that the driver returns as UTF-8.
    Cell ReadBytes(std::size_t column, short type);
    /// Reads a value of any length in units of one or two bytes to the end of `units`; returns false for a null.
    template <class Unit>
    bool ReadAll(std::size_t column, short type, std::vector<Unit>& units, std::size_t& count);
    [[noreturn]] void Fail();

    OdbcLink& link_;
    const OdbcHandle& handle_;
    std::shared_ptr<const OdbcColumns> columns_;
    std::string_view statement_;
    std::vector<Cell> cells_;
    std::vector<String> texts_;  // of the current row, which the cells point to
    std::vector<char16_t> units_;
    std::vector<char> bytes_;
};

}  // namespace ADODB
