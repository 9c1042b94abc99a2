// Does nothing, under whatever name it was copied to: for those who look processes up by name.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "CLI/CLI.hpp"

namespace {

constexpr int kEnded = 42;

}  // namespace

int main(int argc, char** argv) {
  double seconds = 60;
  CLI::App app("Does nothing until its standard input closes or its time is over, and ends with 42");
  app.add_option("seconds", seconds, "How long")->capture_default_str();
  CLI11_PARSE(app, argc, argv);
  std::puts("idle");
  std::fflush(stdout);
  std::thread([] {
    while (std::getchar() != EOF) {
    }
    std::_Exit(kEnded);
  }).detach();
  Sleep(static_cast<DWORD>(seconds * 1000));
  std::_Exit(kEnded);
}
