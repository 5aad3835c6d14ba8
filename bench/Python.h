#pragma once

#include "bench/Report.h"

namespace Bench {

/// Adds the comparisons of the Python client, which a program in Python measures on the database at `path`.
void BenchPython(Report& report, const std::string& path);

}  // namespace Bench
