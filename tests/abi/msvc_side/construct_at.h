#pragma once

// Placement new without a library. Initialising by a call that returns a structure, the callee builds it in place.
struct At {
  void* address;
};

inline void* operator new(decltype(sizeof(0)), At at) noexcept { return at.address; }
