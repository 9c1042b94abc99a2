// A companion that lives up to a given point and then waits to be killed: Ombrel.exe POINT EVENTS PARENT. It sets the
// event EVENTS_arrived when it is there, and EVENTS_went_on if the driver went past the point. Ends with the process
// PARENT in any case.
#include <windows.h>

#include <wrl/client.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>

#include <d3d11.h>

#include "companion/controller_record.h"
#include "companion/pipe_server.h"
#include "companion/tracking_update.h"
#include "sharing/sharing_device.h"
#include "silent_pipes.h"

namespace {

using bench::scenarios::SilentPipes;
using Microsoft::WRL::ComPtr;

constexpr std::uint32_t kPatienceMs = 60'000;

std::string events;

void Signal(const char* which) {
  const bench::OwnedHandle event(OpenEventA(EVENT_MODIFY_STATE, FALSE, (events + which).c_str()));
  SetEvent(event.Get());
}

void Arrive() {
  Signal("_arrived");
  Sleep(INFINITE);
}

// The driver has opened the one pipe and not yet the other.
void BetweenPipes() {
  SilentPipes pipes;
  if (!pipes.WaitForFirstPipe(kPatienceMs)) return;
  Signal("_arrived");
  if (pipes.WaitForDriver(kPatienceMs)) Signal("_went_on");
  Sleep(INFINITE);
}

// `count` bytes of a pose are sent.
void InMessage(std::size_t count) {
  SilentPipes pipes;
  const bench::Bytes pose = bench::EncodeQuaternionAndPosition({}, {1, 2, 3});
  if (pipes.WaitForDriver(kPatienceMs) && pipes.Write(std::span(pose).first(count))) Arrive();
}

// One of the driver's textures is held.
void HoldingTexture() {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  bench::PipeServer pipes({});
  if (bench::CreateSharingDevice(&device, &context) != S_OK || !pipes.Open()) return;
  const auto message = pipes.Next(kPatienceMs);
  const auto info = message ? bench::DecodeFrameSharingInfo(message->message.payload) : std::nullopt;
  if (!info) return;
  ComPtr<ID3D11Texture2D> texture;
  ComPtr<IDXGIKeyedMutex> mutex;
  const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(info->sharedHandles[0]));
  if (device->OpenSharedResource(handle, IID_PPV_ARGS(&texture)) != S_OK || texture.As(&mutex) != S_OK) return;
  if (mutex->AcquireSync(0, kPatienceMs) == S_OK) Arrive();
}

// A controller is known, and nobody reads what the driver writes to it.
void NotReading() {
  SilentPipes pipes(SilentPipes::Which::kBoth, 0);
  bench::ControllerRecord record;
  record.controllerId = 7;
  if (pipes.WaitForDriver(kPatienceMs) && pipes.Write(bench::EncodeControllerUpdate(record))) Arrive();
}

const std::map<std::string, std::function<void()>> kPoints{
    {"idle", Arrive},
    {"between_pipes", BetweenPipes},
    {"in_header", [] { InMessage(5); }},
    {"in_payload", [] { InMessage(20); }},
    {"holding_texture", HoldingTexture},
    {"not_reading", NotReading},
};

void EndWith(DWORD parentId) {
  const bench::OwnedHandle parent(OpenProcess(SYNCHRONIZE, FALSE, parentId));
  WaitForSingleObject(parent.Get(), INFINITE);
  TerminateProcess(GetCurrentProcess(), 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 2;
  const auto point = kPoints.find(argv[1]);
  if (point == kPoints.end()) return 2;
  events = argv[2];
  std::thread(EndWith, static_cast<DWORD>(std::strtoul(argv[3], nullptr, 10))).detach();
  point->second();
  return 1;
}
