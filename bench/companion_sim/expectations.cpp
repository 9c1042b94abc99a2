#include "expectations.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "picture/comparison.h"

namespace bench {

using namespace companion;

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
  expectation.region = {item.at("x").get<int>(), item.at("y").get<int>(), item.value("width", 1),
                        item.value("height", 1)};
  expectation.rgba = item.at("rgba").get<Rgba>();
  expectation.tolerance = item.value("tolerance", 0);
}

std::string RegionDifference(const Expectation& expectation, const Image& image) {
  return FirstDifference(image, expectation.region, OneColour(expectation.rgba), expectation.tolerance);
}

}  // namespace bench
