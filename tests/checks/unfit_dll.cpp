// A DLL that breaks every rule for the driver's: see CMakeLists.txt. Shows that the checks can fail.
#include <windows.h>

#include <winsock2.h>
#include <string>

extern "C" __declspec(dllexport) void* HmdDriverFactory(const char* interfaceName, int* returnCode) {
  *returnCode = static_cast<int>(std::string(interfaceName).size()) + WSAGetLastError();
  return nullptr;
}

extern "C" __declspec(dllexport) int Other() { return 1; }
