#include <windows.h>
#include <mmsystem.h>

#include <cstdio>
#include <exception>

#include "options.h"
#include "session.h"
#include "sharing/question.h"
#include "sharing/sharing_device.h"

namespace {

// Poses are sent at a fixed rate, which the system's ordinary timer is too coarse for.
struct FineTimer {
  FineTimer() { timeBeginPeriod(1); }
  ~FineTimer() { timeEndPeriod(1); }
};

Microsoft::WRL::ComPtr<ID3D11Device> MakeDevice() {
  Microsoft::WRL::ComPtr<ID3D11Device> device;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
  if (FAILED(bench::CreateSharingDevice(&device, &context))) {
    throw std::runtime_error("there is no Direct3D 11 device; --no-frames runs without one");
  }
  return device;
}

}  // namespace

int main(int argc, char** argv) {
  if (const auto exitCode = bench::AnswerSharing(argc, argv)) return *exitCode;
  const FineTimer fineTimer;
  bench::Options options;
  if (const auto exitCode = bench::ParseOptions(argc, argv, options)) return *exitCode;
  try {
    if (options.readFrames) std::printf("companion: %s\n", bench::ChooseSharing(options.sharing).Text().c_str());
    bench::Session session(options, options.readFrames ? MakeDevice() : nullptr);
    return session.Run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "companion: %s\n", error.what());
    return 2;
  }
}
