#include "sharing/question.h"

#include "sharing/sharing_device.h"
#include "sharing/textures.h"

#include "base/child_process.h"

#include <array>
#include <charconv>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

using Microsoft::WRL::ComPtr;

namespace {

constexpr const char* kArgument = "--answer-sharing";
constexpr DWORD kTurnMs = 10'000;
constexpr std::uint32_t kProcessMs = 30'000;
constexpr UINT kSide = 16;

// Whose turn it is is the key, and what was drawn last its colour.
enum Turn : UINT64 { kMaker = 0, kSecondDevice = 1, kSecondProcess = 2, kMakerAgain = 3 };
constexpr std::array<float, 3> kDrawn{0.2F, 0.4F, 0.6F};
constexpr std::array<std::uint8_t, 3> kSeen{51, 102, 153};

// A device and its view of the texture.
struct Side {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  ComPtr<ID3D11Texture2D> texture;
  ComPtr<IDXGIKeyedMutex> mutex;

  explicit Side(Sharing kind) { RequireOk(CreateDeviceOf(kind, &device, &context), "making a device"); }

  void Make() {
    const auto description =
        TextureDescription(kSide, kSide, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
    RequireOk(device->CreateTexture2D(&description, nullptr, &texture), "making a texture with a keyed mutex");
    FindMutex();
  }
  void Open(std::uint32_t handle) {
    texture = OpenTexture(*device.Get(), handle);
    if (!texture) throw std::runtime_error("a handle cannot be opened");
    FindMutex();
  }
  void FindMutex() {
    mutex = FindKeyedMutex(texture.Get());
    if (!mutex) throw std::runtime_error("a texture has no keyed mutex");
  }

  void Draw(std::size_t colour) const {
    ComPtr<ID3D11RenderTargetView> target;
    RequireOk(device->CreateRenderTargetView(texture.Get(), nullptr, &target), "making a render target");
    const std::array<float, 4> rgba{kDrawn[colour], kDrawn[colour], kDrawn[colour], 1.0F};
    context->ClearRenderTargetView(target.Get(), rgba.data());
  }
  void Require(std::size_t colour, const char* what) const {
    const std::vector<std::uint8_t> bytes = ReadTexture(texture.Get());
    bool isSeen = !bytes.empty();
    for (std::size_t i = 0; i < bytes.size(); ++i) isSeen = isSeen && (i % 4 == 3 || bytes[i] == kSeen[colour]);
    if (!isSeen) throw std::runtime_error(what);
  }
  void Acquire(Turn turn, const char* what) const { RequireOk(mutex->AcquireSync(turn, kTurnMs), what); }
  void Release(Turn turn, const char* what) const { RequireOk(mutex->ReleaseSync(turn), what); }
};

void TakeTurnsOfDevices(const Side& maker, const Side& opener) {
  maker.Acquire(kMaker, "taking a keyed mutex");
  if (opener.mutex->AcquireSync(kMaker, 0) != static_cast<HRESULT>(WAIT_TIMEOUT)) {
    throw std::runtime_error("a keyed mutex has two holders");
  }
  maker.Draw(0);
  maker.Release(kSecondDevice, "giving a keyed mutex back");
  opener.Acquire(kSecondDevice, "taking the keyed mutex on a second device");
  opener.Require(0, "a second device does not see what the first drew");
  opener.Draw(1);
  opener.Release(kSecondProcess, "giving the keyed mutex back on a second device");
}

void TakeTurnOfProcess(Sharing kind, std::uint32_t handle) {
  Side side(kind);
  side.Open(handle);
  side.Acquire(kSecondProcess, "taking the keyed mutex in a second process");
  side.Require(1, "a second process does not see what the first drew");
  side.Draw(2);
  side.Release(kMakerAgain, "giving the keyed mutex back in a second process");
}

// Nothing when it does not start, or does not end: why is of no use to who reads the answer, and would name the place.
std::optional<std::uint32_t> RunTurn(const std::filesystem::path& program, Sharing kind, std::uint32_t handle) {
  try {
    return ChildProcess(program, {kArgument, NameOf(kind), std::to_string(handle)}).WaitForEnd(kProcessMs);
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

void Ask(Sharing kind, const std::filesystem::path& program) {
  Side maker(kind), opener(kind);
  maker.Make();
  const std::uint32_t handle = SharedHandle(maker.texture.Get());
  if (handle == 0) throw std::runtime_error("a texture has no handle");
  opener.Open(handle);
  TakeTurnsOfDevices(maker, opener);
  if (RunTurn(program, kind, handle) != 0U) throw std::runtime_error("a second process cannot take its turn");
  maker.Acquire(kMakerAgain, "taking the keyed mutex after a second process");
  maker.Require(2, "the first process does not see what the second drew");
}

std::filesystem::path OwnProgram() {
  std::wstring path(32'768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

}  // namespace

SharingAnswer AskSharing(Sharing kind, const std::filesystem::path& program) {
  try {
    Ask(kind, program);
    return {};
  } catch (const std::exception& error) {
    return {error.what()};
  }
}

SharingAnswer AskMachine() { return AskSharing(Sharing::kOwn, OwnProgram()); }

std::optional<int> AnswerSharing(int argc, char** argv) {
  if (argc != 4 || std::string_view(argv[1]) != kArgument) return std::nullopt;
  const Sharing kind = std::string_view(argv[2]) == NameOf(Sharing::kOwn) ? Sharing::kOwn : Sharing::kStandIn;
  std::uint32_t handle = 0;
  const std::string_view digits = argv[3];
  std::from_chars(digits.data(), digits.data() + digits.size(), handle);
  try {
    TakeTurnOfProcess(kind, handle);
    return 0;
  } catch (const std::exception&) {
    return 1;
  }
}

}  // namespace bench
