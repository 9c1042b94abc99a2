#pragma once

namespace ombrel {

// Gives back what the compiler's runtime keeps for exceptions in case that there is no memory left: it takes 72 KB when
// the library is loaded, and would leave them behind each time that the library is unloaded. For one static object, made
// before all others of its file, so that nothing that may throw comes after its end.
class EmergencyMemory {
 public:
  EmergencyMemory() = default;
  ~EmergencyMemory();
  EmergencyMemory(const EmergencyMemory&) = delete;
  EmergencyMemory& operator=(const EmergencyMemory&) = delete;
};

}  // namespace ombrel
