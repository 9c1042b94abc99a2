#include "scene_renderer.h"

#include <cmath>
#include <memory>

#include <gtest/gtest.h>

#include "picture/read_image.h"
#include "runtime/display_geometry.h"
#include "sharing/sharing_device.h"

namespace bench {
namespace {

constexpr std::uint32_t kSize = 256;
constexpr double kDegree = 3.14159265358979323846 / 180.0;

class SceneTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(CreateSharingDevice(&device, &context), S_OK);
    D3D11_TEXTURE2D_DESC description{};
    description.Width = description.Height = kSize;
    description.MipLevels = description.ArraySize = 1;
    description.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.BindFlags = D3D11_BIND_RENDER_TARGET;
    ASSERT_EQ(device->CreateTexture2D(&description, nullptr, &texture), S_OK);
    ASSERT_EQ(device->CreateRenderTargetView(texture.Get(), nullptr, &target), S_OK);
    scene = std::make_unique<SceneRenderer>(device, context);
  }

  // Standing in the middle of the room, turned left and up.
  Image Look(double yawDegrees, double pitchDegrees, float side = 0.0F) {
    const double yaw = 0.5 * yawDegrees * kDegree;
    const double pitch = 0.5 * pitchDegrees * kDegree;
    const auto turned = runtime::PoseFromQuaternion({std::cos(yaw), 0, std::sin(yaw), 0}, {0, 1.7, 0});
    const auto raised = runtime::PoseFromQuaternion({std::cos(pitch), std::sin(pitch), 0, 0}, {side, 0, 0});
    EyeView view;
    view.target = target.Get();
    view.targetWidth = view.targetHeight = kSize;
    view.viewport = {0, 0, kSize, kSize, 0, 1};
    view.worldFromEye = runtime::Multiply(turned, raised);
    view.projection = ProjectionMatrix({}, 0.1F, 50.0F);
    view.gammaEncoded = true;
    scene->PaintEye(view);
    return ReadImage(texture.Get());
  }

  Microsoft::WRL::ComPtr<ID3D11Device> device;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  Microsoft::WRL::ComPtr<ID3D11RenderTargetView> target;
  std::unique_ptr<SceneRenderer> scene;
};

// Beside the letter, between the pillars and above the crates.
constexpr std::uint32_t kWallX = 70;
constexpr std::uint32_t kWallY = 112;

TEST_F(SceneTest, EachDirectionShowsItsOwnWall) {
  const Rgba north = Look(0, 0).At(kWallX, kWallY);
  EXPECT_GT(north[2], 2 * north[0]);
  const Rgba west = Look(90, 0).At(kWallX, kWallY);
  EXPECT_GT(west[1], 2 * west[0]);
  const Rgba east = Look(-90, 0).At(kWallX, kWallY);
  EXPECT_GT(east[0], 3 * east[1]);
  const Rgba south = Look(180, 0).At(kWallX, kWallY);
  EXPECT_GT(south[0], 3 * south[2]);
  EXPECT_GT(south[1], 3 * south[2]);
}

TEST_F(SceneTest, LookingUpShowsTheCeilingAndDownTheFloor) {
  const Rgba up = Look(0, 90).At(kSize / 2 + 3, kSize / 2);
  EXPECT_GT(up[2], up[1]);
  const Rgba down = Look(0, -90).At(kSize / 2 + 3, kSize / 2);
  EXPECT_NEAR(down[0], down[1], 2);
}

// The letter of the east wall has its stem on the left and its gaps on the right.
TEST_F(SceneTest, WallsAreNotMirrored) {
  const Image east = Look(-90, 0);
  const int gapRow = 94;  // between the upper and the middle bar
  std::uint32_t whiteLeft = 0;
  std::uint32_t whiteRight = 0;
  for (int x = 96; x < 160; ++x) {
    if (east.At(x, gapRow)[1] > 200) {
      ++(x < 128 ? whiteLeft : whiteRight);
    }
  }
  EXPECT_GT(whiteLeft, 6U);
  EXPECT_EQ(whiteRight, 0U);
}

TEST_F(SceneTest, TheTwoEyesSeeTheCratesApart) {
  const Image left = Look(0, -20, -0.0325F);
  const Image right = Look(0, -20, 0.0325F);
  int different = 0;
  for (int y = 0; y < left.height; ++y) {
    for (int x = 0; x < left.width; ++x) different += left.At(x, y) != right.At(x, y) ? 1 : 0;
  }
  EXPECT_GT(different, 500);
}

TEST_F(SceneTest, MovingPartsAreDrawnWhereTheyAre) {
  const Rgba before = Look(0, 0).At(kSize / 2, kSize / 2);
  scene->SetMovingParts([] {
    Mesh mesh;
    runtime::PoseMatrix pose = runtime::IdentityPose();
    pose.m[1][3] = 1.7F;
    pose.m[2][3] = -1.0F;
    AppendBox(mesh, pose, {0.05F, 0.05F, 0.05F}, Surface::Plain, {1.0F, 0.0F, 0.0F});
    return mesh;
  });
  const Image after = Look(0, 0);
  EXPECT_EQ(after.At(kSize / 2, kSize / 2), (Rgba{255, 0, 0, 255}));
  EXPECT_NE(before, after.At(kSize / 2, kSize / 2));
  EXPECT_NE(after.At(kSize / 2 + 20, kSize / 2), (Rgba{255, 0, 0, 255}));
}

}  // namespace
}  // namespace bench
