#include "output_reader.h"

#include <stdexcept>

#include "picture/comparison.h"
#include "picture/read_image.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace ombrel::test {
namespace {

using Microsoft::WRL::ComPtr;
using nlohmann::json;

std::string FirstDifference(const json& area, const bench::Image& image) {
  const bench::Box box{area.at("x"), area.at("y"), area.at("width"), area.at("height")};
  if (box.width < 1 || box.height < 1) return "it is empty";
  const bench::Painter wanted =
      area.contains("rgba") ? bench::OneColour(area.at("rgba")) : bench::Pattern(area.at("pattern"));
  return bench::FirstDifference(image, box, wanted, area.at("tolerance"));
}

}  // namespace

void OutputReader::MakeDevice() {
  if (!device_) bench::RequireOk(bench::CreateSharingDevice(&device_, &context_), "making a device");
  outputs_.clear();
}

void OutputReader::Add(ComPtr<ID3D11Texture2D> texture) {
  if (!texture) throw std::runtime_error("no such texture");
  auto mutex = bench::FindKeyedMutex(texture.Get());
  if (!mutex) throw std::runtime_error("a texture without a keyed mutex");
  outputs_.push_back({std::move(texture), std::move(mutex)});
}

void OutputReader::Attach(const std::vector<std::uint32_t>& handles, const std::string& block) {
  MakeDevice();
  for (const std::uint32_t handle : handles) Add(bench::OpenTexture(*device_.Get(), handle));
  if (!block.empty() && !block_.Open(block)) throw std::runtime_error("no block named " + block);
}

std::uint32_t OutputReader::Make(std::uint8_t pattern) {
  MakeDevice();
  const auto description =
      bench::TextureDescription(61, 37, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  ComPtr<ID3D11Texture2D> texture;
  bench::RequireOk(device_->CreateTexture2D(&description, nullptr, &texture), "making a texture");
  Add(texture);
  bench::RequireOk(Acquire(0, 0, 0), "acquiring a new texture");
  Paint(0, pattern);
  bench::RequireOk(Release(0), "releasing a new texture");
  return bench::SharedHandle(texture.Get());
}

void OutputReader::Paint(std::size_t texture, std::uint8_t pattern) {
  ID3D11Texture2D* const target = outputs_.at(texture).texture.Get();
  D3D11_TEXTURE2D_DESC description{};
  target->GetDesc(&description);
  const auto image =
      bench::Paint(static_cast<int>(description.Width), static_cast<int>(description.Height), bench::Pattern(pattern));
  context_->UpdateSubresource(target, 0, nullptr, image.pixels.data(), 4 * description.Width, 0);
}

json OutputReader::Compare(std::size_t texture, const json& areas) {
  const bench::Image image = bench::ReadImage(outputs_.at(texture).texture.Get());
  json differences = json::array();
  for (const json& area : areas) {
    const std::string difference = FirstDifference(area, image);
    if (!difference.empty()) differences.push_back(area.at("name").get<std::string>() + ": " + difference);
  }
  return differences;
}

}  // namespace ombrel::test
