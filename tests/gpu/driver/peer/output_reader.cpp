#include "output_reader.h"

#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "gpu_support/pixel_pattern.h"
#include "gpu_support/read_texture.h"
#include "sharing/sharing_device.h"

namespace ombrel::test {
namespace {

using Microsoft::WRL::ComPtr;
using nlohmann::json;

constexpr UINT64 kKey = 0;

void Require(HRESULT result, const char* what) {
  if (result != S_OK) throw std::runtime_error(std::string(what) + " failed with " + std::to_string(result));
}

bench::Rgba Wanted(const json& area, int x, int y) {
  return area.contains("rgba") ? area.at("rgba").get<bench::Rgba>() : PatternPixel(area.at("pattern"), x, y);
}

bool Matches(const bench::Rgba& pixel, const bench::Rgba& wanted, int tolerance) {
  for (std::size_t i = 0; i < pixel.size(); ++i) {
    if (std::abs(pixel[i] - wanted[i]) > tolerance) return false;
  }
  return true;
}

std::string Describe(const json& area, int x, int y, const bench::Rgba& pixel) {
  return area.at("name").get<std::string>() + ": at (" + std::to_string(x) + ", " + std::to_string(y) + ") " +
         json(pixel).dump() + " instead of " + json(Wanted(area, x, y)).dump();
}

std::string FirstDifference(const json& area, const bench::Image& image) {
  const int left = area.at("x"), top = area.at("y"), width = area.at("width"), height = area.at("height");
  if (width < 1 || height < 1) return area.at("name").get<std::string>() + " is empty";
  for (int y = top; y < top + height; ++y) {
    for (int x = left; x < left + width; ++x) {
      if (!image.Holds(x, y)) return area.at("name").get<std::string>() + " reaches beyond the picture";
      const bench::Rgba pixel = image.At(x, y);
      if (!Matches(pixel, Wanted(area, x, y), area.at("tolerance"))) return Describe(area, x, y, pixel);
    }
  }
  return {};
}

}  // namespace

json OutputReader::Attach(const std::vector<std::uint32_t>& handles, const std::string& block) {
  if (!device_) Require(bench::CreateSharingDevice(&device_, &context_), "making a device");
  outputs_.clear();
  json opened = json::array();
  for (const std::uint32_t handle : handles) {
    outputs_.push_back(Open(handle));
    D3D11_TEXTURE2D_DESC made{};
    outputs_.back().texture->GetDesc(&made);
    opened.push_back({{"width", made.Width}, {"height", made.Height}, {"format", static_cast<int>(made.Format)}});
  }
  if (!block.empty() && !block_.Open(block)) throw std::runtime_error("no block named " + block);
  return opened;
}

OutputReader::Output OutputReader::Open(std::uint32_t handle) {
  Output output;
  const auto widened = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(handle));
  Require(device_->OpenSharedResource(widened, IID_PPV_ARGS(&output.texture)), "opening a texture");
  Require(output.texture.As(&output.keyedMutex), "finding a keyed mutex");
  return output;
}

HRESULT OutputReader::Acquire(std::size_t texture, DWORD timeoutMs) {
  return outputs_.at(texture).keyedMutex->AcquireSync(kKey, timeoutMs);
}

HRESULT OutputReader::Release(std::size_t texture) { return outputs_.at(texture).keyedMutex->ReleaseSync(kKey); }

json OutputReader::Compare(std::size_t texture, const json& areas) {
  const bench::Image image = ReadTexture(*device_.Get(), *context_.Get(), outputs_.at(texture).texture.Get());
  json differences = json::array();
  for (const json& area : areas) {
    const std::string difference = FirstDifference(area, image);
    if (!difference.empty()) differences.push_back(difference);
  }
  return differences;
}

}  // namespace ombrel::test
