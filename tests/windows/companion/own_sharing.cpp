// Supplies sharing beneath the program that this is linked into, where the system's Direct3D has none: the program's own
// import of D3D11CreateDevice is answered by the stand-in before main begins.
#include <windows.h>

#include "sharing/sharing_device.h"

namespace {

const bool kIsSupplied = bench::InterceptModule(GetModuleHandleA(nullptr));

}  // namespace
