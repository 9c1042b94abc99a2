#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace bench::speed {

// Who was measured in a block.
inline constexpr const char* kFloor = "floor";
inline constexpr const char* kDriver = "driver";
inline constexpr const char* kNothing = "nothing";  // measuring itself

// Values taken without a pause, all of one side.
struct Block {
  std::string side;
  std::vector<double> values;
};

// One measurement: blocks of floor and driver in turns, or of the driver alone against a size.
struct Series {
  std::string name;
  std::string unit;
  std::vector<Block> blocks;

  // The values of one side, or of one size, in their order.
  [[nodiscard]] std::vector<double> Of(const std::string& side) const;
  // The sides that there are, in the order of their first block.
  [[nodiscard]] std::vector<std::string> Sides() const;
  void Add(const std::string& side, std::vector<double> values) { blocks.push_back({side, std::move(values)}); }
};

[[nodiscard]] nlohmann::json ToJson(const std::vector<Series>& all);
[[nodiscard]] std::vector<Series> SeriesFromJson(const nlohmann::json& json);

// The repetitions that Google Benchmark wrote: each benchmark "series/side" becomes that series' side, in nanoseconds.
// Without what measuring itself takes.
[[nodiscard]] std::vector<Series> SeriesFromBenchmarks(const nlohmann::json& json);

// Takes the median of what measuring itself took, if that was measured, off all other values.
void TakeOffMeasuring(Series& series);

// Null when there is none of that name.
[[nodiscard]] const Series* Find(const std::vector<Series>& all, const std::string& name);

}  // namespace bench::speed
