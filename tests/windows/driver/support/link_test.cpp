#include "support/link_test.h"

namespace ombrel::test {

void LinkTest::Connect() {
  ASSERT_TRUE(server.Open());
  InitAndActivateHeadset();
  ASSERT_TRUE(server.WaitForConnection(kTimeoutMs));
}

void LinkTest::Send(const companion::Bytes& bytes) { ASSERT_TRUE(server.Send(bytes)); }

vr::DriverPose_t LinkTest::SendForPose(const companion::Bytes& message) {
  const std::size_t before = PosesSent();
  Send(message);
  EXPECT_TRUE(WaitFor([&] { return PosesSent() > before; }));
  return runtime.Poses().Latest(0)->pose;
}

void LinkTest::Fence() {
  const float x = 1000.0F + static_cast<float>(++fences_);
  Send(companion::EncodeQuaternionAndPosition({}, {x, 0.0F, 0.0F}));
  EXPECT_TRUE(WaitFor([&] { return runtime.Poses().Latest(0)->pose.vecPosition[0] == x; }));
}

}  // namespace ombrel::test
