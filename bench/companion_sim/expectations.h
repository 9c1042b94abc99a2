#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "companion/pose_history.h"
#include "nlohmann/json.hpp"
#include "picture/comparison.h"

namespace bench {

// One thing that must be true of one frame. Frames are counted from 0 within each connection, connections from 1.
struct Expectation {
  std::string name;
  std::uint32_t connection = 1;
  std::uint64_t frame = 0;

  bool hasRegion = false;
  Box region;
  Rgba rgba{};
  int tolerance = 0;  // largest difference of a channel

  std::optional<int> texture;  // 0 or 1
  std::optional<companion::PoseSlot> slot;
  float slotTolerance = 1e-3F;
};

// What a frame is held against.
struct SeenFrame {
  std::uint32_t connection = 1;
  std::uint64_t frame = 0;
  int texture = 0;
  companion::PoseSlot slot = {};
};

// The expectations of a run and how they fared. For one thread.
class Expectations {
 public:
  // Reads a JSON list; throws std::runtime_error or a JSON exception that says what is wrong.
  static Expectations Load(const std::filesystem::path& path);
  static Expectations Parse(const std::string& json);

  // Whether the frame's pixels are needed.
  bool WantsPixels(std::uint32_t connection, std::uint64_t frame) const;
  // Checks everything that is said of the frame. `image` may be null when no pixels were wanted or could be read.
  void Check(const SeenFrame& seen, const Image* image);
  // Counts what no frame was seen for as failed.
  void Finish();

  std::size_t Count() const { return list_.size(); }
  std::size_t Passed() const { return passed_; }
  const std::vector<std::string>& Failures() const { return failures_; }
  // All frames that are spoken of have come.
  bool Complete() const;

 private:
  std::string Difference(const Expectation& expectation, const SeenFrame& seen, const Image* image) const;

  std::vector<Expectation> list_;
  std::vector<bool> checked_;
  std::size_t passed_ = 0;
  std::vector<std::string> failures_;
};

// The keys "x", "y", "width", "height", "rgba" and "tolerance" of a JSON object, when it has "rgba".
void ParseRegion(const nlohmann::json& item, Expectation& expectation);

// The first pixel of the region that differs by more than allowed, in words; empty when there is none.
std::string RegionDifference(const Expectation& expectation, const Image& image);

}  // namespace bench
