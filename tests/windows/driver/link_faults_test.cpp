// What the runtime throws at the link's own thread is lost there, and only there.
#include <gmock/gmock.h>

#include "support/link_test.h"

namespace ombrel::test {
namespace {

class LinkFaultsTest : public LinkTest {
 protected:
  void SetUp() override { Connect(); }

  void ExpectToSurviveFaultOf(const char* call, const bench::Bytes& message) {
    const std::size_t before = runtime.Journal().Count(call);
    runtime.Recorder().ThrowFrom(call);
    Send(message);
    EXPECT_TRUE(WaitFor([&] { return runtime.Journal().Count(call) > before; }));
    Fence();
    EXPECT_EQ(server.Connections(), 1U);
  }
};

TEST_F(LinkFaultsTest, PosesThatTheRuntimeRefusesByThrowing) {
  ExpectToSurviveFaultOf("IVRServerDriverHost.TrackedDevicePoseUpdated", bench::EncodeQuaternionAndPosition({}, {}));
}

TEST_F(LinkFaultsTest, FrameRatesThatThePropertiesRefuseByThrowing) {
  ExpectToSurviveFaultOf("IVRProperties.WritePropertyBatch", bench::EncodeFramerateUpdate(72));
}

TEST_F(LinkFaultsTest, FrameRatesThatTheLogRefusesByThrowing) {
  ExpectToSurviveFaultOf("IVRDriverLog.Log", bench::EncodeFramerateUpdate(72));
}

}  // namespace
}  // namespace ombrel::test
