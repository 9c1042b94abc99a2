#include "platform/emergency_memory.h"

#include <exception>

#ifdef __GLIBCXX__
namespace __gnu_cxx {
// The runtime has it for those who look for leaks, and declares it nowhere.
void __freeres();  // NOLINT(bugprone-reserved-identifier,readability-identifier-naming)
}  // namespace __gnu_cxx
#endif

namespace ombrel {

EmergencyMemory::~EmergencyMemory() {
#ifdef __GLIBCXX__
  __gnu_cxx::__freeres();
#endif
}

}  // namespace ombrel
