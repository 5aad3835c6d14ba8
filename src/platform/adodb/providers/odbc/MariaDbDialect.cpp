#include "platform/adodb/providers/odbc/MariaDbDialect.h"

#include "platform/adodb/providers/Translation.h"
#include "platform/runtime/Convert.h"

#include <array>

namespace ADODB {

using namespace Platform;

namespace {

constexpr std::string_view CollationOfPatterns = " COLLATE utf8mb4_uca1400_nopad_as_ci";

/// The server does not accept an empty escape character, and a backslash is one if none is named: U+FDD0 is in no text.
constexpr std::string_view NoEscape = " ESCAPE '\xEF\xB7\x90'";

class MariaDbTranslation final : Translation {
public:
    MariaDbTranslation(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys)
        : Translation(statement, literals, keys) {}

    String Translated() {
        Copy();
        return std::move(out_);
    }

private:
    /// Which words are names of tables.
    enum class Names : std::uint8_t { None, Next, All };

    /// Writes a comment, the first character of a parameter, or a literal without its end.
    std::size_t TakeUnclear(std::size_t at) override {
        const char c = text_[at];
        std::size_t end = at + 1;
        if (c == '-') end = text_.find('\n', at);
        if (c == '/') end = std::min(text_.find("*/", at), text_.size() - 2) + 2;
        if (c == '\'' || c == '"' || c == '`' || c == '[') end = text_.size();
        out_ += text_.substr(at, std::min(end, text_.size()) - at);
        last_.clear();
        return std::min(end, text_.size());
    }

    std::size_t Take(const Lexer::Token& token, std::size_t at) override {
        const std::string_view piece = text_.substr(at, token.end - at);
        if (token.kind == Lexer::Kind::Space) {
            out_ += piece;
            return token.end;
        }
        if (token.kind == Lexer::Kind::Word) return TakeWord(piece, token.end);
        const bool dropped = piece == "*" && last_ == "DELETE";
        if (token.kind == Lexer::Kind::Open) {
            outer_.push_back(names_);
            if (names_ == Names::Next) names_ = Names::None;
        } else if (token.kind == Lexer::Kind::Close && !outer_.empty()) {
            names_ = outer_.back();
            outer_.pop_back();
        } else if (token.kind == Lexer::Kind::Quoted && names_ == Names::Next) {
            names_ = Names::None;
        }
        if (token.kind == Lexer::Kind::Text || token.kind == Lexer::Kind::Number)
            TakeLiteral(piece, at);
        else if (!dropped)
            out_ += piece;
        last_.clear();
        return token.end;
    }

    std::size_t TakeWord(std::string_view word, std::size_t end) {
        const Lexer::Keyword upper(word);
        if (upper == "DEFAULT")
            if (const std::size_t behind = EndOfNext("VALUES", end); behind != 0) {
                out_ += "() VALUES ()";
                return behind;
            }
        SetNamesBefore(upper);
        const bool qualifies = end < text_.size() && text_[end] == '.';
        out_ += qualifies || names_ != Names::None ? LCase(word) : String(word);
        SetNamesBehind(upper);
        last_ = upper.Text();
        return end;
    }

    /// Returns the end of the next word if it is this one, otherwise 0.
    std::size_t EndOfNext(std::string_view word, std::size_t at) const {
        while (at < text_.size() && Lexer::IsSpace(text_[at])) ++at;
        if (at == text_.size()) return 0;
        const std::size_t end = Lexer::TokenAt(text_, at).end;
        return Lexer::Keyword(text_.substr(at, end - at)) == word ? end : 0;
    }

    void SetNamesBefore(const Lexer::Keyword& upper) {
        constexpr std::array<std::string_view, 13> ends{"WHERE",  "GROUP",  "ORDER",  "HAVING",    "LIMIT",
                                                        "SET",    "VALUES", "SELECT", "INTERSECT", "UNION",
                                                        "EXCEPT", "WINDOW", "FOR"};
        if (upper.IsOneOf(ends)) names_ = Names::None;
    }

    void SetNamesBehind(const Lexer::Keyword& upper) {
        constexpr std::array<std::string_view, 3> beginList{"FROM", "JOIN", "UPDATE"};
        constexpr std::array<std::string_view, 5> beginName{"INTO", "TABLE", "VIEW", "ON", "REFERENCES"};
        constexpr std::array<std::string_view, 3> between{"IF", "NOT", "EXISTS"};
        const bool renames = upper == "TO" && last_ == "RENAME";
        if (upper.IsOneOf(beginList))
            names_ = Names::All;
        else if ((upper.IsOneOf(beginName) || renames) && names_ != Names::All)
            names_ = Names::Next;
        else if (names_ == Names::Next && !upper.IsOneOf(between))
            names_ = Names::None;
    }

    void TakeLiteral(std::string_view piece, std::size_t at) override {
        const bool lifted = IsLifted(at);
        if (lifted) ++next_;
        out_ += lifted ? std::string_view("?") : piece;
        if (last_ != "LIKE" || text_[at] != '\'') return;
        out_ += CollationOfPatterns;
        if (EndOfNext("ESCAPE", at + piece.size()) == 0) out_ += NoEscape;
    }

    Names names_ = Names::None;
    std::vector<Names> outer_;  // behind each open parenthesis
};

String ForMariaDb(std::string_view statement, const std::vector<Literal>& literals, const TableKeys& keys) {
    return MariaDbTranslation(statement, literals, keys).Translated();
}

/// Lets the driver count the rows that a condition matches, and not only those that change, and lets it run one
/// statement at a time.
void CompleteMariaDbLogin(ConnectionString& settings) {
    constexpr std::int64_t foundRows = 2, severalStatements = 1 << 26;
    const String given = settings.Value("Option", "0");
    settings.Set("Option", std::to_string((std::atoll(given.c_str()) | foundRows) & ~severalStatements));
    settings.Set("Charset", "utf8mb4");
}

constexpr std::array MariaDbNumbers = std::to_array<OdbcNumber>({
    {1044, NoPermission},        // to a database
    {1142, NoPermission},        // to a table
    {1143, NoPermission},        // to a column
    {1227, NoPermission},        // a privilege is missing
    {1290, NoPermission},        // the server is read-only
    {1792, NoPermission},        // the transaction is read-only
    {1836, NoPermission},        // the server is read-only
    {1045, LoginFailed},         //
    {1698, LoginFailed},         //
    {1053, ConnectionLost},      // the server is stopping
    {1927, ConnectionLost},      // killed
    {2006, ConnectionLost},      //
    {2013, ConnectionLost},      //
    {2055, ConnectionLost},      //
    {1020, LockConflict},        // the row has changed since it was read
    {1205, LockConflict},        // the wait for a lock was too long
    {1213, LockConflict},        // deadlock
    {1317, Cancelled},           //
    {1969, TimedOut},            //
    {3024, TimedOut},            //
    {1054, UnknownName},         // no such column
    {1146, NoTable},             //
    {1364, IntegrityViolation},  // a column without a default needs a value
    {1264, DataOverflow},        //
    {1406, DataOverflow},        //
    {1690, DataOverflow},        //
    {1265, CantConvertValue},    //
    {1292, CantConvertValue},    //
    {1366, CantConvertValue},    //
});

/// The server has dropped the statement; it must be prepared again; its columns are others.
constexpr std::array<Long, 3> MariaDbForgotten{1243, 1615, 2057};

}  // namespace

constinit const OdbcDialect MariaDb{
    .name = "MariaDB",
    .utf8 = true,  // its driver takes letters such as U+00D8 for half of a surrogate pair, and reads behind the text
    .completeLogin = CompleteMariaDbLogin,
    .settings =
        "SET collation_connection=utf8mb4_nopad_bin,"
        "sql_mode='ANSI_QUOTES,PIPES_AS_CONCAT,NO_BACKSLASH_ESCAPES,NO_AUTO_VALUE_ON_ZERO,STRICT_ALL_TABLES,"
        "NO_ZERO_DATE,NO_ZERO_IN_DATE,NO_ENGINE_SUBSTITUTION'",
    .begin = "START TRANSACTION",
    .inTransaction = "SELECT @@in_transaction",
    .inCluster = "SELECT @@wsrep_on",
    .noSavepoint = 1305,
    .timeLimit = "SET max_statement_time=",
    .numbers = MariaDbNumbers,
    .forgotten = MariaDbForgotten,
    .translate = ForMariaDb,
};

}  // namespace ADODB
