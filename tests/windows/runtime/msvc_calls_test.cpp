#include <stdexcept>

#include "runtime/msvc_calls.h"

#include <gtest/gtest.h>

namespace bench {
namespace {

// An object as MSVC lays it out: a pointer to a table of plain functions, the object first, the address of
// a structure result second.
struct HandMade {
  void* const* table;
  double height;
};

vr::DriverPose_t* GetPose(HandMade* self, vr::DriverPose_t* result) {
  *result = {};
  result->vecPosition[1] = self->height;
  return result;
}

vr::DistortionCoordinates_t* ComputeDistortion(HandMade* self, vr::DistortionCoordinates_t* result, vr::EVREye eye,
                                               float u, float v) {
  *result = {{u, v}, {static_cast<float>(self->height), static_cast<float>(eye)}, {0, 0}};
  return result;
}

// What a compiler with the other order makes of GetPose: it takes the first argument for the result.
void* SwappedGetPose(vr::DriverPose_t* result, HandMade*) { return result; }

void Unexpected() { ADD_FAILURE() << "a wrong slot was called"; }

template <typename Function>
void* Address(Function* function) {
  return reinterpret_cast<void*>(function);
}

TEST(MsvcCalls, GetPoseIsSlotFiveWithTheObjectFirst) {
  void* const table[] = {Address(Unexpected), Address(Unexpected), Address(Unexpected),
                         Address(Unexpected), Address(Unexpected), Address(GetPose)};
  HandMade device{table, 1.75};
  EXPECT_EQ(CallGetPose(&device).vecPosition[1], 1.75);
  EXPECT_EQ(device.table, table);
}

TEST(MsvcCalls, ComputeDistortionIsSlotSixWithTheObjectFirst) {
  void* const table[] = {Address(Unexpected), Address(Unexpected), Address(Unexpected),       Address(Unexpected),
                         Address(Unexpected), Address(Unexpected), Address(ComputeDistortion)};
  HandMade display{table, 2.0};
  const auto coordinates = CallComputeDistortion(&display, vr::Eye_Right, 0.25F, 0.75F);
  EXPECT_EQ(coordinates.rfRed[0], 0.25F);
  EXPECT_EQ(coordinates.rfRed[1], 0.75F);
  EXPECT_EQ(coordinates.rfGreen[0], 2.0F);
  EXPECT_EQ(coordinates.rfGreen[1], 1.0F);
}

TEST(MsvcCalls, ACalleeWithTheOtherOrderIsNoticed) {
  void* const table[] = {Address(Unexpected), Address(Unexpected), Address(Unexpected),
                         Address(Unexpected), Address(Unexpected), Address(SwappedGetPose)};
  HandMade device{table, 1.75};
  EXPECT_THROW(static_cast<void>(CallGetPose(&device)), std::logic_error);
}

}  // namespace
}  // namespace bench
