#include "doctor/binary_files.h"

#include "doctor/paths.h"

namespace ombrel::doctor {
namespace {

constexpr std::uint32_t kModuleListStream = 4;
constexpr std::uint32_t kExceptionStream = 6;
constexpr std::size_t kModuleSize = 108;

// Little-endian, or nothing when the file ends before.
template <typename Number>
std::optional<Number> NumberAt(std::string_view bytes, std::size_t position) {
  if (position > bytes.size() || bytes.size() - position < sizeof(Number)) return std::nullopt;
  std::uint64_t number = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;) {
    number = number << 8U | static_cast<unsigned char>(bytes[position + i]);
  }
  return static_cast<Number>(number);
}

auto U16(std::string_view bytes, std::size_t position) { return NumberAt<std::uint16_t>(bytes, position); }
auto U32(std::string_view bytes, std::size_t position) { return NumberAt<std::uint32_t>(bytes, position); }
auto U64(std::string_view bytes, std::size_t position) { return NumberAt<std::uint64_t>(bytes, position); }

// Where a stream of that kind begins.
std::optional<std::size_t> FindStream(std::string_view dump, std::uint32_t kind) {
  if (!dump.starts_with("MDMP")) return std::nullopt;
  const auto count = U32(dump, 8);
  const auto directory = U32(dump, 12);
  if (!count || !directory) return std::nullopt;
  for (std::size_t i = 0; i < *count; ++i) {
    const std::size_t entry = *directory + i * 12;
    const auto type = U32(dump, entry);
    if (!type) return std::nullopt;
    if (*type == kind) return U32(dump, entry + 8);
  }
  return std::nullopt;
}

// A counted text of 16-bit units; what is not ASCII becomes a question mark.
std::string TextAt(std::string_view dump, std::size_t position) {
  std::string text;
  const std::size_t bytes = U32(dump, position).value_or(0);
  for (std::size_t i = 0; i + 1 < bytes; i += 2) {
    const auto unit = U16(dump, position + 4 + i);
    if (!unit) break;
    text += *unit < 0x80 ? static_cast<char>(*unit) : '?';
  }
  return text;
}

struct Range {
  std::uint64_t start, size;
};

std::optional<Range> FindModule(std::string_view dump, std::string_view name) {
  const auto list = FindStream(dump, kModuleListStream);
  if (!list) return std::nullopt;
  const std::size_t count = U32(dump, *list).value_or(0);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t module = *list + 4 + i * kModuleSize;
    const auto start = U64(dump, module);
    const auto size = U32(dump, module + 8);
    const auto text = U32(dump, module + 20);
    if (!start || !size || !text) return std::nullopt;
    if (EqualIgnoringCase(Leaf(TextAt(dump, *text)), name)) return Range{*start, *size};
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::uint16_t> ProcessorOf(std::string_view library) {
  const auto header = U32(library, 0x3C);
  if (!library.starts_with("MZ") || !header || *header > library.size()) return std::nullopt;
  if (!library.substr(*header).starts_with(std::string_view("PE\0\0", 4))) return std::nullopt;
  return U16(library, std::size_t{*header} + 4);
}

std::optional<CrashSite> FindCrash(std::string_view dump, std::string_view module) {
  const auto range = FindModule(dump, module);
  if (!range) return std::nullopt;
  const auto exception = FindStream(dump, kExceptionStream);
  const auto address = exception ? U64(dump, *exception + 24) : std::nullopt;
  if (!address || *address < range->start || *address - range->start >= range->size) return CrashSite{};
  return CrashSite{true, *address - range->start};
}

}  // namespace ombrel::doctor
