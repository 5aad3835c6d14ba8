#pragma once

#include "console/Database.h"

#include <map>

#include "cards/cTemplate.h"
#include "series/cSerie.h"

namespace Console {

/// A stored series. Throws `UserError` for an unknown one.
OXClass::Ref<OXClass::cSerie> LoadSeries(const Ref<Connection>& con, Platform::Long series);

/// A layout as a chart of characters, 100 wide: each slot a box at its place, with its frame number, and
/// the text that `labels` has for it, broken at its line breaks and where it is too wide. An empty slot
/// shows "-".
std::string ChartOf(const OXClass::cTemplate& layout, const std::map<Platform::Long, std::string>& labels);

/// Draws a series as it hangs, and names the images that hang nowhere, that are placed by time only and that
/// have no picture; as JSON, its images by frame. Returns false if an image can't be read, which is named.
/// Throws `UserError` for an unknown series.
bool ShowSeries(const Options& options, Platform::Long series);

/// Draws a stored series on an open database, as text. Returns false if an image can't be read.
bool PrintHungSeries(const Database& database, Platform::Long series);

}  // namespace Console
