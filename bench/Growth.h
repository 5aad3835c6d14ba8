#pragma once

#include <string>

namespace Bench {

/// Measures operations on one patient in clinics of 1,000, 10,000, ... `largest` images, of which each patient has 500.
/// The databases are made in `folder` and kept. Returns the figures as JSON, of which growth.py makes a table.
std::string Growth(const std::string& folder, int largest);

}  // namespace Bench
