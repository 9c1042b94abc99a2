#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "companion/rotation.h"
#include "picture/image.h"

namespace bench {

// One small picture with what the head looked at.
struct Tile {
  std::string label;
  std::uint64_t frame = 0;
  companion::YawPitch look;
  Image picture;
};

// Gathers small pictures of a run: those that were asked for by name, and a sample of the rest in order. For one thread.
class ContactSheet {
 public:
  // Takes the frame under a name of its own.
  void AddNamed(const std::string& name, std::uint64_t frame, const companion::YawPitch& look, const Image& picture);
  // Takes the frame as one of the sample, as long as there is room.
  void AddSample(std::uint64_t frame, const companion::YawPitch& look, const Image& picture);

  std::size_t Named() const { return named_.size(); }
  bool Empty() const;
  // All tiles in a grid, named ones first, each with its frame number, yaw and pitch in degrees.
  Image Draw() const;
  // The same as lines of text.
  std::string Describe() const;

 private:
  std::vector<const Tile*> Tiles() const;

  std::vector<Tile> named_;
  std::vector<Tile> samples_;
};

}  // namespace bench
