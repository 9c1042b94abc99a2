#include <windows.h>
// windows.h must come first.
#include <d3d11.h>
#include <dxgi.h>

#include <stdexcept>
#include <string>

#include "clocks.h"
#include "driver_under_test.h"
#include "experiments.h"
#include "runtime/small_picture.h"
#include "sharing/import_patch.h"

namespace bench::speed {
namespace {

std::int64_t deviceNanoseconds = 0;  // of the start under way, for Direct3D's own making

// In the place of the driver's imports, which run on the thread that starts it.
HRESULT WINAPI TimedCreateFactory(REFIID id, void** factory) {
  const std::int64_t begin = WallNanoseconds();
  const HRESULT result = CreateDXGIFactory(id, factory);
  deviceNanoseconds += WallNanoseconds() - begin;
  return result;
}

HRESULT WINAPI TimedCreateDevice(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software, UINT flags,
                                 const D3D_FEATURE_LEVEL* levels, UINT levelCount, UINT version, ID3D11Device** device,
                                 D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
  const std::int64_t begin = WallNanoseconds();
  const HRESULT result =
      D3D11CreateDevice(adapter, type, software, flags, levels, levelCount, version, device, level, context);
  deviceNanoseconds += WallNanoseconds() - begin;
  return result;
}

void Replace(DriverModule::Module module, const char* library, const char* function, void* replacement) {
  if (!ReplaceImport(static_cast<HMODULE>(module), library, function, replacement)) {
    throw std::runtime_error(std::string("the driver does not import ") + function);
  }
}

void Patch(DriverModule::Module module) {
  Replace(module, "d3d11.dll", "D3D11CreateDevice", reinterpret_cast<void*>(&TimedCreateDevice));
  Replace(module, "dxgi.dll", "CreateDXGIFactory", reinterpret_cast<void*>(&TimedCreateFactory));
}

struct Start {
  double driverMs = 0, direct3DMs = 0;
};

Start TimeStart(const std::filesystem::path& library) {
  FakeRuntime runtime;
  runtime.KeepNothing();
  runtime.Settings().SetDefaults(SmallPictureSettings(0));
  std::int64_t patching = 0;
  deviceNanoseconds = 0;
  const std::int64_t begin = WallNanoseconds();
  DriverModule module(library, [&](DriverModule::Module loaded) {
    const std::int64_t before = WallNanoseconds();
    Patch(loaded);
    patching = WallNanoseconds() - before;
  });
  const vr::EVRInitError result = module.Provider().Init(&runtime);
  const std::int64_t taken = WallNanoseconds() - begin - patching - deviceNanoseconds;
  module.Provider().Cleanup();
  if (result != vr::VRInitError_None) throw std::runtime_error("Init failed");
  return {static_cast<double>(taken) / 1e6, static_cast<double>(deviceNanoseconds) / 1e6};
}

}  // namespace

std::vector<Series> MeasureStarts(const Plan& plan) {
  // Until the threads of the device before have gone, which the next start would have to share the processors with.
  constexpr DWORD kPauseMs = 300;
  Series series{"start", "ms", {}};
  static_cast<void>(TimeStart(plan.library));  // loads what is loaded once
  for (int i = 0; i < (plan.isShort ? 3 : 60); ++i) {
    Sleep(kPauseMs);
    const Start start = TimeStart(plan.library);
    series.Add(kDriver, {start.driverMs});
    series.Add("Direct3D", {start.direct3DMs});
  }
  return {std::move(series)};
}

}  // namespace bench::speed
