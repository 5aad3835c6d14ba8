#include "platform/adodb/providers/odbc/OdbcDialect.h"

#include "platform/adodb/providers/Lexer.h"
#include "platform/adodb/providers/odbc/MariaDbDialect.h"
#include "platform/runtime/Convert.h"

namespace ADODB {

using namespace Platform;

namespace {

std::string_view WithoutEnd(std::string_view text) { return text.substr(0, text.find_last_not_of(" ;\t\r\n\v\f") + 1); }

/// Returns a statement with "?" for each literal.
String WithMarks(std::string_view text, const std::vector<Literal>& literals) {
    String marked;
    std::size_t at = 0;
    for (const Literal& literal : literals) {
        const std::size_t quote = literal.isText ? 1 : 0;
        const auto start = static_cast<std::size_t>(literal.body.data() - text.data()) - quote;
        marked.append(text.substr(at, start - at)) += '?';
        at = start + literal.body.size() + 2 * quote;
    }
    return marked.append(text.substr(at));
}

/// Reads a statement up to its last literal.
class TargetFinder {
public:
    TargetFinder(std::string_view statement, const std::vector<Literal>& literals)
        : text_(statement), literals_(literals) {}

    OdbcTargets Targets() {
        while (at_ < text_.size() && targets_.columns.size() < literals_.size()) {
            const Lexer::Token token = Lexer::TokenAt(text_, at_);
            if (token.kind != Lexer::Kind::Space) Take(token);
            at_ = token.end;
        }
        targets_.columns.resize(literals_.size());
        return std::move(targets_);
    }

private:
    enum class Part : std::uint8_t { Other, List, Values };

    void Take(const Lexer::Token& token) {
        const std::string_view piece = text_.substr(at_, token.end - at_);
        switch (token.kind) {
            case Lexer::Kind::Word:
            case Lexer::Kind::Quoted: TakeName(piece, token.kind == Lexer::Kind::Word); break;
            case Lexer::Kind::Open:
                if (++depth_ == 1 && part_ == Part::List) listed_.clear();
                item_ = depth_ == 1 ? 0 : item_;
                break;
            case Lexer::Kind::Close: --depth_; break;
            case Lexer::Kind::Text:
            case Lexer::Kind::Number: TakeLiteral(token.end); break;
            default:
                if (piece == "," && depth_ == 1) ++item_;
        }
        beforeLast_ = last_;
        last_ = piece;
    }

    void TakeName(std::string_view piece, bool isWord) {
        const Lexer::Keyword before(last_);
        const bool named = before == "FROM" || before == "INTO" || before == "UPDATE";
        if (named && targets_.table.empty()) {
            targets_.table = piece;
            if (before == "INTO") part_ = Part::List;
        } else if (part_ == Part::List && depth_ == 1) {
            listed_.push_back(Name(piece));
        } else if (isWord && part_ == Part::List && depth_ == 0) {
            part_ = Lexer::Keyword(piece) == "VALUES" ? Part::Values : Part::Other;
        }
    }

    void TakeLiteral(std::size_t end) {
        const Literal& literal = literals_[targets_.columns.size()];
        if (literal.body.data() != text_.data() + at_ + (literal.isText ? 1 : 0)) return;
        targets_.columns.push_back(part_ == Part::Values ? Listed(end) : last_ == "=" ? Name(beforeLast_) : String());
    }

    /// Returns the column of a literal that is a whole value of a row.
    String Listed(std::size_t end) const {
        while (end < text_.size() && Lexer::IsSpace(text_[end])) ++end;
        const bool whole = depth_ == 1 && (last_ == "(" || last_ == ",") && end < text_.size() &&
                           (text_[end] == ',' || text_[end] == ')');
        return whole && item_ < listed_.size() ? listed_[item_] : String();
    }

    static String Name(std::string_view piece) {
        const bool quoted = piece.size() > 1 && (piece.front() == '"' || piece.front() == '`');
        return String(quoted ? piece.substr(1, piece.size() - 2) : piece);
    }

    std::string_view text_;
    const std::vector<Literal>& literals_;
    OdbcTargets targets_;
    std::size_t at_ = 0;
    Part part_ = Part::Other;
    int depth_ = 0;
    std::size_t item_ = 0;  // the position in the list or the row
    std::vector<String> listed_;
    std::string_view last_, beforeLast_;
};

}  // namespace

const OdbcDialect& DialectNamed(std::string_view name) {
    static const OdbcDialect standard;
    return Contains(LCase(name), LCase(MariaDb.name)) ? MariaDb : standard;
}

String ForOdbc(const OdbcDialect& dialect, std::string_view statement, const std::vector<Literal>& literals,
               const TableKeys& keys) {
    const std::string_view text = WithoutEnd(statement);
    return dialect.translate ? dialect.translate(text, literals, keys) : WithMarks(text, literals);
}

std::pair<const char*, const char*> FlawIn(std::string_view text) {
    text = WithoutEnd(text);
    for (std::size_t at = 0; at < text.size(); at = Lexer::TokenAt(text, at).end) {
        if (text[at] == ';') return {"42000", "The text contains a second statement."};
        if (text[at] == '?') return {"07002", "No value is given for a parameter."};
    }
    return {};
}

OdbcTargets TargetsOf(std::string_view statement, const std::vector<Literal>& literals) {
    return TargetFinder(statement, literals).Targets();
}

}  // namespace ADODB
