#include "runtime/display_geometry.h"

namespace bench {

DisplayGeometry ReadDisplayGeometry(vr::IVRDisplayComponent& display) {
  DisplayGeometry geometry;
  display.GetWindowBounds(&geometry.windowX, &geometry.windowY, &geometry.windowWidth, &geometry.windowHeight);
  display.GetRecommendedRenderTargetSize(&geometry.renderWidth, &geometry.renderHeight);
  for (const vr::EVREye eye : {vr::Eye_Left, vr::Eye_Right}) {
    EyeGeometry& of = geometry.eyes[static_cast<std::size_t>(eye)];
    display.GetEyeOutputViewport(eye, &of.x, &of.y, &of.width, &of.height);
    ProjectionTangents& tangents = of.projection;
    display.GetProjectionRaw(eye, &tangents.left, &tangents.right, &tangents.top, &tangents.bottom);
  }
  return geometry;
}

vr::HmdMatrix44_t ProjectionMatrix(const ProjectionTangents& tangents, float nearMeters, float farMeters) {
  const float perWidth = 1.0F / (tangents.right - tangents.left);
  const float perHeight = 1.0F / (tangents.bottom - tangents.top);
  const float perDepth = 1.0F / (farMeters - nearMeters);
  return {{{2.0F * perWidth, 0.0F, (tangents.right + tangents.left) * perWidth, 0.0F},
           {0.0F, 2.0F * perHeight, (tangents.bottom + tangents.top) * perHeight, 0.0F},
           {0.0F, 0.0F, -farMeters * perDepth, -farMeters * nearMeters * perDepth},
           {0.0F, 0.0F, -1.0F, 0.0F}}};
}

runtime::PoseMatrix HeadFromEye(vr::EVREye eye, float ipdMeters) {
  runtime::PoseMatrix pose = runtime::IdentityPose();
  pose.m[0][3] = (eye == vr::Eye_Left ? -0.5F : 0.5F) * ipdMeters;
  return pose;
}

}  // namespace bench
