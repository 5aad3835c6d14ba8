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
    std::int64_t Insert(std::string_view text, std::span<const Variant> values, std::string_view counter) override {
        Count();
        return real_->Insert(text, values, counter);
    }
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
    bool IsBroken() const override { return real_->IsBroken(); }
    void SetCommandTimeout(Long seconds) override { real_->SetCommandTimeout(seconds); }

private:
    std::unique_ptr<Session> real_;
};

std::unique_ptr<Session> OpenFaulty(const ConnectionString& settings, Long timeout) {
    return std::make_unique<FaultySession>(FindProvider(ProviderName())(settings, timeout));
}

}  // namespace

void InstallFaultyProvider() {
    static const bool installed = [] {
        RegisterProvider("Faulty", OpenFaulty);
        return true;
    }();
    static_cast<void>(installed);
}

String FaultyVersionOf(const String& settings) {
    return Replace(settings, String("Provider=") + ProviderName(), "Provider=Faulty");
}

Ref<Connection> FaultyConnectionTo(const TestDatabase& database) {
    InstallFaultyProvider();
    FailAtCall(0);
    return OpenedAsTested(FaultyVersionOf(database.Settings()));
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
