#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "gpu_support/colours.h"
#include "gpu_support/companion.h"
#include "gpu_support/recorded_calls.h"
#include "gpu_support/runtime_side.h"
#include "render/headset_renderer.h"

namespace ombrel::test {

inline constexpr std::uint32_t kRgba = 28;  // DXGI_FORMAT_R8G8B8A8_UNORM
inline constexpr std::uint32_t kRgbaTypeless = 27;
inline constexpr std::uint32_t kBgraTypeless = 90;
inline constexpr std::uint32_t kTimeoutMs = 5000;

inline constexpr EyeBounds kWhole{{{0, 0, 1, 1}, {0, 0, 1, 1}}};

// A renderer on a device whose textures can be shared and whose calls are recorded. Eyes are 64 by 48 unless a test
// wants others.
class RendererTest : public testing::Test {
 protected:
  static constexpr int kEyeWidth = 64, kEyeHeight = 48;
  static constexpr OutputConfiguration kOutput{kRgba, 2 * kEyeWidth, kEyeHeight, 0};

  RendererTest();
  ~RendererTest() override;

  // A device and an output pair. False when they cannot be had.
  bool Start(const OutputConfiguration& configuration = kOutput);

  // A texture as the runtime gets it from the driver, registered; painted if there is a painter.
  std::uint64_t MakeEyeTexture(const Painter& painter = {}, std::uint32_t format = kRgba, int width = kEyeWidth,
                               int height = kEyeHeight);

  // Draws into an output that it holds meanwhile.
  void Compose(std::uint64_t left, std::uint64_t right, const EyeBounds& bounds = kWhole, std::int32_t output = 0);

  RecordedCalls calls{bench::DeviceGroup::kIntercepted};
  std::unique_ptr<IHeadsetRenderer> renderer = MakeHeadsetRenderer();
  std::vector<SwapTexture> eyeTextures;  // all that were made
  // For all tests, since it takes a second to make its device. Never destroyed: that would be at the program's end, after
  // what the stand-in's sharing keeps.
  static inline RuntimeSide& runtime = *new RuntimeSide;
};

// The same, with a companion that looks at the output from another process.
class RendererPixelTest : public RendererTest {
 protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();

  // One line for each area of the output that is not as it should be, seen from the companion's side.
  [[nodiscard]] std::vector<std::string> Look(const std::vector<Area>& areas, int output = 0);

 private:
  static std::unique_ptr<Companion> companion_;
};

// A texture as the driver makes them: one level, one sample, sampled and drawn into.
void ExpectTexture(const D3D11_TEXTURE2D_DESC& desc, UINT width, UINT height, int format, UINT miscFlags);

// The middle of an eye's picture: away from the rim, where filtering mixes in the opposite edge.
[[nodiscard]] Area Middle(const std::string& name, int eye, const bench::Rgba& rgba, int tolerance = 0);

}  // namespace ombrel::test
