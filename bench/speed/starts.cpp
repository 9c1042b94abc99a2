#include <windows.h>
// windows.h must come first.
#include <d3d11.h>
#include <d3dcommon.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "experiments.h"
#include "floor/start_floor.h"
#include "floor/thread_time.h"
#include "lean_runtime.h"
#include "runtime/driver_module.h"
#include "scene_shaders.h"
#include "sharing/import_patch.h"

namespace bench::speed {
namespace {

std::int64_t deviceNanoseconds = 0;  // of the start under way, for Direct3D's own making

// In the place of the driver's imports, which run on the thread that starts it.
HRESULT WINAPI TimedCreateFactory(REFIID id, void** factory) {
  const std::int64_t begin = floor::WallNanoseconds();
  const HRESULT result = CreateDXGIFactory(id, factory);
  deviceNanoseconds += floor::WallNanoseconds() - begin;
  return result;
}

HRESULT WINAPI TimedCreateDevice(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software, UINT flags,
                                 const D3D_FEATURE_LEVEL* levels, UINT levelCount, UINT version, ID3D11Device** device,
                                 D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
  const std::int64_t begin = floor::WallNanoseconds();
  const HRESULT result =
      D3D11CreateDevice(adapter, type, software, flags, levels, levelCount, version, device, level, context);
  deviceNanoseconds += floor::WallNanoseconds() - begin;
  return result;
}

void Replace(DriverModule::Module module, const char* library, const char* function, void* replacement) {
  if (!ReplaceImport(static_cast<HMODULE>(module), library, function, replacement)) {
    throw std::runtime_error(std::string("the driver does not import ") + function);
  }
}

// The whole list of the driver's settings, so that none is missing.
void FillSettings(LeanRuntime& runtime) {
  runtime.rest.Settings().SetDefaults({{"driver_ombrel",
                                        {{"fakeSensorEnabled", false},
                                         {"hmdMode", 0},
                                         {"windowWidth", 1000},
                                         {"windowHeight", 600},
                                         {"renderScale", 100},
                                         {"RotationOffsetXDeg", 0},
                                         {"RotationOffsetYDeg", 0},
                                         {"RotationOffsetZDeg", 0}}}});
}

std::int64_t TimeStart(const std::filesystem::path& library) {
  LeanRuntime runtime;
  FillSettings(runtime);
  std::int64_t patching = 0;
  deviceNanoseconds = 0;
  const std::int64_t begin = floor::WallNanoseconds();
  DriverModule module(library, [&](DriverModule::Module loaded) {
    const std::int64_t before = floor::WallNanoseconds();
    Replace(loaded, "d3d11.dll", "D3D11CreateDevice", reinterpret_cast<void*>(&TimedCreateDevice));
    Replace(loaded, "dxgi.dll", "CreateDXGIFactory", reinterpret_cast<void*>(&TimedCreateFactory));
    patching = floor::WallNanoseconds() - before;
  });
  const vr::EVRInitError result = module.Provider().Init(&runtime);
  const std::int64_t taken = floor::WallNanoseconds() - begin - patching - deviceNanoseconds;
  module.Provider().Cleanup();
  if (result != vr::VRInitError_None) throw std::runtime_error("Init failed");
  return taken;
}

std::span<const std::byte> BytesOf(ID3DBlob& blob) {
  return {static_cast<const std::byte*>(blob.GetBufferPointer()), blob.GetBufferSize()};
}

double ToMs(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1e6; }

}  // namespace

std::vector<Series> MeasureStarts(const Plan& plan) {
  const auto vertex = CompileSceneVertexShader(), pixel = CompileScenePixelShader();
  const floor::Shaders shaders{BytesOf(*vertex.Get()), BytesOf(*pixel.Get())};
  // What the first start alone has to load is slow for neither.
  static_cast<void>(floor::TimeBareStart(plan.emptyDll, shaders));
  static_cast<void>(TimeStart(plan.library));
  // Until the threads of the device before have gone, which the next start would have to share the processors with.
  constexpr DWORD kPauseMs = 300;
  Series series{"start", "ms", {}};
  for (int i = 0; i < (plan.isShort ? 3 : 30); ++i) {
    Sleep(kPauseMs);
    series.Add(kFloor, {ToMs(floor::TimeBareStart(plan.emptyDll, shaders))});
    Sleep(kPauseMs);
    series.Add(kDriver, {ToMs(TimeStart(plan.library))});
  }
  return {series};
}

}  // namespace bench::speed
