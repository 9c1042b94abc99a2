#include "growth.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "companion/statistics.h"

namespace bench::speed {
namespace {

constexpr double kFlat = 1.5;
constexpr double kGoodFit = 0.97;

double Mean(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

}  // namespace

std::string Growth::Kind() const {
  const auto [least, most] = std::ranges::minmax(costs);
  if (most <= kFlat * least) return "flat";
  return fit >= kGoodFit ? "linear" : "neither";
}

Growth GrowthOf(const Series& series) {
  Growth growth;
  std::vector<std::string> sides = series.Sides();
  std::ranges::sort(sides, {}, [](const std::string& side) { return std::stod(side); });
  for (const std::string& side : sides) {
    growth.sizes.push_back(std::stod(side));
    growth.costs.push_back(Percentile(series.Of(side), 0.5));
  }
  const double meanSize = Mean(growth.sizes), meanCost = Mean(growth.costs);
  double sizes = 0, both = 0, costs = 0;
  for (std::size_t i = 0; i < growth.sizes.size(); ++i) {
    const double size = growth.sizes[i] - meanSize, cost = growth.costs[i] - meanCost;
    sizes += size * size;
    both += size * cost;
    costs += cost * cost;
  }
  growth.perUnit = sizes > 0 ? both / sizes : 0;
  growth.fit = sizes > 0 && costs > 0 ? both * both / (sizes * costs) : 0;
  return growth;
}

}  // namespace bench::speed
