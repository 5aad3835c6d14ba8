#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Bench {

/// Ends the program with exit code 1 unless the timed work was done.
void Require(bool done);

/// The result of one comparison. Times are medians in microseconds for one unit of the work.
struct Comparison {
    std::string key;   ///< the name by which --only, the baseline and the README find it
    std::string what;  ///< "load 10,000 images of a patient, of a million"
    std::string unit;  ///< what the times are for: "an image"
    double library_us = 0;
    double byHand_us = 0;  ///< 0 if there is nothing to compare with
    double ratio = 0;      ///< the median of the ratios of all rounds
    double noise = 0;      ///< by which the ratio may differ from that of the next run
};

/// Measures and collects comparisons.
class Report {
public:
    using Work = std::function<void()>;

    /// Measures only comparisons whose key begins with `only`, and prints each one as it is measured unless `quiet`.
    Report(std::string only, bool quiet);

    /// Compares the library with the same work by hand for one of `count` units. Both run in turns, so that they meet
    /// the same state of the machine; `prepare` runs before each of them and is not timed.
    void Compare(
        const std::string& key, const std::string& what, const std::string& unit, std::size_t count, int rounds,
        const Work& library, const Work& byHand, const Work& prepare = [] {});

    /// Measures work of the library that has no counterpart by hand. Each of `works` runs once; none runs, and the
    /// result is false, if the key does not begin with `only`.
    bool Measure(const std::string& key, const std::string& what, const std::string& unit,
                 const std::vector<Work>& works);

    /// Returns true if some comparison whose key begins with `start` may be measured.
    bool WantsSome(const std::string& start) const { return start.starts_with(only_) || only_.starts_with(start); }

    /// Adds the comparisons of another program, in the form of `Json`. Returns false if the text has none.
    bool AddJson(const std::string& text);

    /// Returns the results as a JSON array.
    std::string Json() const;

    /// Prints to standard error each comparison whose ratio is above that of the baseline, a file with the result of
    /// `Json`, by more than the noise of both. Returns false if there is one. Raises `std::runtime_error` if the file
    /// can't be read.
    bool NoSlowerThan(const std::string& baseline) const;

private:
    bool Wanted(const std::string& key) const { return key.starts_with(only_); }
    void Add(const Comparison& done);

    std::string only_;
    bool quiet_;
    std::vector<Comparison> done_;
};

}  // namespace Bench
