#pragma once

#include <cstddef>

// Devices that implement the interfaces the way a MinGW build does when it takes the header as it was published. The
// tests of the binary boundary must find them wrong, or they would not find a driver wrong either.
namespace ombrel::test {

inline constexpr std::size_t kPlainDeviceRoom = 1024;

// A tracked device, built at the start of `room` (kPlainDeviceRoom bytes), whose pose has this x.
void* MakePlainDevice(void* room, double x);
// A display component, built likewise, that distorts nothing.
void* MakePlainDisplay(void* room);

}  // namespace ombrel::test
