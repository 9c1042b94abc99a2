#pragma once

namespace bench {

// Whose device it is. Observers and counters are kept per group, so that what a module does
// under test is told apart from what the program around it does.
enum class DeviceGroup {
  kOwn,          // made by CreateSharingDevice
  kIntercepted,  // made by a module that InterceptModule was called for, or given to ShareTexturesOf
};

}  // namespace bench
