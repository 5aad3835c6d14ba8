#include "console/WriteTransaction.h"

#include "console/Output.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

namespace Console {
namespace {

using namespace std::chrono_literals;

/// Waits for a random time of at most 10 ms after the first conflict, twice that after the second one, and so on up to
/// a second, so that two programs do not meet again.
void PauseAfter(int conflicts) {
    constexpr int first = 10, longest = 1000;
    thread_local std::minstd_rand random{std::random_device()()};
    std::uniform_int_distribution milliseconds(1, std::min(first << (conflicts - 1), longest));
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
}

/// Returns false after a conflict.
bool Succeeds(const Ref<Connection>& con, const std::function<void()>& attempt) {
    con->ClearErrors();
    try {
        attempt();
        return true;
    } catch (const Platform::Error& failure) {
        if (failure.Number != ADODB::LockConflict && !HasReported(con, ADODB::LockConflict)) throw;
    } catch (...) {
        if (!HasReported(con, ADODB::LockConflict)) throw;
    }
    return false;
}

}  // namespace

void RepeatAfterConflicts(const Ref<Connection>& con, const std::function<void()>& attempt) {
    constexpr int mostConflicts = 10;
    constexpr auto longest = 10min;  // a conflict may be the end of a long wait for a lock
    const auto start = std::chrono::steady_clock::now();
    for (int conflicts = 0; !Succeeds(con, attempt);) {
        if (++conflicts == mostConflicts || std::chrono::steady_clock::now() - start > longest)
            throw UserError(
                "other programs changed the same rows again and again; this was not stored, so run the command again");
        PauseAfter(conflicts);
    }
}

void Write(const Ref<Connection>& con, const std::function<void()>& work) {
    RepeatAfterConflicts(con, [&] {
        WriteTransaction transaction(con);
        work();
        transaction.Commit();
    });
}

bool HasReported(const Ref<Connection>& con, Platform::Long number) {
    return std::ranges::any_of(con->Errors(), [&](const Platform::Error& failure) { return failure.Number == number; });
}

}  // namespace Console
