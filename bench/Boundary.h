#pragma once

#include "bench/Report.h"

namespace Bench {

/// What the component boundary costs: a text property read by slot and by name, and an object made and dropped,
/// each beside the same in C++.
void BenchBoundary(Report& report);

}  // namespace Bench
