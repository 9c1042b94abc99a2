#pragma once

#include <filesystem>
#include <vector>

#include "speed/series.h"

namespace bench::speed {

// Writes data files and a script for gnuplot, to be run in that folder, which draws a distribution of each series that
// has a floor and a line of each scale, as SVG.
void WritePlots(const std::filesystem::path& folder, const std::vector<Series>& all);

}  // namespace bench::speed
