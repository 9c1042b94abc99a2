#include "renderer_fixture.h"

#include <stdexcept>

#include "sharing/sharing_device.h"

namespace ombrel::test {

RendererTest::RendererTest() {
  if (!bench::InterceptModule(GetModuleHandleA(nullptr))) throw std::runtime_error("no import of D3D11CreateDevice");
}

RendererTest::~RendererTest() = default;

bool RendererTest::Start(const OutputConfiguration& configuration) {
  renderer->CreateDevice();
  renderer->Configure(configuration);
  return renderer->CreateOutputTextures();
}

std::uint64_t RendererTest::MakeEyeTexture(const Painter& painter, std::uint32_t format, int width, int height) {
  eyeTextures.push_back(
      renderer->CreateSwapTexture({static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), format, 1}));
  const std::uint64_t handle = eyeTextures.back().handle;
  renderer->RegisterTexture(handle);
  if (painter) runtime.Paint(handle, painter);
  return handle;
}

void RendererTest::Compose(std::uint64_t left, std::uint64_t right, const EyeBounds& bounds, std::int32_t output) {
  ASSERT_TRUE(renderer->AcquireOutput(output, kTimeoutMs));
  renderer->BeginLayers();
  renderer->ComposeLayer(output, {left, right, &bounds});
  ASSERT_TRUE(renderer->ReleaseOutput(output));
}

std::unique_ptr<Companion> RendererPixelTest::companion_;

void RendererPixelTest::SetUpTestSuite() { companion_ = std::make_unique<Companion>(); }

void RendererPixelTest::TearDownTestSuite() { companion_.reset(); }

std::vector<std::string> RendererPixelTest::Look(const std::vector<Area>& areas, int output) {
  const auto handles = renderer->Sharing().handles;
  companion_->Attach({handles[0], handles[1]});
  return companion_->Look(output, areas);
}

void ExpectTexture(const D3D11_TEXTURE2D_DESC& desc, UINT width, UINT height, int format, UINT miscFlags) {
  EXPECT_EQ(desc.Width, width);
  EXPECT_EQ(desc.Height, height);
  EXPECT_EQ(desc.MipLevels, 1u);
  EXPECT_EQ(desc.ArraySize, 1u);
  EXPECT_EQ(desc.Format, format);
  EXPECT_EQ(desc.SampleDesc.Count, 1u);
  EXPECT_EQ(desc.SampleDesc.Quality, 0u);
  EXPECT_EQ(desc.Usage, D3D11_USAGE_DEFAULT);
  EXPECT_EQ(desc.BindFlags, 0x28u);
  EXPECT_EQ(desc.CPUAccessFlags, 0u);
  EXPECT_EQ(desc.MiscFlags, miscFlags);
}

Area Middle(const std::string& name, int eye, const bench::Rgba& rgba, int tolerance) {
  return EyeArea(name, eye, 64, 48, 4, rgba, tolerance);
}

}  // namespace ombrel::test
