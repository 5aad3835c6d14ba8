#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <charconv>

/// Statements, joined from typed pieces so that no text is spliced by oversight.
///
///     con->Execute(sql("Update GlobalList_T ", "Set ListID=", ListID, ",",
///                      "ListText='", FixSqlString(ListText), "' WHERE GlobalListID=", GlobalListID));
///
/// A piece is a string literal, a whole number, an enumeration, an `Escaped` text or one of the types below.
/// A plain `String`, a `bool`, a floating-point number and a pointer to a text don't compile. No piece adds blanks,
/// quotes or commas of its own. Any thread may call. The pieces must live until the statement is joined. Joining raises
/// for a `Verbatim` only; a `Decimal` and a `Stamp` raise where they are constructed.
///
/// Which piece a value needs: a text of a client is `FixSqlString(text)` between quotes; a floating-point number is
/// `Decimal`; a date is `Stamp` between quotes; a number that may be null is `NumberOrNull`. `Verbatim` and `Clause`
/// are for statements whose documented form splices a text.
namespace OXClass {

// ---- pieces --------------------------------------------------------------------------------------------

/// The decimal text of a floating-point number, with a point in every locale. Large and small numbers have an
/// exponent, as by `CStr`. The constructors raise 6 for an infinite number and for NaN.
struct Decimal {
    /// Up to 15 significant digits.
    explicit Decimal(double value) : text(Replace(CStr(value), ",", ".")) {}
    /// Up to 7 significant digits.
    explicit Decimal(float value) : text(Replace(CStr(value), ",", ".")) {}
    String text;
};

/// The text of a date, "yyyy-mm-dd hh:nn:ss", in every locale, rounded to the nearest second. The zero date is
/// "1899-12-30 00:00:00". The caller writes the enclosing quotes. The constructor raises 5 for a date outside the years
/// 100 to 9999.
struct Stamp {
    explicit Stamp(Date date) : text(FormatDate(date, "yyyy-mm-dd hh:nn:ss")) {}
    String text;
};

/// A text that becomes part of the statement unescaped, as in the documented statement.
///
/// Between single quotes, each run of quotes in the text must have an even length; outside of quotes, the
/// text must be a whole number: ASCII digits with at most one sign in front, and blanks around them. Any other text
/// raises 0x80040E14 with the source "ADODB.Connection" when the statement is joined, before anything is sent. A text
/// can therefore make a statement fail, and can never turn it into another statement. Two quotes in a row are stored as
/// one.
///
/// Whether the text is between quotes follows from the number of quotes in front of it, so an odd number of quotes
/// inside an earlier comment or a quoted name must not occur. Backslashes are not examined: it must not be used for an
/// engine that reads them as escapes.
struct Verbatim {
    /// Refers to the text. The checks are made later, when its position in the statement is known.
    explicit Verbatim(std::string_view spliced) : text(spliced) {}
    /// The text is not copied: it must live until the statement is joined.
    std::string_view text;
};

/// A condition in SQL that the caller wrote. It becomes part of the statement unchanged and unchecked: it is
/// SQL by design, so a program must not build it from what a user types. The text is not copied. A connection rejects a
/// second statement inside it (0x80040E14).
struct Clause {
    explicit Clause(std::string_view worded) : text(worded) {}
    std::string_view text;
};

/// A whole number, or the word NULL.
struct NumberOrNull {
    bool isNull;  ///< true writes NULL, whatever `value` is
    Long value;   ///< written in decimal digits
};

namespace detail {

/// The text of one statement while its pieces are added. Each `Add` appends one kind of piece; only `Add` of an
/// `Verbatim` raises.
class StatementText {
public:
    /// Reserves memory for this number of bytes.
    explicit StatementText(std::size_t bytes) { text_.reserve(bytes); }

    /// Appends a literal without its final zero. An array of characters that isn't a literal must end with a zero.
    template <std::size_t N>
    void Add(const char (&literal)[N]) {
        text_.append(literal, N - 1);
    }
    /// Appends the decimal digits, with "-" in front of a negative number. Does not depend on the locale.
    template <class T>
    requires(std::is_same_v<T, Long> || std::is_same_v<T, Integer> || std::is_enum_v<T>) void Add(T number) {
        std::array<char, 12> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), Long{number}).ptr;
        text_.append(digits.data(), end);
    }
    // The texts of these pieces are appended unchanged and not examined.
    void Add(const Escaped& escaped) { text_ += escaped.Text(); }
    void Add(const Decimal& number) { text_ += number.text; }
    void Add(const Stamp& date) { text_ += date.text; }
    void Add(const Clause& clause) { text_ += clause.text; }
    void Add(const NumberOrNull& number) { text_ += number.isNull ? "NULL" : CStr(number.value); }
    /// Appends the text if it satisfies the rules of `Verbatim`; otherwise raises 0x80040E14 and appends nothing.
    void Add(const Verbatim& spliced);

    /// Returns the joined text, and leaves this object empty.
    String Take() { return std::move(text_); }

private:
    /// Returns true if the text so far ends between single quotes. Counts only what was added since the last call, so
    /// that joining takes linear time.
    bool InsideQuotes();

    String text_;
    std::size_t counted_ = 0;  // the bytes whose quotes are counted
    bool inside_ = false;      // true if the counted bytes end between quotes
};

using ADODB::StatementPiece;
/// Return a piece as the database layer takes it, or the kind `Other` if the value can only be found in the joined
/// statement.
template <std::size_t N>
StatementPiece PieceOf(const char (&literal)[N]) {
    return {StatementPiece::Kind::Fixed, 0, {literal, N - 1}};
}
template <class T>
requires(std::is_same_v<T, Long> || std::is_same_v<T, Integer> || std::is_enum_v<T>) StatementPiece
    PieceOf(const T& number) {
    return {StatementPiece::Kind::Whole, Long{number}, {}};
}
inline StatementPiece PieceOf(const Escaped& escaped) { return {StatementPiece::Kind::Text, 0, escaped.Text()}; }
inline StatementPiece PieceOf(const Stamp& date) { return {StatementPiece::Kind::Text, 0, date.text}; }
inline StatementPiece PieceOf(const NumberOrNull& number) {
    return number.isNull ? StatementPiece() : PieceOf(number.value);
}
/// A text without quotes can't end its literal; any other one is checked when the statement is joined.
inline StatementPiece PieceOf(const Verbatim& spliced) {
    if (spliced.text.find('\'') != std::string_view::npos) return {};
    return {StatementPiece::Kind::Text, 0, spliced.text};
}
template <class T>
StatementPiece PieceOf(const T&) {
    return {};
}

/// Returns an estimate of a piece's length in bytes, to reserve memory once; not too short for literals and
/// escaped texts.
template <std::size_t N>
constexpr std::size_t LengthOf(const char (&)[N]) {
    return N;
}
inline std::size_t LengthOf(const Escaped& escaped) { return escaped.Text().size(); }
constexpr std::size_t LengthOf(const auto&) { return 24; }

}  // namespace detail

/// Returns the statement that consists of these pieces, in their order, with nothing between them. Raises 0x80040E14
/// for a `Verbatim` that would end its literal, or that isn't a number outside of quotes; the description contains
/// the statement up to that piece.
template <class... Pieces>
String sql(const Pieces&... pieces) {
    detail::StatementText statement((detail::LengthOf(pieces) + ... + 0));
    (statement.Add(pieces), ...);
    return statement.Take();
}

namespace detail {

/// Runs action statements on a connection, which must outlive it.
class ActionRunner {
public:
    explicit ActionRunner(Connection& con) : con_(con) {}
    template <class... Pieces>
    void operator()(const Pieces&... pieces) const {
        const std::array<StatementPiece, sizeof...(Pieces)> list{PieceOf(pieces)...};
        con_.ExecuteAction(list, [&] { return sql(pieces...); });
    }

private:
    Connection& con_;
};

}  // namespace detail

/// Runs an action statement that consists of the pieces in the second parentheses:
///
///     ExecuteOn(con)("DELETE FROM Clinic_T WHERE ClinicID =", ID, ";");
///
/// The effect is that of `con->Execute(sql(pieces...))`, which is slower: here the text is joined only if a handler of
/// the connection or the engine needs it. Raises 91 for a null connection before the pieces are evaluated, then as
/// `sql` and as `Connection::Execute`.
inline detail::ActionRunner ExecuteOn(const Ref<Connection>& con) { return detail::ActionRunner(*con); }

}  // namespace OXClass
