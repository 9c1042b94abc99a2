#include <windows.h>
// These need the one above.
#include <mmsystem.h>
#include <shellapi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string>

#include "options.h"
#include "preview_session.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr DWORD kLongestEndMs = 3000;

std::atomic<bool> stopped = false;
std::atomic<bool> finished = false;

// Ctrl+C, a closed window, the end of the login session. The program is ended when this returns from the last two.
BOOL WINAPI Stop(DWORD) {
  stopped = true;
  for (DWORD waited = 0; !finished && waited < kLongestEndMs; waited += 10) Sleep(10);
  return TRUE;
}

// Poses are repeated at a fixed rate, which the system's ordinary timer is too coarse for.
struct FineTimer {
  FineTimer() { timeBeginPeriod(1); }
  ~FineTimer() { timeEndPeriod(1); }
};

void Run(const preview::Options& options) {
  const FineTimer fineTimer;
  preview::PreviewSession session(options);
  const std::string address = "http://localhost:" + std::to_string(session.Port()) + "/";
  std::printf("preview: %s\n", address.c_str());
  std::fflush(stdout);
  if (options.open) ShellExecuteA(nullptr, "open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  const auto begin = Clock::now();
  session.Run([&] {
    return stopped || (options.seconds > 0 && Clock::now() - begin > std::chrono::duration<double>(options.seconds));
  });
}

}  // namespace

int main(int argc, char** argv) {
  preview::Options options;
  if (const auto exitCode = preview::ParseOptions(argc, argv, options)) return *exitCode;
  SetConsoleCtrlHandler(Stop, TRUE);
  int exitCode = 0;
  try {
    Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "preview: %s\n", error.what());
    exitCode = 1;
  }
  finished = true;
  return exitCode;
}
