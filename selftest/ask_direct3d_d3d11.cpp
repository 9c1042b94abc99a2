#include "ask_direct3d.h"

#include <d3d11.h>
#include <wrl/client.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

#include "base/child_process.h"
#include "layer_pictures.h"
#include "render/headset_renderer.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace ombrel::selftest {
namespace {

using Microsoft::WRL::ComPtr;

constexpr DWORD kTurnMs = 10'000;
constexpr DWORD kShortMs = 50;
// Whose turn it is, of the two processes.
enum Turn : UINT64 { kOurs = 0, kTheirs = 1, kOursAgain = 2, kTheirsForGood = 3 };

Code CodeOf(HRESULT result) { return static_cast<Code>(result); }

struct Side {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  ComPtr<ID3D11Texture2D> texture;
  ComPtr<IDXGIKeyedMutex> mutex;

  Side() { bench::RequireOk(bench::CreateSharingDevice(&device, &context), "making a device"); }
  void Make() {
    const auto description =
        bench::TextureDescription(64, 64, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
    mutex.Reset();
    bench::RequireOk(device->CreateTexture2D(&description, nullptr, texture.ReleaseAndGetAddressOf()),
                     "making a texture with a keyed mutex");
    FindMutex();
  }
  void Open(std::uint32_t handle) {
    texture = bench::OpenTexture(*device.Get(), handle);
    if (!texture) throw std::runtime_error("a shared texture cannot be opened");
    FindMutex();
  }
  void FindMutex() {
    mutex = bench::FindKeyedMutex(texture.Get());
    if (!mutex) throw std::runtime_error("a texture has no keyed mutex");
  }
  [[nodiscard]] Code Acquire(UINT64 key, DWORD timeoutMs) const { return CodeOf(mutex->AcquireSync(key, timeoutMs)); }
  [[nodiscard]] Code Release(UINT64 key) const { return CodeOf(mutex->ReleaseSync(key)); }
};

class Questions {
 public:
  Questions(Direct3DAnswers& answers, std::filesystem::path program)
      : answers_(answers), program_(std::move(program)) {}

  void AskAll() {
    Side maker, opener;
    answers_.featureLevel = maker.device->GetFeatureLevel();
    AskDevices(maker, opener);
    AskProcesses(maker);
    AskFormats(opener);
    for (const LayerPicture& picture : DrawLayerPictures()) {
      const int difference = DifferenceInside(picture.image, ExpectedPicture(picture.scene));
      answers_.pictures.push_back({picture.scene.name, difference, picture.scene.tolerance});
    }
  }

 private:
  void Note(const char* rule, Code code) { answers_.rules.push_back({rule, code}); }

  void AskDevices(Side& maker, Side& opener) {
    constexpr UINT64 kKey = 7, kWrongKey = 8;
    maker.Make();
    opener.Open(bench::SharedHandle(maker.texture.Get()));
    Note("first", maker.Acquire(0, 0));
    Note("second_acquire", maker.Acquire(0, 0));
    Note("held", opener.Acquire(0, 0));
    Note("foreign_release", opener.Release(0));
    static_cast<void>(maker.Release(kKey));
    Note("wrong_key", opener.Acquire(kWrongKey, kShortMs));
    Note("released_key", opener.Acquire(kKey, kTurnMs));
    static_cast<void>(opener.Release(0));
  }

  void AskProcesses(Side& maker) {
    maker.Make();
    const std::uint32_t handle = bench::SharedHandle(maker.texture.Get());
    bench::ChildProcess other(program_, {"--take-turns", std::to_string(handle), "--sharing", answers_.sharing},
                              bench::ChildProcess::Output::kPipe);
    bench::RequireOk(maker.mutex->AcquireSync(kOurs, kTurnMs), "taking the keyed mutex");
    bench::RequireOk(maker.mutex->ReleaseSync(kTheirs), "giving the keyed mutex to another process");
    Note("after_process", maker.Acquire(kOursAgain, kTurnMs));
    bench::RequireOk(maker.mutex->ReleaseSync(kTheirsForGood), "giving the keyed mutex to another process");
    char held = 0;
    DWORD read = 0;
    if (ReadFile(other.OutputEnd(), &held, 1, &read, nullptr) == 0 || read != 1) {
      throw std::runtime_error("another process does not take its turn");
    }
    Note("held_by_process", maker.Acquire(kTheirsForGood, kShortMs));
    other.Kill();
    Note("abandoned", maker.Acquire(kTheirsForGood, kTurnMs));
  }

  struct Format {
    const char* name;
    DXGI_FORMAT format, drawnAs;
    bool isRequired;
  };

  void AskFormats(const Side& runtime) {
    constexpr Format kFormats[] = {
        {"R8G8B8A8_UNORM", DXGI_FORMAT_R8G8B8A8_UNORM, DXGI_FORMAT_R8G8B8A8_UNORM, true},
        {"R8G8B8A8_UNORM_SRGB", DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, true},
        {"R8G8B8A8_TYPELESS", DXGI_FORMAT_R8G8B8A8_TYPELESS, DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, true},
        {"B8G8R8A8_UNORM", DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_B8G8R8A8_UNORM, true},
        {"B8G8R8A8_TYPELESS", DXGI_FORMAT_B8G8R8A8_TYPELESS, DXGI_FORMAT_B8G8R8A8_UNORM_SRGB, true},
        {"B8G8R8A8_UNORM_SRGB", DXGI_FORMAT_B8G8R8A8_UNORM_SRGB, DXGI_FORMAT_B8G8R8A8_UNORM_SRGB, false},
        {"B8G8R8X8_UNORM", DXGI_FORMAT_B8G8R8X8_UNORM, DXGI_FORMAT_B8G8R8X8_UNORM, false},
        {"R10G10B10A2_UNORM", DXGI_FORMAT_R10G10B10A2_UNORM, DXGI_FORMAT_R10G10B10A2_UNORM, false},
        {"R16G16B16A16_FLOAT", DXGI_FORMAT_R16G16B16A16_FLOAT, DXGI_FORMAT_R16G16B16A16_FLOAT, false},
    };
    const auto driver = MakeHeadsetRenderer();
    if (!bench::InterceptModule(GetModuleHandleA(nullptr))) throw std::runtime_error("no import of D3D11CreateDevice");
    driver->CreateDevice();
    for (const Format& format : kFormats) answers_.formats.push_back(Ask(*driver, runtime, format));
  }

  // As the driver makes textures for a runtime.
  static FormatAnswer Ask(IHeadsetRenderer& driver, const Side& runtime, const Format& format) {
    constexpr auto kNotMade = static_cast<Code>(E_FAIL);
    FormatAnswer answer{format.name, kNotMade, kNotMade, kNotMade, format.isRequired};
    const SwapTexture made = driver.CreateSwapTexture({64, 64, static_cast<std::uint32_t>(format.format), 1});
    if (made.handle == 0) return answer;
    answer.made = 0;
    ComPtr<ID3D11Texture2D> texture;
    const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(made.handle));
    answer.opened = CodeOf(runtime.device->OpenSharedResource(handle, IID_PPV_ARGS(&texture)));
    if (answer.opened != 0) return answer;
    const D3D11_RENDER_TARGET_VIEW_DESC view{
        .Format = format.drawnAs, .ViewDimension = D3D11_RTV_DIMENSION_TEXTURE2D, .Texture2D = {.MipSlice = 0}};
    ComPtr<ID3D11RenderTargetView> target;
    answer.drawn = CodeOf(runtime.device->CreateRenderTargetView(texture.Get(), &view, &target));
    return answer;
  }

  Direct3DAnswers& answers_;
  const std::filesystem::path program_;
};

}  // namespace

Direct3DAnswers AskDirect3D(const bench::SharingDecision& sharing, bool isForced,
                            const std::filesystem::path& program) {
  Direct3DAnswers answers;
  answers.sharing = bench::NameOf(sharing.sharing);
  answers.sharingReason = sharing.reason;
  answers.isForced = isForced;
  try {
    Questions(answers, program).AskAll();
  } catch (const std::exception& error) {
    answers.failure = error.what();
  }
  return answers;
}

int TakeTurns(std::uint32_t handle) {
  Side side;
  side.Open(handle);
  if (side.Acquire(kTheirs, kTurnMs) != 0 || side.Release(kOursAgain) != 0) return 1;
  if (side.Acquire(kTheirsForGood, kTurnMs) != 0) return 1;
  std::putchar('h');
  std::fflush(stdout);
  Sleep(6 * kTurnMs);  // killed meanwhile
  return 1;
}

}  // namespace ombrel::selftest
