#pragma once

#include <iosfwd>
#include <vector>

#include "speed/series.h"

namespace bench::speed {

// Each goal beside its floor, as a table in Markdown.
void WriteGoals(std::ostream& out, const std::vector<Series>& all);
// Other series that have a floor, and the scales.
void WriteFurtherSeries(std::ostream& out, const std::vector<Series>& all);
void WriteScales(std::ostream& out, const std::vector<Series>& all);

// The scales among the series: cost against a number.
[[nodiscard]] std::vector<const Series*> Scales(const std::vector<Series>& all);

}  // namespace bench::speed
