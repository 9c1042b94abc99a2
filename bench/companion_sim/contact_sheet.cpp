#include "contact_sheet.h"

#include <cmath>
#include <cstdio>
#include <numbers>

#include "picture/drawing.h"

namespace bench {

using namespace companion;

namespace {

constexpr int kTileWidth = 480;
constexpr int kLabelHeight = 24;
constexpr int kGap = 8;
constexpr std::size_t kColumns = 5;
constexpr std::size_t kMostSamples = 30;

int Degrees(float radians) { return static_cast<int>(std::lround(radians * 180 / std::numbers::pi)); }

std::string Caption(const Tile& tile) {
  char text[96];
  std::snprintf(text, sizeof(text), "%s  frame %llu  yaw %+d  pitch %+d", tile.label.c_str(),
                static_cast<unsigned long long>(tile.frame), Degrees(tile.look.yaw), Degrees(tile.look.pitch));
  return text;
}

}  // namespace

void ContactSheet::AddNamed(const std::string& name, std::uint64_t frame, const YawPitch& look, const Image& picture) {
  named_.push_back({name, frame, look, Shrink(picture, kTileWidth)});
}

void ContactSheet::AddSample(std::uint64_t frame, const YawPitch& look, const Image& picture) {
  if (samples_.size() < kMostSamples) samples_.push_back({"sample", frame, look, Shrink(picture, kTileWidth)});
}

bool ContactSheet::Empty() const { return Tiles().empty(); }

std::vector<const Tile*> ContactSheet::Tiles() const {
  std::vector<const Tile*> tiles;
  for (const Tile& tile : named_) tiles.push_back(&tile);
  for (const Tile& tile : samples_) tiles.push_back(&tile);
  return tiles;
}

Image ContactSheet::Draw() const {
  const auto tiles = Tiles();
  if (tiles.empty()) return {};
  const int cellWidth = kTileWidth + kGap;
  const int cellHeight = tiles.front()->picture.height + kLabelHeight + kGap;
  const auto rows = static_cast<int>((tiles.size() + kColumns - 1) / kColumns);
  Image sheet(static_cast<int>(kColumns) * cellWidth + kGap, rows * cellHeight + kGap);
  for (std::size_t i = 3; i < sheet.pixels.size(); i += 4) sheet.pixels[i] = 255;
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    const int x = kGap + static_cast<int>(i % kColumns) * cellWidth;
    const int y = kGap + static_cast<int>(i / kColumns) * cellHeight;
    WriteCaption(sheet, x, y + 4, Caption(*tiles[i]));
    Paste(tiles[i]->picture, sheet, x, y + kLabelHeight);
  }
  return sheet;
}

std::string ContactSheet::Describe() const {
  std::string text;
  for (const Tile* tile : Tiles()) text += Caption(*tile) + '\n';
  return text;
}

}  // namespace bench
