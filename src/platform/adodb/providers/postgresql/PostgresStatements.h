#pragma once

#include "platform/adodb/providers/StatementCache.h"
#include "platform/adodb/providers/postgresql/PostgresCatalog.h"

namespace ADODB {

/// The name of a statement that the server has prepared. The destructor adds it to a list of names that the session
/// tells the server to drop.
class PreparedName {
public:
    using Dropped = std::shared_ptr<std::vector<String>>;

    PreparedName() = default;
    PreparedName(String name, Dropped dropped) : name_(std::move(name)), dropped_(std::move(dropped)) {}
    PreparedName(PreparedName&&) = default;
    PreparedName& operator=(PreparedName&& other) noexcept {
        std::swap(name_, other.name_);
        std::swap(dropped_, other.dropped_);
        return *this;
    }
    ~PreparedName() {
        if (dropped_) dropped_->push_back(std::move(name_));
    }

    const String& Text() const noexcept { return name_; }

private:
    String name_;
    Dropped dropped_;
};

/// A statement that the server has prepared.
struct PostgresStatement {
    Shape shape;
    std::optional<PieceBindings> bindings;  ///< if it ran as pieces
    String translated;                      ///< its text with "$1", "$2" and so on
    bool readsOnly = false;                 ///< it changes and locks nothing
    PreparedName name;
    std::vector<bool> negative;     ///< for each parameter: its value has a minus sign in front of the literal
    std::vector<bool> nullIfBlank;  ///< for each parameter: an empty text is a null
    std::shared_ptr<const PostgresColumns> columns;  ///< null if it does not return rows
};

/// The texts of the parameters of one run of a statement, as the client library expects them.
class PostgresValues {
public:
    /// Sets the values from literals. Raises 0x80040E07 for a text with a zero character, which the server can't store.
    void Set(const PostgresStatement& statement, const std::vector<Literal>& literals);
    /// Sets the values of a statement of the database layer.
    void Set(std::span<const Variant> values);

    /// Returns a text for each parameter, null for a null; valid until the next call of `Set`.
    const std::vector<const char*>& Texts() const noexcept { return texts_; }

private:
    static constexpr std::size_t NullOffset = std::string::npos;
    void Add(std::string_view text);
    void Point();

    std::string bytes_;  // the texts, each with a final zero
    std::vector<std::size_t> offsets_;
    std::vector<const char*> texts_;
};

}  // namespace ADODB
