#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What the doctor reads of programs and of crash dumps. Both are taken from anywhere: no offset in them is trusted.
namespace ombrel::doctor {

inline constexpr std::uint16_t kMachineX64 = 0x8664;

// The processor that a library (a PE file, of which the first kilobytes are enough) is made for. Nothing when it is none.
[[nodiscard]] std::optional<std::uint16_t> ProcessorOf(std::string_view library);

struct CrashSite {
  bool isInModule = false;   // the exception's address lies in the module
  std::uint64_t offset = 0;  // from the module's start, when it does
};

// Where a minidump's process crashed with regard to a module. Nothing when the module was not loaded, or when this is no
// minidump.
[[nodiscard]] std::optional<CrashSite> FindCrash(std::string_view dump, std::string_view module);

}  // namespace ombrel::doctor
