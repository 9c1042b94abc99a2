// Once a session is under way, poses, records and frames allocate nothing in the driver. What Direct3D allocates for
// itself does not count: only the driver's own imports are watched.
#include <windows.h>
// windows.h must come first.
#include <d3d11.h>
#include <gmock/gmock.h>
#include <wrl/client.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>

#include "companion/controller_record.h"
#include "runtime/keyed_texture.h"
#include "sharing/counters.h"
#include "sharing/sharing_device.h"
#include "support/link_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

using Microsoft::WRL::ComPtr;

std::atomic<int> allocations = 0;

void* CountedMalloc(std::size_t size) {
  ++allocations;
  return std::malloc(size);
}
void* CountedCalloc(std::size_t count, std::size_t size) {
  ++allocations;
  return std::calloc(count, size);
}
void* CountedRealloc(void* block, std::size_t size) {
  ++allocations;
  return std::realloc(block, size);
}

class SteadyStateTest : public LinkTest {
 protected:
  static constexpr std::uint32_t kController = 5;

  SteadyStateTest() : LinkTest(Graphics::kReal) {}
  void SetUp() override {
    ASSERT_TRUE(bench::InterceptModule(static_cast<HMODULE>(module.Handle())));
    Connect();
  }

  // Does it once before it counts, so that what is made once is there, and then as often again.
  static int AllocationsOf(const std::function<void()>& action) {
    constexpr int kTimes = 20;
    action();
    const int before = allocations;
    for (int i = 0; i < kTimes; ++i) action();
    return allocations - before;
  }

  vr::IVRDriverDirectModeComponent& Direct() {
    return *static_cast<vr::IVRDriverDirectModeComponent*>(
        Headset().GetComponent(vr::IVRDriverDirectModeComponent_Version));
  }
  vr::SharedTextureHandle_t AddSet() {
    const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t description{16, 16, DXGI_FORMAT_R8G8B8A8_UNORM, 1};
    vr::SharedTextureHandle_t handles[3] = {};
    Direct().CreateSwapTextureSet(1, &description, &handles);
    return handles[0];
  }
  void Frame(vr::SharedTextureHandle_t eye, vr::SharedTextureHandle_t sync, int layers) {
    vr::IVRDriverDirectModeComponent::SubmitLayerPerEye_t eyes[2] = {};
    for (auto& each : eyes) {
      each.hTexture = eye;
      each.bounds = {0, 0, 1, 1};
    }
    const vr::HmdMatrix34_t pose{};
    for (int layer = 0; layer < layers; ++layer) Direct().SubmitLayer(eyes, &pose);
    Direct().Present(sync);
  }
  void SendRecords() {
    for (const float pull : {0.25F, 0.75F}) {
      companion::ControllerRecord record{.controllerId = kController};
      record.pressedButtons = pull > 0.5F ? companion::ButtonBit(companion::ControllerButton::Trigger) : 0;
      record.axes[0] = record.axes[1] = {pull, -pull};
      Send(companion::EncodeControllerUpdate(record));
    }
    Fence();
  }

 private:
  const ModuleImport malloc_{module.Handle(), "malloc", reinterpret_cast<void*>(&CountedMalloc)};
  const ModuleImport calloc_{module.Handle(), "calloc", reinterpret_cast<void*>(&CountedCalloc)};
  const ModuleImport realloc_{module.Handle(), "realloc", reinterpret_cast<void*>(&CountedRealloc)};
};

TEST_F(SteadyStateTest, AnAllocationOfTheDriverIsCounted) {
  EXPECT_GT(AllocationsOf([this] { AddSet(); }), 0);
}

TEST_F(SteadyStateTest, PosesAllocateNothing) {
  EXPECT_EQ(AllocationsOf([this] {
              Send(companion::EncodeRotationMatrix({}));
              Send(companion::EncodeSensors({}));
              Send(companion::EncodeEulerAngles(0.1F, 0.2F, 0.3F, {}));
              Send(companion::EncodeRotationAndPosition({}, {}));
              Send(companion::EncodePositionOnly({}));
              Send(companion::EncodeTrackingState(0));
              Send(companion::EncodeWithoutPose(companion::PoseFormat::Recenter));
              Fence();
            }),
            0);
}

TEST_F(SteadyStateTest, ControllerRecordsAllocateNothing) {
  SendRecords();
  ASSERT_EQ(runtime.Host().Added().at(1).driver->Activate(1), vr::VRInitError_None);
  const std::size_t updates = runtime.Input().Updates().size();
  EXPECT_EQ(AllocationsOf([this] { SendRecords(); }), 0);
  EXPECT_GT(runtime.Input().Updates().size(), updates) << "the records did nothing";
}

TEST_F(SteadyStateTest, HapticPulsesAllocateNothing) {
  int pulses = 0;
  SendRecords();
  ASSERT_EQ(runtime.Host().Added().at(1).driver->Activate(1), vr::VRInitError_None);
  EXPECT_EQ(AllocationsOf([&] {
              runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(1), 1, 0.01F, 100, 1);
              Provider().RunFrame();
              pulses += server.Next(2000).has_value() ? 1 : 0;
            }),
            0);
  EXPECT_GT(pulses, 0);
}

TEST_F(SteadyStateTest, FramesAllocateNothing) {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  ASSERT_EQ(bench::CreateSharingDevice(&device, &context), S_OK);
  bench::KeyedTexture sync(*device.Get(), 4, 4, DXGI_FORMAT_R8G8B8A8_UNORM);
  const auto eye = AddSet();
  // The announcement shows that frames are taken.
  for (int attempt = 0; attempt < 500; ++attempt) {
    Frame(eye, sync.Handle(), 4);
    if (server.Next(20)) break;
  }
  const auto copies = bench::ReadCounters(bench::DeviceGroup::kIntercepted).acquired;
  EXPECT_EQ(AllocationsOf([&] {
              Frame(eye, sync.Handle(), 4);
              Direct().PostPresent();
            }),
            0);
  EXPECT_GT(bench::ReadCounters(bench::DeviceGroup::kIntercepted).acquired, copies) << "no frame was handed over";
}

}  // namespace
}  // namespace ombrel::test
