// A companion that lives up to a given point and then waits to be killed. It sets the event EVENTS_arrived when it is
// there, and EVENTS_went_on if the driver went past the point. Ends with its standard input in any case.
#include <windows.h>

#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>

#include "companion/controller_record.h"
#include "companion/pipe_server.h"
#include "companion/tracking_update.h"
#include "sharing/sharing_device.h"
#include "sharing/sharing_option.h"
#include "sharing/textures.h"
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
  const companion::Bytes pose = companion::EncodeQuaternionAndPosition({}, {1, 2, 3});
  if (pipes.WaitForDriver(kPatienceMs) && pipes.Write(std::span(pose).first(count))) Arrive();
}

// One of the driver's textures is held.
void HoldingTexture() {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  companion::PipeServer pipes;
  if (bench::CreateSharingDevice(&device, &context) != S_OK || !pipes.Open()) return;
  const auto message = pipes.Next(kPatienceMs);
  const auto info = message ? companion::DecodeFrameSharingInfo(message->message.payload) : std::nullopt;
  if (!info) return;
  const auto texture = bench::OpenTexture(*device.Get(), info->sharedHandles[0]);
  const auto mutex = texture ? bench::FindKeyedMutex(texture.Get()) : nullptr;
  if (mutex && mutex->AcquireSync(0, kPatienceMs) == S_OK) Arrive();
}

// A controller is known, and nobody reads what the driver writes to it.
void NotReading() {
  SilentPipes pipes(SilentPipes::Which::kBoth, 0);
  companion::ControllerRecord record;
  record.controllerId = 7;
  if (pipes.WaitForDriver(kPatienceMs) && pipes.Write(companion::EncodeControllerUpdate(record))) Arrive();
}

const std::map<std::string, std::function<void()>> kPoints{
    {"idle", Arrive},
    {"between_pipes", BetweenPipes},
    {"in_header", [] { InMessage(5); }},
    {"in_payload", [] { InMessage(20); }},
    {"holding_texture", HoldingTexture},
    {"not_reading", NotReading},
};

void EndWithInput() {
  while (std::getchar() != EOF) {
  }
  TerminateProcess(GetCurrentProcess(), 1);
}

}  // namespace

int main(int argc, char** argv) {
  std::string point;
  std::optional<bench::Sharing> sharing = bench::Sharing::kStandIn;
  CLI::App app("A companion that lives up to a point and then waits to be killed");
  app.add_option("point", point, "where it stops")->required()->check(CLI::IsMember(kPoints));
  app.add_option("events", events, "what the names of its events begin with")->required();
  bench::AddSharingOption(app, sharing);
  CLI11_PARSE(app, argc, argv);
  bench::ChooseSharing(sharing);
  std::thread(EndWithInput).detach();
  kPoints.at(point)();
  return 1;
}
