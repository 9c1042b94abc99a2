#pragma once

#include <atomic>
#include <cstddef>
#include <span>

namespace bench {

// Replaces methods of COM objects in their class's table, for all objects of the class in this process and for good.
// The table is changed in place, because wined3d asserts that an object's table pointer is its own.

// Where the method that `Replacement` stands in for is kept.
template <auto Replacement>
struct OriginalMethod {
  static inline std::atomic<void*> address{nullptr};
};

// The method that `Replacement` stands in for, to be called with the object first. `Replacement` is a function
// with the method's parameters after the object; it is in place only once this is known.
template <auto Replacement>
[[nodiscard]] decltype(Replacement) Original() {
  return reinterpret_cast<decltype(Replacement)>(OriginalMethod<Replacement>::address.load());
}

struct MethodPatch {
  std::size_t slot;
  void* replacement;
  std::atomic<void*>* original;
};

template <auto Replacement>
[[nodiscard]] MethodPatch Patch(std::size_t slot) {
  return {slot, reinterpret_cast<void*>(Replacement), &OriginalMethod<Replacement>::address};
}

// Does nothing for methods that are already replaced. False when memory cannot be written, or when the object's
// class is a second one whose methods differ from those that were replaced before. Any thread.
[[nodiscard]] bool PatchMethods(void* object, std::span<const MethodPatch> patches);

// Stores `value` at a place in read-only memory. False when the page cannot be made writable.
[[nodiscard]] bool WriteProtected(void** place, void* value);

}  // namespace bench
