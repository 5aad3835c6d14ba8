#pragma once

#include "console/Database.h"

#include <map>

#include "cards/cTemplate.h"
#include "series/cSerie.h"

namespace Console {

/// Loads a series. Throws `UserError` for an unknown one.
OXClass::Ref<OXClass::cSerie> LoadSeries(const Ref<Connection>& con, Platform::Long series);

/// Returns a layout as a chart of characters, 100 wide: each slot a box at its place, with its frame number, and
/// the text that `labels` has for it, broken at its line breaks and where it is too wide. An empty slot
/// shows "-".
std::string ChartOf(const OXClass::cTemplate& layout, const std::map<Platform::Long, std::string>& labels);

/// Draws a series as it hangs, and lists the images without a frame, those that are placed by time only and those
/// without a picture; as JSON, prints the images by frame. Names the images that can't be read, and returns false if
/// there is one. Throws `UserError` for an unknown series.
bool ShowSeries(const Options& options, Platform::Long series);

/// Draws a stored series on an open database, as text. Returns false if an image can't be read.
bool PrintHungSeries(const Database& database, Platform::Long series);

}  // namespace Console
