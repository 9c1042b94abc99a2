#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "companion/image.h"
#include "companion/rotation.h"

namespace bench {

// One small picture with what the head looked at.
struct Tile {
  std::string label;
  std::uint64_t frame = 0;
  YawPitch look;
  Image picture;
};

// Gathers small pictures of a run: the ones that look straight ahead and farthest left, right, up and down,
// those that were asked for by name, and a sample of the rest in order. For one thread.
class ContactSheet {
 public:
  // Whether a frame with that look would be a better example of a direction than what there is.
  bool WantsDirection(const YawPitch& look) const;
  // Takes the frame for every direction that it shows best.
  void AddDirection(std::uint64_t frame, const YawPitch& look, const Image& picture);
  // Takes the frame under a name of its own.
  void AddNamed(const std::string& name, std::uint64_t frame, const YawPitch& look, const Image& picture);
  // Takes the frame as one of the sample, as long as there is room.
  void AddSample(std::uint64_t frame, const YawPitch& look, const Image& picture);

  std::size_t Named() const { return named_.size(); }
  bool Empty() const;
  // All tiles in a grid, directions first, each with its frame number, yaw and pitch in degrees.
  Image Draw() const;
  // The same as lines of text.
  std::string Describe() const;

 private:
  std::vector<const Tile*> Tiles() const;

  std::optional<Tile> directions_[5];
  std::vector<Tile> named_;
  std::vector<Tile> samples_;
};

}  // namespace bench
