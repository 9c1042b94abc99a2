#include "speed/series.h"

#include <algorithm>

#include "companion/statistics.h"

namespace bench::speed {
namespace {

Series& FindOrAdd(std::vector<Series>& all, const std::string& name, const std::string& unit) {
  const auto found = std::ranges::find(all, name, &Series::name);
  if (found != all.end()) return *found;
  all.push_back({name, unit, {}});
  return all.back();
}

}  // namespace

std::vector<double> Series::Of(const std::string& side) const {
  std::vector<double> values;
  for (const Block& block : blocks) {
    if (block.side == side) values.insert(values.end(), block.values.begin(), block.values.end());
  }
  return values;
}

std::vector<std::string> Series::Sides() const {
  std::vector<std::string> sides;
  for (const Block& block : blocks) {
    if (std::ranges::find(sides, block.side) == sides.end()) sides.push_back(block.side);
  }
  return sides;
}

nlohmann::json ToJson(const std::vector<Series>& all) {
  auto json = nlohmann::json::array();
  for (const Series& series : all) {
    auto blocks = nlohmann::json::array();
    for (const Block& block : series.blocks) blocks.push_back({{"side", block.side}, {"values", block.values}});
    json.push_back({{"name", series.name}, {"unit", series.unit}, {"blocks", std::move(blocks)}});
  }
  return json;
}

std::vector<Series> SeriesFromJson(const nlohmann::json& json) {
  std::vector<Series> all;
  for (const auto& series : json) {
    Series& added = all.emplace_back(series.at("name"), series.at("unit"), std::vector<Block>{});
    for (const auto& block : series.at("blocks")) added.Add(block.at("side"), block.at("values"));
  }
  return all;
}

std::vector<Series> SeriesFromBenchmarks(const nlohmann::json& json) {
  std::vector<Series> all;
  for (const auto& run : json.at("benchmarks")) {
    if (run.at("run_type") != "iteration") continue;
    const std::string name = run.at("run_name");
    const std::size_t slash = name.find('/');
    if (slash == std::string::npos) continue;
    FindOrAdd(all, name.substr(0, slash), "ns").Add(name.substr(slash + 1), {run.at("cpu_time").get<double>()});
  }
  std::ranges::for_each(all, TakeOffMeasuring);
  return all;
}

void TakeOffMeasuring(Series& series) {
  const std::vector<double> nothing = series.Of(kNothing);
  if (nothing.empty()) return;
  std::erase_if(series.blocks, [](const Block& block) { return block.side == kNothing; });
  for (Block& block : series.blocks) {
    for (double& value : block.values) value -= Percentile(nothing, 0.5);
  }
}

const Series* Find(const std::vector<Series>& all, const std::string& name) {
  const auto found = std::ranges::find(all, name, &Series::name);
  return found != all.end() ? &*found : nullptr;
}

}  // namespace bench::speed
