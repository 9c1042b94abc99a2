// A d3d11.dll that gives the programs of a Wine prefix shared textures, and records what they do with them. Wine's own
// Direct3D, which makes the devices, lies beside it as ombrel_host_d3d11.dll. README.md says how it is put into place.
#include <windows.h>
#include <d3d11.h>

#include <cstdlib>
#include <exception>

#include "connected_pipe.h"
#include "recorder/texture_recorder.h"
#include "sharing/sharing_device.h"

namespace {

constexpr const char* kHost = "ombrel_host_d3d11.dll";

// Both live as long as the process: threads of the program may be inside until its very end.
const bench::RecordingFile* recording = nullptr;

void StartRecording() {
  const char* const path = std::getenv("OMBREL_RECORDING");
  if (path == nullptr) return;
  try {
    recording = new bench::RecordingFile(path, checker::Side::kCompanion);
    bench::SetObserver(bench::DeviceGroup::kIntercepted, new bench::TextureRecorder(*recording));
  } catch (const std::exception&) {
    // The program runs without a recording; whoever wanted one misses the file.
  }
}

template <class Function>
Function HostFunction(const char* name) {
  static const HMODULE host = LoadLibraryA(kHost);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(host, name)));
}

// Once its last reference goes, a device takes Wine's Direct3D long to destroy, or for ever where several threads have
// used it and there is no command-stream thread.
HRESULT Share(HRESULT result, ID3D11Device** device) {
  if (FAILED(result) || device == nullptr || *device == nullptr) return result;
  if (!bench::ShareTexturesOf(*device)) return E_UNEXPECTED;
  (*device)->AddRef();
  return result;
}

}  // namespace

extern "C" HRESULT WINAPI D3D11CreateDevice(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software, UINT flags,
                                            const D3D_FEATURE_LEVEL* levels, UINT levelCount, UINT version,
                                            ID3D11Device** device, D3D_FEATURE_LEVEL* level,
                                            ID3D11DeviceContext** context) {
  const auto create = HostFunction<PFN_D3D11_CREATE_DEVICE>("D3D11CreateDevice");
  if (create == nullptr) return E_FAIL;
  return Share(create(adapter, type, software, flags, levels, levelCount, version, device, level, context), device);
}

extern "C" HRESULT WINAPI D3D11CreateDeviceAndSwapChain(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software,
                                                        UINT flags, const D3D_FEATURE_LEVEL* levels, UINT levelCount,
                                                        UINT version, const DXGI_SWAP_CHAIN_DESC* description,
                                                        IDXGISwapChain** swapChain, ID3D11Device** device,
                                                        D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
  const auto create = HostFunction<PFN_D3D11_CREATE_DEVICE_AND_SWAP_CHAIN>("D3D11CreateDeviceAndSwapChain");
  if (create == nullptr) return E_FAIL;
  return Share(create(adapter, type, software, flags, levels, levelCount, version, description, swapChain, device,
                      level, context),
               device);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) StartRecording();
  if (reason == DLL_PROCESS_DETACH && processEnds != nullptr && recording != nullptr) {
    recording->AddLast(checker::EventKind::kDetached, HasConnectedPipe() ? 1 : 0);
  }
  return TRUE;
}
