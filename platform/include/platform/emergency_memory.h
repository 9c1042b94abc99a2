#pragma once

namespace ombrel {

// Frees libstdc++'s emergency pool for exceptions: 72 KB that it takes when the library is loaded, and would leak each
// time that the library is unloaded. For one static object, made before all others of its file, so that nothing that
// may throw comes after its end.
class EmergencyMemory {
 public:
  EmergencyMemory() = default;
  ~EmergencyMemory();
  EmergencyMemory(const EmergencyMemory&) = delete;
  EmergencyMemory& operator=(const EmergencyMemory&) = delete;
};

}  // namespace ombrel
