#include "floor/start_floor.h"

#include <windows.h>
// windows.h must come first.
#include <d3d11.h>
#include <dxgi.h>
#include <mmsystem.h>
#include <tlhelp32.h>
#include <wrl/client.h>

#include <array>
#include <stdexcept>

#include "floor/thread_time.h"

namespace bench::floor {
namespace {

using Microsoft::WRL::ComPtr;

void ListProcesses() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32First(snapshot, &entry); more != 0;) more = Process32Next(snapshot, &entry);
  CloseHandle(snapshot);
}

void RaiseTimer() {
  TIMECAPS capabilities{};
  timeGetDevCaps(&capabilities, sizeof(capabilities));
  timeBeginPeriod(capabilities.wPeriodMin);
}

DWORD WINAPI LookForPipe(void*) {
  const HANDLE pipe =
      CreateFileA(R"(\\.\pipe\OmbrelBenchNoPipe)", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (pipe != INVALID_HANDLE_VALUE) CloseHandle(pipe);
  return 0;
}

// What the companion finds by its name, and the thread.
struct Shared {
  Shared()
      : mapping(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 128, "OmbrelBenchBlock")),
        view(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 128)),
        thread(CreateThread(nullptr, 0, LookForPipe, nullptr, 0, nullptr)),
        mutexes{CreateMutexA(nullptr, FALSE, "OmbrelBenchBlock0"), CreateMutexA(nullptr, FALSE, "OmbrelBenchBlock1")} {}
  ~Shared() {
    WaitForSingleObject(thread, INFINITE);
    UnmapViewOfFile(view);
    for (const HANDLE handle : {mapping, thread, mutexes[0], mutexes[1]}) CloseHandle(handle);
  }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  HANDLE mapping;
  void* view;
  HANDLE thread;
  std::array<HANDLE, 2> mutexes;
};

// Returns the nanoseconds that the factory took.
std::int64_t ListAdapters() {
  const std::int64_t begin = WallNanoseconds();
  ComPtr<IDXGIFactory> factory;
  const HRESULT result = CreateDXGIFactory(IID_PPV_ARGS(&factory));
  const std::int64_t taken = WallNanoseconds() - begin;
  if (FAILED(result)) return taken;
  ComPtr<IDXGIAdapter> adapter;
  for (UINT i = 0; SUCCEEDED(factory->EnumAdapters(i, adapter.ReleaseAndGetAddressOf())); ++i) {
    DXGI_ADAPTER_DESC desc{};
    adapter->GetDesc(&desc);
  }
  return taken;
}

struct Drawing {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  std::array<ComPtr<ID3D11VertexShader>, 2> vertexShaders;
  std::array<ComPtr<ID3D11PixelShader>, 2> pixelShaders;

  // Returns the nanoseconds that the device took.
  std::int64_t Make(const Shaders& shaders) {
    const std::int64_t begin = WallNanoseconds();
    D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &device, nullptr,
                      &context);
    const std::int64_t taken = WallNanoseconds() - begin;
    if (!device) return taken;
    for (std::size_t i = 0; i < 2; ++i) {
      device->CreateVertexShader(shaders.vertex.data(), shaders.vertex.size(), nullptr, &vertexShaders[i]);
      device->CreatePixelShader(shaders.pixel.data(), shaders.pixel.size(), nullptr, &pixelShaders[i]);
    }
    return taken;
  }
};

}  // namespace

std::int64_t TimeBareStart(const std::filesystem::path& library, const Shaders& shaders) {
  const std::int64_t begin = WallNanoseconds();
  const HMODULE module = LoadLibraryW(library.wstring().c_str());
  if (module == nullptr) throw std::runtime_error("cannot load " + library.string());
  static_cast<void>(GetProcAddress(module, "Nothing"));
  ListProcesses();
  RaiseTimer();
  const Shared shared;
  const std::int64_t factory = ListAdapters();
  Drawing drawing;
  const std::int64_t device = drawing.Make(shaders);
  const std::int64_t taken = WallNanoseconds() - begin - factory - device;
  FreeLibrary(module);
  return taken;
}

}  // namespace bench::floor
