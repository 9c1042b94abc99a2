#include <atomic>
#include <cstdio>
#include <exception>

#include <windows.h>

#include "options.h"
#include "sharing/question.h"
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
  if (const auto code = bench::AnswerSharing(argc, argv)) return *code;
  bench::SimulationOptions options;
  if (const auto code = bench::ParseOptions(argc, argv, options)) {
    return *code;
  }
  try {
    std::printf("runtime: %s\n", bench::ChooseSharing(options.sharing).Text().c_str());
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
