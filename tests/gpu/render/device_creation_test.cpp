#include <d3d11.h>
#include <dxgi.h>

#include <string>
#include <vector>

#include "fake_adapters.h"
#include "renderer_fixture.h"
#include "sharing/import_patch.h"

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
  bench::ImportPatch factoryImport{GetModuleHandleA(nullptr), "dxgi.dll", "CreateDXGIFactory",
                                   reinterpret_cast<void*>(&ReplacedCreateFactory)};
  bench::ImportPatch deviceImport{GetModuleHandleA(nullptr), "d3d11.dll", "D3D11CreateDevice",
                                  reinterpret_cast<void*>(&ReplacedCreateDevice)};
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

struct Adapters {
  std::vector<std::wstring> descriptions;
  int named;  // -1 for none
};

// Two same ones, none, and descriptions that are not exactly the preferred name.
class AdapterTest : public DeviceCreationTest, public testing::WithParamInterface<Adapters> {};

TEST_P(AdapterTest, TheFirstOneWithExactlyThePreferredNameIsNamed) {
  std::vector<IDXGIAdapter*> added;
  for (const std::wstring& description : GetParam().descriptions) added.push_back(system.Add(description));
  renderer->CreateDevice();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].adapter, GetParam().named < 0 ? nullptr : added.at(static_cast<std::size_t>(GetParam().named)));
}

INSTANTIATE_TEST_SUITE_P(Descriptions, AdapterTest,
                         testing::Values(Adapters{{L"Some adapter", L"NVIDIA", L"NVIDIA"}, 1},
                                         Adapters{{L"Some adapter", L""}, -1},
                                         Adapters{{L"NVIDIA Model 1", L"nvidia", L"NVIDI"}, -1}));

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
