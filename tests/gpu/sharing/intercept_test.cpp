#include "side.h"

#include "sharing/counters.h"
#include "sharing/device_observer.h"
#include "sharing/sharing_device.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace bench::test {
namespace {

class InterceptTest : public testing::Test {
 protected:
  using MakeDeviceFunction = HRESULT (*)(ID3D11Device**, ID3D11DeviceContext**);

  void SetUp() override {
    module = LoadLibraryA(std::getenv("SHARING_MODULE"));
    ASSERT_NE(module, nullptr);
    makeDevice = reinterpret_cast<MakeDeviceFunction>(reinterpret_cast<void*>(GetProcAddress(module, "MakeDevice")));
    ASSERT_NE(makeDevice, nullptr);
  }
  void TearDown() override {
    SetObserver(DeviceGroup::kIntercepted, nullptr);
    context.Reset();
    device.Reset();
    FreeLibrary(module);
  }

  void ExpectSharing() {
    const auto description = Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
    ComPtr<ID3D11Texture2D> texture;
    ASSERT_EQ(device->CreateTexture2D(&description, nullptr, &texture), S_OK);
    EXPECT_NE(Side().Open(SharedHandle(texture.Get())), nullptr);
  }

  HMODULE module = nullptr;
  MakeDeviceFunction makeDevice = nullptr;
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
};

TEST_F(InterceptTest, LeavesAModuleAloneThatWasNotIntercepted) {
  ASSERT_EQ(makeDevice(&device, &context), S_OK);
  EXPECT_EQ(ReadCounters(DeviceGroup::kIntercepted).liveDevices, 0);
  const auto description = Description(0);
  ComPtr<ID3D11Texture2D> texture;
  ASSERT_EQ(device->CreateTexture2D(&description, nullptr, &texture), S_OK);
  EXPECT_EQ(FindKeyedMutex(texture.Get()), nullptr);
}

TEST_F(InterceptTest, GivesSharingToADeviceThatWasMadeWithoutIt) {
  ASSERT_EQ(makeDevice(&device, &context), S_OK);
  ASSERT_TRUE(ShareTexturesOf(device.Get()));
  ExpectSharing();
}

TEST_F(InterceptTest, GivesTheModulesDevicesSharing) {
  ASSERT_TRUE(InterceptModule(module));
  ASSERT_EQ(makeDevice(&device, &context), S_OK);
  EXPECT_EQ(ReadCounters(DeviceGroup::kIntercepted).liveDevices, 1);
  ExpectSharing();
}

TEST_F(InterceptTest, GivesTheContextOfTheDevice) {
  ASSERT_TRUE(InterceptModule(module));
  ASSERT_EQ(makeDevice(&device, &context), S_OK);
  ComPtr<ID3D11DeviceContext> immediate;
  device->GetImmediateContext(&immediate);
  EXPECT_EQ(context, immediate);
}

TEST_F(InterceptTest, MakesAContextWithoutADevicePointer) {
  ASSERT_TRUE(InterceptModule(module));
  ASSERT_EQ(makeDevice(nullptr, &context), S_OK);
  EXPECT_NE(context, nullptr);
}

TEST_F(InterceptTest, KeepsTheModulesDevicesApartFromOurs) {
  ASSERT_TRUE(InterceptModule(module));
  const Counters before = ReadCounters(DeviceGroup::kOwn);
  ASSERT_EQ(makeDevice(&device, &context), S_OK);
  EXPECT_EQ(ReadCounters(DeviceGroup::kOwn).liveDevices, before.liveDevices);
}

TEST_F(InterceptTest, FindsNoImportInAModuleWithoutOne) {
  EXPECT_FALSE(InterceptModule(GetModuleHandleA("kernel32.dll")));
}

TEST_F(InterceptTest, CanRefuseTheModuleADevice) {
  struct Refusing : DeviceObserver {
    std::optional<HRESULT> Answer(DeviceCall call) override {
      return call == DeviceCall::kCreateDevice ? std::optional<HRESULT>(DXGI_ERROR_UNSUPPORTED) : std::nullopt;
    }
  } refusing;
  SetObserver(DeviceGroup::kIntercepted, &refusing);
  ASSERT_TRUE(InterceptModule(module));
  EXPECT_EQ(makeDevice(&device, &context), DXGI_ERROR_UNSUPPORTED);
  EXPECT_EQ(device, nullptr);
  EXPECT_EQ(context, nullptr);
}

TEST_F(InterceptTest, LetsTheModulesDeviceGoWithItsLastReference) {
  ASSERT_TRUE(InterceptModule(module));
  ASSERT_EQ(makeDevice(&device, &context), S_OK);
  context.Reset();
  device.Reset();
  EXPECT_EQ(ReadCounters(DeviceGroup::kIntercepted).liveDevices, 0);
}

}  // namespace
}  // namespace bench::test
