// Structures that cross the boundary are laid out alike by both compilers, and as large as the interface has them.
#include <gmock/gmock.h>
#include <openvr_driver.h>

#include <cstddef>
#include <map>
#include <span>
#include <string>

#include "msvc_side/calls.h"

namespace ombrel::test {
namespace {

using DirectMode = vr::IVRDriverDirectModeComponent;
using Facts = std::map<std::string, std::uint64_t>;

Facts OfMsvc() {
  std::uint32_t count = 0;
  const LayoutFact* first = MsvcLayoutFacts(&count);
  Facts facts;
  for (const LayoutFact& fact : std::span(first, count)) facts[fact.what] = fact.bytes;
  return facts;
}

Facts OfThisCompiler() {
  return {{"DriverPose_t", sizeof(vr::DriverPose_t)},
          {"DriverPose_t.qRotation", offsetof(vr::DriverPose_t, qRotation)},
          {"DriverPose_t.result", offsetof(vr::DriverPose_t, result)},
          {"DriverPose_t.poseIsValid", offsetof(vr::DriverPose_t, poseIsValid)},
          {"DriverPose_t.deviceIsConnected", offsetof(vr::DriverPose_t, deviceIsConnected)},
          {"VREvent_t", sizeof(vr::VREvent_t)},
          {"VREvent_t.data", offsetof(vr::VREvent_t, data)},
          {"VREvent_HapticVibration_t.fDurationSeconds", offsetof(vr::VREvent_HapticVibration_t, fDurationSeconds)},
          {"DriverDirectMode_FrameTiming", sizeof(vr::DriverDirectMode_FrameTiming)},
          {"DistortionCoordinates_t", sizeof(vr::DistortionCoordinates_t)},
          {"SwapTextureSetDesc_t", sizeof(DirectMode::SwapTextureSetDesc_t)},
          {"SubmitLayerPerEye_t", sizeof(DirectMode::SubmitLayerPerEye_t)},
          {"SubmitLayerPerEye_t.bounds", offsetof(DirectMode::SubmitLayerPerEye_t, bounds)},
          {"PropertyWrite_t", sizeof(vr::PropertyWrite_t)},
          {"PropertyWrite_t.pvBuffer", offsetof(vr::PropertyWrite_t, pvBuffer)},
          {"PropertyWrite_t.unTag", offsetof(vr::PropertyWrite_t, unTag)},
          {"HmdMatrix34_t", sizeof(vr::HmdMatrix34_t)},
          {"VRTextureBounds_t", sizeof(vr::VRTextureBounds_t)}};
}

TEST(LayoutTest, BothCompilersAgree) { EXPECT_EQ(OfMsvc(), OfThisCompiler()); }

TEST(LayoutTest, SizesAreThoseOfTheInterface) {
  Facts facts = OfMsvc();
  EXPECT_EQ(facts["DriverPose_t"], 280U);
  EXPECT_EQ(facts["VREvent_t"], 48U);
  EXPECT_EQ(facts["DriverDirectMode_FrameTiming"], 20U);
}

}  // namespace
}  // namespace ombrel::test
