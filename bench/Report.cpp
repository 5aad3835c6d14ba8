#include "bench/Report.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Bench {
namespace {

double Seconds(const Report::Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Returns the value below which this part of all values lies.
double Quantile(std::vector<double> values, double part) {
    const auto at = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + at, values.end());
    return values[static_cast<std::size_t>(at)];
}

double Median(const std::vector<double>& values) { return Quantile(values, 0.5); }

/// Returns three times the standard error of the median.
double NoiseOf(const std::vector<double>& values) {
    const double spread = (Quantile(values, 0.75) - Quantile(values, 0.25)) / 1.35;
    return 3 * 1.25 * spread / std::sqrt(static_cast<double>(values.size()));
}

/// Returns the number of digits behind the point with which a time is written.
int DigitsOf(double microseconds) { return microseconds < 1 ? 4 : 2; }

}  // namespace

void Require(bool done) {
    if (done) return;
    std::fputs("the benchmark did not do its work\n", stderr);
    std::exit(1);
}

Report::Report(std::string only, bool quiet) : only_(std::move(only)), quiet_(quiet) {
    if (!quiet_) std::printf("%-62s %12s  %12s  %6s\n", "", "library", "by hand", "ratio");
}

void Report::Compare(const std::string& key, const std::string& what, const std::string& unit, std::size_t count,
                     int rounds, const Work& library, const Work& byHand, const Work& prepare) {
    if (!Wanted(key)) return;
    std::vector<double> ours, theirs, ratios;
    for (int round = 0; round <= rounds; ++round) {
        prepare();
        const double a = Seconds(library);
        prepare();
        const double b = Seconds(byHand);
        if (round == 0) continue;  // the first round warms the caches
        ours.push_back(a);
        theirs.push_back(b);
        ratios.push_back(a / b);
    }
    const double scale = 1e6 / static_cast<double>(count);
    Add({key, what, unit, Median(ours) * scale, Median(theirs) * scale, Median(ratios), NoiseOf(ratios)});
}

bool Report::Measure(const std::string& key, const std::string& what, const std::string& unit,
                     const std::vector<Work>& works) {
    if (!Wanted(key)) return false;
    std::vector<double> times;
    times.reserve(works.size());
    for (const Work& work : works) times.push_back(Seconds(work) * 1e6);
    Add({.key = key, .what = what, .unit = unit, .library_us = Median(times)});
    return true;
}

void Report::Add(const Comparison& done) {
    done_.push_back(done);
    if (quiet_) return;
    const std::string name = done.what + ", " + done.unit;
    if (done.byHand_us > 0)
        std::printf("%-62s %9.*f us  %9.*f us  %6.2f +- %.2f\n", name.c_str(), DigitsOf(done.library_us),
                    done.library_us, DigitsOf(done.byHand_us), done.byHand_us, done.ratio, done.noise);
    else
        std::printf("%-62s %9.*f us\n", name.c_str(), DigitsOf(done.library_us), done.library_us);
    std::fflush(stdout);
}

bool Report::AddJson(const std::string& text) {
    const auto rows = nlohmann::json::parse(text, nullptr, false);
    if (!rows.is_array() || rows.empty()) return false;
    for (const auto& row : rows)
        if (Wanted(row.at("key")))
            Add({row.at("key"), row.at("what"), row.at("unit"), row.at("library_us"), row.at("by_hand_us"),
                 row.at("ratio"), row.at("noise")});
    return true;
}

std::string Report::Json() const {
    auto rows = nlohmann::ordered_json::array();
    const auto rounded = [](double value) { return std::round(value * 1000) / 1000; };
    for (const Comparison& done : done_)
        rows.push_back({{"key", done.key},
                        {"what", done.what},
                        {"unit", done.unit},
                        {"library_us", rounded(done.library_us)},
                        {"by_hand_us", rounded(done.byHand_us)},
                        {"ratio", rounded(done.ratio)},
                        {"noise", rounded(done.noise)}});
    return rows.dump(2);
}

bool Report::NoSlowerThan(const std::string& baseline) const {
    std::ifstream in(baseline);
    if (!in) throw std::runtime_error(baseline + " can't be read");
    bool good = true;
    for (const auto& before : nlohmann::ordered_json::parse(in)) {
        const auto now = std::find_if(done_.begin(), done_.end(),
                                      [&](const Comparison& done) { return done.key == before.at("key"); });
        if (now == done_.end() || now->ratio <= 0) continue;
        const double ratio = before.at("ratio"), noise = before.at("noise");
        if (now->ratio - ratio <= now->noise + noise) continue;
        std::fprintf(stderr, "slower: %s: ratio %.2f, was %.2f (noise %.2f)\n", now->what.c_str(), now->ratio, ratio,
                     now->noise + noise);
        good = false;
    }
    return good;
}

}  // namespace Bench
