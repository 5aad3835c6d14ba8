#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <charconv>

/// Statements, joined from pieces of which none can be spliced by oversight.
///
///     con->Execute(sql("Update GlobalList_T ", "Set ListID=", ListID, ",",
///                      "ListText='", FixSqlString(ListText), "' WHERE GlobalListID=", GlobalListID));
///
/// A piece is a string literal, a whole number, an `Escaped` text or one of the types below; a plain
/// text does not compile.
namespace OXClass {

/// A float's decimal text (15 or 7 significant digits) with a point in every locale.
struct Decimal {
    explicit Decimal(double value) : text(Replace(CStr(value), ",", ".")) {}
    explicit Decimal(float value) : text(Replace(CStr(value), ",", ".")) {}
    String text;
};

/// A date's text, "yyyy-mm-dd hh:nn:ss".
struct Stamp {
    explicit Stamp(Date date) : text(FormatDate(date, "yyyy-mm-dd hh:nn:ss")) {}
    String text;
};

/// A text that the statement takes as it stands, unescaped. Between single quotes, a quote in it breaks
/// the statement; outside of them only a whole number may stand. Any other text raises 0x80040E14 when
/// the statement is joined: so a text can make a statement fail, and never make it another statement.
struct AsItStands {
    explicit AsItStands(std::string_view spliced) : text(spliced) {}
    std::string_view text;  ///< not owned: the statement is joined in the same expression
};

/// A condition in the database's own language that the caller worded. It stands as written.
struct Clause {
    explicit Clause(std::string_view worded) : text(worded) {}
    std::string_view text;
};

/// A whole number, or the word NULL.
struct NumberOrNull {
    bool isNull;
    Long value;
};

namespace detail {

class StatementText {
public:
    explicit StatementText(std::size_t room) { text_.reserve(room); }

    template <std::size_t N>
    void Add(const char (&literal)[N]) {
        text_.append(literal, N - 1);
    }
    template <class T>
    requires(std::is_same_v<T, Long> || std::is_same_v<T, Integer> || std::is_enum_v<T>) void Add(T number) {
        std::array<char, 12> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), Long{number}).ptr;
        text_.append(digits.data(), end);
    }
    void Add(const Escaped& escaped) { text_ += escaped.Text(); }
    void Add(const Decimal& number) { text_ += number.text; }
    void Add(const Stamp& date) { text_ += date.text; }
    void Add(const Clause& clause) { text_ += clause.text; }
    void Add(const NumberOrNull& number) { text_ += number.isNull ? "NULL" : CStr(number.value); }
    void Add(const AsItStands& spliced);

    String Take() { return std::move(text_); }

private:
    bool InsideQuotes();

    String text_;
    std::size_t counted_ = 0;
    bool inside_ = false;
};

template <std::size_t N>
constexpr std::size_t LengthOf(const char (&)[N]) {
    return N;
}
inline std::size_t LengthOf(const Escaped& escaped) { return escaped.Text().size(); }
constexpr std::size_t LengthOf(const auto&) { return 24; }

}  // namespace detail

/// The statement of these pieces. Raises 0x80040E14 for an `AsItStands` that would end its literal.
template <class... Pieces>
String sql(const Pieces&... pieces) {
    detail::StatementText statement((detail::LengthOf(pieces) + ... + 0));
    (statement.Add(pieces), ...);
    return statement.Take();
}

}  // namespace OXClass
