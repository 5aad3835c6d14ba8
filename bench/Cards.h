#pragma once

#include "bench/ByHand.h"
#include "bench/Report.h"
#include "platform/adodb/Recordset.h"

namespace Bench {

/// Card lists and their entries, beside the same statements by hand on the database at `path`.
void BenchCards(Report& report, const Platform::Ref<ADODB::Connection>& con, const std::string& path, ByHand& images);

}  // namespace Bench
