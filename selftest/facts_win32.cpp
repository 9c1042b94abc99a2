#include "facts_win32.h"

#include <windows.h>
// windows.h must come first.
#include <mmsystem.h>
#include <powrprof.h>

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <thread>

#include "base/clock.h"
#include "console_win32.h"
#include "doctor/paths.h"
#include "machine_win32.h"

namespace ombrel::selftest {
namespace {

using doctor::Utf8;

template <typename Function>
Function* FindInNtdll(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)));
}

std::string ReadText(const wchar_t* key, const wchar_t* value) {
  std::array<wchar_t, 256> text{};
  DWORD bytes = sizeof(text);
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, key, value, RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
  return status == ERROR_SUCCESS ? Utf8(text.data()) : std::string();
}

// What the system says of itself to programs that do not name a version in their manifest is an old one.
std::string WindowsVersion() {
  constexpr const wchar_t* kKey = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  if (const auto get = FindInNtdll<LONG WINAPI(OSVERSIONINFOW*)>("RtlGetVersion"); get != nullptr) get(&version);
  DWORD revision = 0, bytes = sizeof(revision);
  RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"UBR", RRF_RT_REG_DWORD, nullptr, &revision, &bytes);
  const std::string name = ReadText(kKey, L"DisplayVersion");
  return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
         std::to_string(version.dwBuildNumber) + "." + std::to_string(revision) +
         (name.empty() ? "" : " (" + name + ")");
}

std::uint64_t MemoryMiB() {
  MEMORYSTATUSEX memory{};
  memory.dwLength = sizeof(memory);
  return GlobalMemoryStatusEx(&memory) != 0 ? memory.ullTotalPhys >> 20U : 0;
}

std::string PowerPlan() {
  GUID* plan = nullptr;
  if (PowerGetActiveScheme(nullptr, &plan) != ERROR_SUCCESS || plan == nullptr) return {};
  std::array<wchar_t, 128> name{};
  DWORD bytes = sizeof(name);
  auto* const buffer = reinterpret_cast<UCHAR*>(name.data());
  const DWORD status = PowerReadFriendlyName(nullptr, plan, nullptr, nullptr, buffer, &bytes);
  LocalFree(plan);
  return status == ERROR_SUCCESS ? Utf8(name.data()) : std::string();
}

// In a window that is never shown.
std::string OpenGlRenderer() {
  HWND window = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  HDC place = GetDC(window);
  PIXELFORMATDESCRIPTOR format{};
  format.nSize = sizeof(format);
  format.nVersion = 1;
  format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
  SetPixelFormat(place, ChoosePixelFormat(place, &format), &format);
  HGLRC context = wglCreateContext(place);
  wglMakeCurrent(place, context);
  const auto* const name = context == nullptr ? nullptr : reinterpret_cast<const char*>(glGetString(GL_RENDERER));
  const std::string renderer = name == nullptr ? "" : name;
  wglMakeCurrent(nullptr, nullptr);
  wglDeleteContext(context);
  ReleaseDC(window, place);
  DestroyWindow(window);
  return renderer;
}

double FinestTimerMs() {
  ULONG coarsest = 0, finest = 0, current = 0;
  const auto query = FindInNtdll<LONG WINAPI(ULONG*, ULONG*, ULONG*)>("NtQueryTimerResolution");
  if (query == nullptr || query(&coarsest, &finest, &current) != 0) return 0;
  return finest / 10'000.0;
}

double LongestWaitMs() {
  constexpr int kWaits = 50;
  timeBeginPeriod(1);
  std::int64_t longest = 0;
  for (int wait = 0; wait < kWaits; ++wait) {
    const std::int64_t begin = bench::NowTicks();
    Sleep(1);
    longest = std::max(longest, bench::NowTicks() - begin);
  }
  timeEndPeriod(1);
  return bench::TicksToMilliseconds(longest);
}

}  // namespace

MachineFacts LookAtMachine() {
  MachineFacts facts;
  facts.windows = WindowsVersion();
  if (const auto wine = FindInNtdll<const char*()>("wine_get_version"); wine != nullptr) {
    facts.isWine = true;
    facts.openGl = OpenGlRenderer();
    facts.windows = std::string("none: Wine ") + wine() + " says " + facts.windows;
  }
  facts.processor = ReadText(LR"(HARDWARE\DESCRIPTION\System\CentralProcessor\0)", L"ProcessorNameString");
  facts.processors = std::thread::hardware_concurrency();
  facts.memoryMiB = MemoryMiB();
  facts.adapters = doctor::WindowsMachine().Adapters();
  facts.timerMs = FinestTimerMs();
  facts.sleptMs = LongestWaitMs();
  facts.powerPlan = PowerPlan();
  return facts;
}

std::vector<std::string> RunningPrograms() {
  std::vector<std::string> running;
  for (const ProcessEntry& process : doctor::WindowsMachine().Processes()) {
    for (const char* name : {"vrserver.exe", "vrmonitor.exe", "Ombrel.exe"}) {
      if (doctor::EqualIgnoringCase(process.executableName, name)) running.push_back(process.executableName);
    }
  }
  return running;
}

}  // namespace ombrel::selftest
