#pragma once

#include <string>

namespace Bench {

/// Measures operations on one patient in clinics of 1,000, 10,000, ... `largest` images, of which each patient has 500.
/// The databases are made in `folder` and kept. Returns a table in Markdown, or the figures as JSON.
std::string Growth(const std::string& folder, int largest, bool json);

}  // namespace Bench
