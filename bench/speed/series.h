#pragma once

#include <string>
#include <utility>
#include <vector>

namespace bench::speed {

// Who was measured in a block: the driver, or the same system calls without a driver around them.
inline constexpr const char* kBaseline = "baseline";
inline constexpr const char* kDriver = "driver";

// Values taken without a pause, all of one side.
struct Block {
  std::string side;
  std::vector<double> values;
};

// One measurement: blocks of baseline and driver in turns, or of the driver alone against a size or a format.
struct Series {
  std::string name;
  std::string unit;
  std::vector<Block> blocks;

  void Add(const std::string& side, std::vector<double> values) { blocks.push_back({side, std::move(values)}); }
};

}  // namespace bench::speed
