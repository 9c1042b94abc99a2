// Does nothing, under whatever name it was copied to: for those who look processes up by name.
// Ends with 42 when its standard input closes or the given number of seconds has passed (default 60).
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

constexpr int kEnded = 42;

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 60;
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
