#pragma once

#include "platform/adodb/Enums.h"

#include <memory>
#include <memory_resource>
#include <stdexcept>
#include <vector>

/// The rows of a result in memory. Providers create them, and recordsets read them; a client of the layer uses `Field`.
namespace ADODB {

/// One column of a result, as the provider describes it. A column without a table is computed and can't be changed.
struct Column {
    String Name;                    ///< as the engine names it
    String Table;                   ///< the table that it comes from; empty for an expression
    String Origin;                  ///< its name in that table
    DataTypeEnum Type = adVariant;  ///< fixed for all rows
    Long DefinedSize = 0;           ///< characters that a text may have; 0: no limit
    bool Key = false;               ///< part of the table's primary key
    bool Counter = false;           ///< numbered by the database
};

/// The name of a column as a literal, with its hash, which is computed when the program is compiled: a class that reads
/// the same columns of every row does not compare their names. Any thread may use it.
class ColumnName {
public:
    /// The name is the literal without its final zero. A literal with other characters than ASCII does not compile.
    template <std::size_t N>
    consteval ColumnName(const char (&literal)[N]) : text_(literal, N - 1), hash_(HashOf(text_)) {
        for (const char c : text_)
            if (static_cast<unsigned char>(c) >= 0x80) throw std::invalid_argument("not ASCII");
    }

    /// Returns the name; valid as long as the literal.
    constexpr std::string_view Text() const noexcept { return text_; }
    constexpr std::uint64_t Hash() const noexcept { return hash_; }

    /// Returns a hash of 64 bits (FNV-1a), which is the same for names that differ only in the case of ASCII letters.
    static constexpr std::uint64_t HashOf(std::string_view name) noexcept {
        std::uint64_t hash = 0xCBF29CE484222325U;
        for (const char c : name) {
            const bool capital = c >= 'A' && c <= 'Z';
            hash = (hash ^ static_cast<unsigned char>(capital ? c + ('a' - 'A') : c)) * 0x100000001B3U;
        }
        return hash;
    }

private:
    std::string_view text_;
    std::uint64_t hash_;
};

/// The columns of a result, shared by all runs of one compiled statement. They do not change after they are created, so
/// any thread may read them.
class Columns {
public:
    static constexpr Long Missing = -1;  ///< the result of `Find` for an unknown name

    /// Stores the columns in the order of the statement; their positions are the ordinals, from 0.
    explicit Columns(std::vector<Column> columns);

    /// Returns the number of columns.
    Long Count() const noexcept { return static_cast<Long>(columns_.size()); }

    /// Returns the column with an ordinal from 0 to `Count() - 1`. Another ordinal is undefined behaviour: the caller
    /// checks it. The reference is valid as long as this object.
    const Column& At(Long ordinal) const { return columns_[static_cast<std::size_t>(ordinal)]; }

    /// Returns the ordinal of the first column with this name, without regard to case; `Missing` if there is none.
    /// Takes constant time unless a name has other characters than ASCII. Raises nothing except `std::bad_alloc`.
    Long Find(std::string_view name) const;

    /// Returns the same for a literal, by its hash alone: names with the same hash are not distinguished.
    Long Find(const ColumnName& name) const {
        const Slot& slot = SlotOf(name.Hash());
        return slot.ordinal != Missing || ascii_ ? slot.ordinal : Search(name.Text());
    }

private:
    struct Slot {
        std::uint64_t hash = 0;
        Long ordinal = Missing;
    };

    /// Returns the slot with this hash, or the empty slot where it would be.
    const Slot& SlotOf(std::uint64_t hash) const {
        std::size_t at = hash & mask_;
        while (slots_[at].ordinal != Missing && slots_[at].hash != hash) at = (at + 1) & mask_;
        return slots_[at];
    }
    /// Compares the name with each column.
    Long Search(std::string_view name) const;

    std::vector<Column> columns_;
    std::vector<Slot> slots_;  ///< a hash table: a name is in the slot of its hash or in one of the next
    std::size_t mask_ = 0;     ///< the number of slots, a power of two, less 1
    bool ascii_ = true;        ///< no column's name has other characters
};

/// One value of a row as the engine stores it, in 16 bytes. A text is not a copy: it points into the row, or into the
/// memory of the engine (`RowReader::At`). A cell owns
/// nothing and may be copied; it has no type of the column, which `ValueOf` adds.
struct Cell {
    enum class Kind : std::uint8_t { Null, Whole, Real, Text };
    Kind kind = Kind::Null;    ///< which member of the union is valid; none for `Null`
    std::uint32_t length = 0;  ///< bytes of a text
    union {
        // A new cell is null. Read the member that `kind` names.
        std::int64_t whole = 0;
        double real;
        const char* text;
    };

    /// Return a cell that contains the number.
    static Cell Of(std::int64_t value) {
        Cell cell;
        cell.kind = Kind::Whole;
        cell.whole = value;
        return cell;
    }
    static Cell Of(double value) {
        Cell cell;
        cell.kind = Kind::Real;
        cell.real = value;
        return cell;
    }
    /// Returns a cell that points to the text, which must live as long as the cell is used. The text may
    /// contain zero bytes; it must be shorter than 4 GiB.
    static Cell Of(std::string_view value) {
        Cell cell;
        cell.kind = Kind::Text;
        cell.length = static_cast<std::uint32_t>(value.size());
        cell.text = value.data();
        return cell;
    }
    /// Returns the text of a cell of kind `Text`; undefined for another kind. Valid as long as the row's `RowStore`,
    /// or until `RowReader::Next`.
    /// A text of 0 bytes is the empty text, not a null.
    std::string_view Text() const { return {text, length}; }
};

/// The values of one row, which are in the memory of the `RowStore` that created it. A row is a pointer: it may be
/// copied, and it must not be used after its store was deleted or assigned.
class Row {
public:
    /// Returns the value with this ordinal. The caller checks the ordinal; a row does not know its number of columns.
    const Cell& At(Long ordinal) const { return cells_[ordinal]; }

private:
    friend class RowStore;
    explicit Row(const Cell* cells) : cells_(cells) {}

    const Cell* cells_;  // the cells in the order of the columns, with the texts behind them
};

/// The memory of many rows, including their texts, in a few large blocks. A row is valid as long as its store, also
/// after the store was moved: it then belongs to the new one. Memory is released with the store only; a row can't be
/// removed, and a changed row is a new one. A store is used by one thread at a time.
class RowStore {
public:
    /// Copies the cells and the texts that they point to, and returns the row. `cells` has one cell for each column;
    /// the store does not check their number. Earlier rows stay valid. Raises `std::bad_alloc`; the store is then
    /// unchanged.
    Row Add(std::span<const Cell> cells);

private:
    std::unique_ptr<std::pmr::monotonic_buffer_resource> memory_;  ///< null until the first row
};

/// Reads the rows of a result from the engine, from the first to the last, while the statement is running. A provider
/// implements it. The destructor ends the statement, also before its last row, and releases its locks. A reader is used
/// by the thread of its session and deleted before the session.
class RowReader {
public:
    RowReader() = default;
    RowReader(const RowReader&) = delete;
    virtual ~RowReader() = default;

    /// Moves to the next row, by the first call to the first row. Returns false after the last row; it must not be
    /// called again then. Raises what the engine raises; neither function may be called again after that.
    virtual bool Next() = 0;

    /// Returns a value of the current row, as the engine stores it. A text is valid until `Next` is called. The caller
    /// checks the ordinal, and that there is a current row.
    virtual Cell At(Long ordinal) const = 0;
};

/// Rows in memory, in the engine's order.
struct Rows {
    std::vector<Row> all;
    RowStore store;  ///< the memory of the rows

    /// Appends the current row of a reader, which has this number of columns. Raises `std::bad_alloc`; the rows are
    /// then unchanged.
    void Append(const RowReader& reader, Long columns);
};

/// Returns the value of a cell in the type of its column: a whole number as a `Long` (as `int64` if it is larger), the
/// text of a date column as a `Date`, a number in a text column as its decimal text, a whole number in a boolean column
/// as true unless it is 0. A stored value that can't be converted to the type is returned as it is stored, for example
/// the text of a number column. Raises 6 for an infinite number in a text column. Any thread may call.
Variant ValueOf(const Cell& cell, const Column& column);

/// Returns a value converted to the type of a column, in the form in which it is stored: whole number, double, text, or
/// `Null`; a date is the text "yyyy-mm-dd hh:nn:ss", true is -1. In a column without a fixed type (`adVariant`,
/// `adBigInt`, `adLongVarBinary`) a value keeps its own type, except that booleans, dates and floats are converted.
///
/// Raises 3421 for a value of another type, 0x80040E21 for a text that is longer than the column or a number outside
/// the range. The description names the column. Any thread may call.
Variant StoredForm(const Variant& value, const Column& column);

/// Returns the cell of a value in its stored form; `stored` must outlive the cell, because the text of the cell points
/// into it. A value of a type that `StoredForm` does not return becomes a null. Raises nothing; any thread may call.
Cell CellOf(const Variant& stored);

}  // namespace ADODB
