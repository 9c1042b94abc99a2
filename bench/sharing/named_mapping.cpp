#include "named_mapping.h"

#include <cstdint>
#include <utility>

namespace bench {

namespace {

OwnedHandle CreatePageFileMapping(const std::string& name, std::size_t bytes) {
  const auto size = static_cast<std::uint64_t>(bytes);
  return OwnedHandle(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, static_cast<DWORD>(size >> 32),
                                        static_cast<DWORD>(size), name.c_str()));
}

}  // namespace

std::optional<NamedMapping> NamedMapping::CreateNew(const std::string& name, std::size_t bytes) {
  SetLastError(ERROR_SUCCESS);
  OwnedHandle mapping = CreatePageFileMapping(name, bytes);
  if (GetLastError() == ERROR_ALREADY_EXISTS) return std::nullopt;
  return Map(std::move(mapping));
}

std::optional<NamedMapping> NamedMapping::CreateOrOpen(const std::string& name, std::size_t bytes) {
  return Map(CreatePageFileMapping(name, bytes));
}

std::optional<NamedMapping> NamedMapping::Open(const std::string& name) {
  return Map(OwnedHandle(OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, name.c_str())));
}

std::optional<NamedMapping> NamedMapping::Map(OwnedHandle mapping) {
  if (!mapping) return std::nullopt;
  void* view = MapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0);
  if (view == nullptr) return std::nullopt;
  return NamedMapping(std::move(mapping), static_cast<std::byte*>(view));
}

NamedMapping::NamedMapping(OwnedHandle mapping, std::byte* view) : mapping_(std::move(mapping)), view_(view) {}

NamedMapping::NamedMapping(NamedMapping&& other) noexcept
    : mapping_(std::move(other.mapping_)), view_(std::exchange(other.view_, nullptr)) {}

NamedMapping::~NamedMapping() {
  if (view_ != nullptr) UnmapViewOfFile(view_);
}

}  // namespace bench
