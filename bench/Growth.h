#pragma once

#include <string>

namespace Bench {

/// Measures operations on one patient in clinics of 1,000, 10,000, ... `largest` images, of which each patient has 500.
/// The databases are made in `folder` and kept. Returns the figures as JSON, of which growth.py makes a table.
///
/// With `server`, the connection string of a server, each clinic is copied to it by the program, and the operations run
/// there.
std::string Growth(const std::string& folder, int largest, const std::string& server);

}  // namespace Bench
