#include "kit/FaultyProvider.h"

namespace TestKit {
namespace {

using namespace ADODB;

int failAt = 0;
int failAtRow = 0;
int calls = 0;
Error failsWith;
std::function<void()> between;

void Count() {
    ++calls;
    if (between) between();
    if (calls == failAt) throw Error(failsWith);
}

/// Fails before a row.
class FaultyRows final : public RowReader {
public:
    FaultyRows(std::unique_ptr<RowReader> real, int row) : real_(std::move(real)), left_(row) {}
    bool Next() override {
        if (--left_ == 0) throw Error(Injected());
        return real_->Next();
    }
    Cell At(Long ordinal) const override { return real_->At(ordinal); }

private:
    std::unique_ptr<RowReader> real_;
    int left_;
};

class FaultySession final : public Session {
public:
    explicit FaultySession(std::unique_ptr<Session> real) : real_(std::move(real)) {}

    Outcome Run(std::string_view text) override {
        Count();
        Outcome outcome = real_->Run(text);
        if (outcome.reader && failAtRow > 0)
            outcome.reader = std::make_unique<FaultyRows>(std::move(outcome.reader), failAtRow);
        return outcome;
    }
    void RunAction(std::span<const StatementPiece> pieces, const std::function<String()>& joined) override {
        Count();
        real_->RunAction(pieces, joined);
    }
    std::int64_t Change(std::string_view text, std::span<const Variant> values) override {
        Count();
        return real_->Change(text, values);
    }
    std::int64_t LastCounter() override { return real_->LastCounter(); }
    String Quoted(std::string_view name) const override { return real_->Quoted(name); }
    void Begin(Long level) override {
        Count();
        real_->Begin(level);
    }
    void Commit(Long level) override {
        Count();
        real_->Commit(level);
    }
    void RollBack(Long level) override { real_->RollBack(level); }
    bool InTransaction() const override { return real_->InTransaction(); }
    Long MostLevels() const override { return real_->MostLevels(); }

private:
    std::unique_ptr<Session> real_;
};

std::unique_ptr<Session> OpenFaulty(const ConnectionString& settings) {
    return std::make_unique<FaultySession>(FindProvider("SQLite")(settings));
}

}  // namespace

void InstallFaultyProvider() {
    static const bool installed = [] {
        RegisterProvider("Faulty", OpenFaulty);
        return true;
    }();
    static_cast<void>(installed);
}

Error Injected() {
    Error failure(Failed, "SQLite", "injected");
    failure.Provider = "SQLite";
    return failure;
}

Error DiskFull() {
    Error failure(Failed, "SQLite", "database or disk is full");
    failure.Provider = "SQLite";
    failure.NativeError = 13;
    return failure;
}

void FailAtCall(int number, const Error& failure) {
    failAt = number;
    failAtRow = 0;
    failsWith = failure;
    calls = 0;
}

void FailAtRow(int row) { failAtRow = row; }

void BeforeEachCall(std::function<void()> action) { between = std::move(action); }

int CallsSoFar() { return calls; }

}  // namespace TestKit
