// A library that crashes while it is loaded, as an abort does: the loader would catch an exception.
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) {
  TerminateProcess(GetCurrentProcess(), 0xC0000409);
  return TRUE;
}
