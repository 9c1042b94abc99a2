#include "device_state.h"

namespace bench {

DeviceState::DeviceState(ID3D11Device* device, ID3D11DeviceContext* context, GroupState& group)
    : device_(device), context_(context), group_(group), alive_(CountAlive(group.counters.liveDevices)) {}

DeviceState::~DeviceState() {
  Devices().RemoveExpired(device_);
  Devices().RemoveExpired(context_);
}

// Never destroyed: devices may outlive the program's static objects.
WeakRegistry<const void*, DeviceState>& Devices() {
  static auto& devices = *new WeakRegistry<const void*, DeviceState>;
  return devices;
}

}  // namespace bench
