#include "controller_view.h"

namespace bench {
namespace {

using Tint = std::array<float, 3>;

Tint TintOf(const FakeDriverInput& input, vr::PropertyContainerHandle_t container) {
  static const struct {
    const char* path;
    Tint tint;
  } kTints[] = {
      {"/input/trigger/click", {1.0F, 0.1F, 0.1F}},   {"/input/grip/click", {0.1F, 1.0F, 0.1F}},
      {"/input/trackpad/click", {0.15F, 0.3F, 1.0F}}, {"/input/application_menu/click", {1.0F, 0.1F, 1.0F}},
      {"/input/system/click", {1.0F, 1.0F, 0.1F}},    {"/input/trackpad/touch", {0.1F, 1.0F, 1.0F}},
  };
  for (const auto& candidate : kTints) {
    if (input.BoolValue(container, candidate.path).value_or(false)) {
      return candidate.tint;
    }
  }
  return {0.6F, 0.6F, 0.6F};
}

runtime::PoseMatrix Offset(const runtime::PoseMatrix& pose, float x, float y, float z) {
  runtime::PoseMatrix offset = runtime::IdentityPose();
  offset.m[0][3] = x;
  offset.m[1][3] = y;
  offset.m[2][3] = z;
  return runtime::Multiply(pose, offset);
}

void AppendController(Mesh& mesh, const FakeDriverInput& input, vr::PropertyContainerHandle_t container,
                      const runtime::PoseMatrix& pose) {
  constexpr float kPadHalf = 0.025F;
  AppendBox(mesh, Offset(pose, 0, 0, 0.06F), {0.03F, 0.02F, 0.1F}, Surface::Plain, TintOf(input, container));
  const float x = input.ScalarValue(container, "/input/trackpad/x").value_or(0.0F);
  const float y = input.ScalarValue(container, "/input/trackpad/y").value_or(0.0F);
  AppendBox(mesh, Offset(pose, x * kPadHalf, 0.024F, -y * kPadHalf), {0.007F, 0.006F, 0.007F}, Surface::Plain,
            {1, 1, 1});
  const float pull = input.ScalarValue(container, "/input/trigger/value").value_or(0.0F);
  AppendBox(mesh, Offset(pose, 0, -0.03F, -0.01F), {0.012F, 0.015F, 0.012F}, Surface::Plain,
            {0.3F + 0.7F * pull, 0.3F * (1.0F - pull), 0.3F * (1.0F - pull)});
}

}  // namespace

Mesh BuildControllers(FakeRuntime& runtime, const RuntimeSession& session) {
  Mesh mesh;
  for (const ActiveDevice& device : session.Devices()) {
    const auto pose = runtime.Poses().Latest(device.added.index);
    if (device.added.deviceClass == vr::TrackedDeviceClass_Controller && pose && pose->pose.poseIsValid) {
      AppendController(mesh, runtime.Input(), device.container, runtime::WorldFromHead(pose->pose));
    }
  }
  return mesh;
}

}  // namespace bench
