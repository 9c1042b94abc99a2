#include <d3d11.h>
#include <dxgi.h>

#include <deque>
#include <string>

#include "fake_adapters.h"
#include "import_replacement.h"
#include "renderer_fixture.h"

// The table entries of this program's imports.
extern "C" {
extern void* __imp_D3D11CreateDevice;  // NOLINT(bugprone-reserved-identifier)
extern void* __imp_CreateDXGIFactory;  // NOLINT(bugprone-reserved-identifier)
}

namespace ombrel::test {
namespace {

using testing::ElementsAre;

struct DeviceRequest {
  IDXGIAdapter* adapter;
  D3D_DRIVER_TYPE type;
  HMODULE software;
  UINT flags;
  const D3D_FEATURE_LEVEL* levels;
  UINT levelCount, version;
};

FakeAdapters* adapters = nullptr;
std::vector<DeviceRequest> requests;
PFN_D3D11_CREATE_DEVICE createDevice = nullptr;

HRESULT WINAPI ReplacedCreateFactory(REFIID iid, void** factory) { return adapters->CreateFactory(iid, factory); }

// A made-up adapter is not one that a device can be made on.
HRESULT WINAPI ReplacedCreateDevice(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software, UINT flags,
                                    const D3D_FEATURE_LEVEL* levels, UINT levelCount, UINT version,
                                    ID3D11Device** device, D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
  requests.push_back({adapter, type, software, flags, levels, levelCount, version});
  return createDevice(nullptr, type, software, flags, levels, levelCount, version, device, level, context);
}

class DeviceCreationTest : public RendererTest {
 protected:
  DeviceCreationTest() {
    requests.clear();
    adapters = &system;
    createDevice = reinterpret_cast<PFN_D3D11_CREATE_DEVICE>(deviceImport.Original());
  }
  ~DeviceCreationTest() override { adapters = nullptr; }

  FakeAdapters system;
  ImportReplacement factoryImport{&__imp_CreateDXGIFactory, reinterpret_cast<void*>(&ReplacedCreateFactory)};
  ImportReplacement deviceImport{&__imp_D3D11CreateDevice, reinterpret_cast<void*>(&ReplacedCreateDevice)};
};

TEST_F(DeviceCreationTest, AsksForAHardwareDeviceWithDefaultLevels) {
  renderer->CreateDevice();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].type, D3D_DRIVER_TYPE_HARDWARE);
  EXPECT_EQ(requests[0].software, nullptr);
  EXPECT_EQ(requests[0].flags, 0u);
  EXPECT_EQ(requests[0].levels, nullptr);
  EXPECT_EQ(requests[0].levelCount, 0u);
  EXPECT_EQ(requests[0].version, 7u);
}

TEST_F(DeviceCreationTest, NamesNoAdapterWhenNoneIsThePreferredOne) {
  system.Add(L"Some adapter");
  system.Add(L"");
  renderer->CreateDevice();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].adapter, nullptr);
}

TEST_F(DeviceCreationTest, NamesTheFirstAdapterWithExactlyThePreferredName) {
  system.Add(L"Some adapter");
  IDXGIAdapter* const wanted = system.Add(L"NVIDIA");
  system.Add(L"NVIDIA");
  renderer->CreateDevice();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].adapter, wanted);
}

TEST_F(DeviceCreationTest, DoesNotNameAnAdapterWhoseDescriptionGoesOn) {
  system.Add(L"NVIDIA Model 1");
  system.Add(L"nvidia");
  system.Add(L"NVIDI");
  renderer->CreateDevice();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].adapter, nullptr);
}

TEST_F(DeviceCreationTest, NamesNoAdapterWithoutAFactory) {
  system.Add(L"NVIDIA");
  system.FailFactory();
  renderer->CreateDevice();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].adapter, nullptr);
}

TEST_F(DeviceCreationTest, LooksAtEveryAdapterAndKeepsNone) {
  system.Add(L"Some adapter");
  system.Add(L"NVIDIA");
  system.Add(L"Another adapter");
  renderer->CreateDevice();
  EXPECT_THAT(system.Enumerated(), ElementsAre(0, 1, 2, 3));
  EXPECT_EQ(system.References(), 0);
}

TEST_F(DeviceCreationTest, MakesTwoShadersOfEachKind) {
  renderer->CreateDevice();
  EXPECT_EQ(calls.Asked(bench::DeviceCall::kCreateVertexShader), 2u);
  EXPECT_EQ(calls.Asked(bench::DeviceCall::kCreatePixelShader), 2u);
}

}  // namespace
}  // namespace ombrel::test
