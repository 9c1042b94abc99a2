#include "console_win32.h"

#include <windows.h>

#include <conio.h>

#include <algorithm>

namespace ombrel::doctor {
namespace {

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

}  // namespace

std::wstring Wide(std::string_view utf8) {
  const int size = static_cast<int>(utf8.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string Utf8(std::wstring_view wide) {
  const int size = static_cast<int>(wide.size());
  const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), length, nullptr, nullptr);
  return utf8;
}

void Print(const std::string& text) {
  HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD written = 0;
  if (!IsConsole(out)) {
    WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    return;
  }
  // A console takes some 30,000 characters at a time.
  const std::wstring wide = Wide(text);
  for (std::size_t at = 0; at < wide.size(); at += 8192) {
    const auto count = static_cast<DWORD>(std::min<std::size_t>(8192, wide.size() - at));
    WriteConsoleW(out, wide.data() + at, count, &written, nullptr);
  }
}

bool OwnsItsWindow() {
  DWORD processes[2];
  return GetConsoleProcessList(processes, 2) == 1;
}

void WaitForKey() {
  if (IsConsole(GetStdHandle(STD_INPUT_HANDLE))) _getwch();
}

}  // namespace ombrel::doctor
