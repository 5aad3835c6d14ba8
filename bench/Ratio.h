#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace Bench {

/// Refuses to time work that was not done.
inline void Require(bool done) {
    if (done) return;
    std::fputs("the benchmark did not do its work\n", stderr);
    std::exit(1);
}

inline double Seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2), times.end());
    return times[times.size() / 2];
}

/// Runs the library's way and the one by hand in turns, so that both meet the same machine, and prints
/// the medians for one of `count` and their ratio. `prepare` runs before each, untimed.
inline void PrintRatio(
    const char* what, std::size_t count, int rounds, const std::function<void()>& library,
    const std::function<void()>& byHand, const std::function<void()>& prepare = [] {}) {
    std::vector<double> ours, theirs;
    for (int i = 0; i <= rounds; ++i) {
        prepare();
        const double a = Seconds(library);
        prepare();
        const double b = Seconds(byHand);
        if (i == 0) continue;  // the first round warms the caches
        ours.push_back(a);
        theirs.push_back(b);
    }
    const double scale = 1e6 / static_cast<double>(count);
    std::printf("%-52s %9.2f us  %9.2f us  %6.2f\n", what, Median(ours) * scale, Median(theirs) * scale,
                Median(ours) / Median(theirs));
    std::fflush(stdout);
}

}  // namespace Bench
