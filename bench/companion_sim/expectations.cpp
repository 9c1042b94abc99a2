#include "expectations.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace bench {
namespace {

using nlohmann::json;

Expectation ParseOne(const json& item) {
  static const char* const known[] = {"name",   "connection", "frame",     "x",       "y",    "width",
                                      "height", "rgba",       "tolerance", "texture", "slot", "slotTolerance"};
  for (const auto& [key, value] : item.items()) {
    if (std::find(std::begin(known), std::end(known), key) == std::end(known)) {
      throw std::runtime_error("expectation with an unknown key \"" + key + '"');
    }
  }
  Expectation expectation;
  expectation.name = item.value("name", "");
  expectation.connection = item.value("connection", 1U);
  expectation.frame = item.at("frame").get<std::uint64_t>();
  ParseRegion(item, expectation);
  if (item.contains("texture")) expectation.texture = item.at("texture").get<int>();
  if (item.contains("slot")) expectation.slot = item.at("slot").get<PoseSlot>();
  expectation.slotTolerance = item.value("slotTolerance", 1e-3F);
  if (!expectation.hasRegion && !expectation.texture && !expectation.slot) {
    throw std::runtime_error("expectation of frame " + std::to_string(expectation.frame) + " that expects nothing");
  }
  return expectation;
}

std::string Words(const Rgba& colour) {
  std::ostringstream text;
  text << '(' << int{colour[0]} << ", " << int{colour[1]} << ", " << int{colour[2]} << ", " << int{colour[3]} << ')';
  return text.str();
}

bool Near(const Rgba& left, const Rgba& right, int tolerance) {
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (std::abs(int{left[i]} - int{right[i]}) > tolerance) return false;
  }
  return true;
}

std::string SlotDifference(const PoseSlot& expected, const PoseSlot& seen, float tolerance) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (std::fabs(expected[i] - seen[i]) <= tolerance) continue;
    std::ostringstream text;
    text << "slot float " << i << " is " << seen[i] << ", expected " << expected[i];
    return text.str();
  }
  return {};
}

std::string Where(const Expectation& expectation) {
  std::string text =
      "connection " + std::to_string(expectation.connection) + ", frame " + std::to_string(expectation.frame);
  return expectation.name.empty() ? text : text + " (" + expectation.name + ')';
}

}  // namespace

Expectations Expectations::Load(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return Parse(text.str());
}

Expectations Expectations::Parse(const std::string& text) {
  Expectations expectations;
  for (const json& item : json::parse(text)) expectations.list_.push_back(ParseOne(item));
  expectations.checked_.resize(expectations.list_.size());
  return expectations;
}

bool Expectations::WantsPixels(std::uint32_t connection, std::uint64_t frame) const {
  return std::any_of(list_.begin(), list_.end(), [&](const Expectation& item) {
    return item.hasRegion && item.connection == connection && item.frame == frame;
  });
}

void Expectations::Check(const SeenFrame& seen, const Image* image) {
  for (std::size_t i = 0; i < list_.size(); ++i) {
    if (checked_[i] || list_[i].connection != seen.connection || list_[i].frame != seen.frame) continue;
    checked_[i] = true;
    const std::string difference = Difference(list_[i], seen, image);
    if (difference.empty()) ++passed_;
    if (!difference.empty()) failures_.push_back(Where(list_[i]) + ": " + difference);
  }
}

std::string Expectations::Difference(const Expectation& expectation, const SeenFrame& seen, const Image* image) const {
  if (expectation.texture && *expectation.texture != seen.texture) {
    return "texture is " + std::to_string(seen.texture) + ", expected " + std::to_string(*expectation.texture);
  }
  if (expectation.slot) {
    const std::string text = SlotDifference(*expectation.slot, seen.slot, expectation.slotTolerance);
    if (!text.empty()) return text;
  }
  if (!expectation.hasRegion) return {};
  return image == nullptr ? "its pixels could not be read" : RegionDifference(expectation, *image);
}

void Expectations::Finish() {
  for (std::size_t i = 0; i < list_.size(); ++i) {
    if (!checked_[i]) failures_.push_back(Where(list_[i]) + ": the frame never came");
  }
}

bool Expectations::Complete() const {
  return std::all_of(checked_.begin(), checked_.end(), [](bool checked) { return checked; });
}

void ParseRegion(const json& item, Expectation& expectation) {
  expectation.hasRegion = item.contains("rgba");
  if (!expectation.hasRegion) return;
  expectation.x = item.at("x").get<int>();
  expectation.y = item.at("y").get<int>();
  expectation.width = item.value("width", 1);
  expectation.height = item.value("height", 1);
  expectation.rgba = item.at("rgba").get<Rgba>();
  expectation.tolerance = item.value("tolerance", 0);
}

std::string RegionDifference(const Expectation& expectation, const Image& image) {
  for (int y = expectation.y; y < expectation.y + expectation.height; ++y) {
    for (int x = expectation.x; x < expectation.x + expectation.width; ++x) {
      const std::string place = "pixel (" + std::to_string(x) + ", " + std::to_string(y) + ')';
      if (!image.Holds(x, y)) return place + " lies outside the frame";
      const Rgba seen = image.At(x, y);
      if (Near(expectation.rgba, seen, expectation.tolerance)) continue;
      return place + " is " + Words(seen) + ", expected " + Words(expectation.rgba) + " within " +
             std::to_string(expectation.tolerance);
    }
  }
  return {};
}

}  // namespace bench
