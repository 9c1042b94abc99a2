// A process that the doctor may find under whatever name it is started: it does nothing and is ended by who started it.
#include <windows.h>

int main() {
  Sleep(120'000);
  return 0;
}
