#include "handle_values.h"

#include "named_mapping.h"

#include <atomic>

namespace bench {

namespace {

constexpr std::uint32_t kSequenceMask = 0x0FFFFFFF;

// Hundredths of a second: faster than textures are made in the long run, so that a new sequence
// starts after the previous one's end.
std::uint32_t SequenceStart() {
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  const auto ticks = (static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
  return static_cast<std::uint32_t>(ticks / 100'000) & kSequenceMask;
}

std::atomic<std::uint64_t>& SharedSequence() {
  static const auto mapping = NamedMapping::CreateOrOpen("Local\\BenchSharing.Sequence", sizeof(std::uint64_t));
  static std::atomic<std::uint64_t> onlyHere{0};
  if (!mapping) return onlyHere;
  return *reinterpret_cast<std::atomic<std::uint64_t>*>(mapping->Data());
}

}  // namespace

std::uint32_t NextHandleValue() {
  std::atomic<std::uint64_t>& sequence = SharedSequence();
  std::uint64_t untouched = 0;
  sequence.compare_exchange_strong(untouched, SequenceStart() + 1ULL);
  const auto number = static_cast<std::uint32_t>(sequence.fetch_add(1)) & kSequenceMask;
  return 0x40000002U | (number << 2);
}

}  // namespace bench
