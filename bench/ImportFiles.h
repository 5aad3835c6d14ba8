#pragma once

#include "bench/Report.h"

namespace Bench {

/// Compares an import of 2,000 films by the program with a plain copy of the same files, each flushed to the disk. The
/// files and the clinics are made in `folder`, and removed afterwards.
void BenchImport(Report& report, const std::string& folder);

}  // namespace Bench
