#include <atomic>
#include <cstdio>
#include <exception>

#include <windows.h>

#include "options.h"
#include "simulation.h"

namespace {

std::atomic<bench::Simulation*> running = nullptr;

BOOL WINAPI OnConsoleEvent(DWORD) {
  if (bench::Simulation* simulation = running; simulation != nullptr) {
    simulation->Stop();
    return TRUE;
  }
  return FALSE;
}

}  // namespace

int main(int argc, char** argv) {
  bench::SimulationOptions options;
  if (const auto code = bench::ParseOptions(argc, argv, options)) {
    return *code;
  }
  try {
    bench::Simulation simulation(options);
    running = &simulation;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
    const int code = simulation.Run();
    running = nullptr;
    return code;
  } catch (const std::exception& error) {
    running = nullptr;
    std::fprintf(stderr, "runtime: %s\n", error.what());
    return 1;
  }
}
