#pragma once

#include <string>
#include <vector>

#include "companion/controller_record.h"
#include "support/link_test.h"

namespace ombrel::test {

// Controllers that a companion tells of over the real pipes.
class ControllerFixture : public LinkTest {
 protected:
  static constexpr std::uint32_t kIndex = 1;

  void SetUp() override { Connect(); }

  // Returns when the record has been taken in.
  void SendRecord(const bench::ControllerRecord& record) {
    Send(bench::EncodeControllerUpdate(record));
    Fence();
  }
  // A record without any input.
  void Announce(std::uint32_t id) {
    bench::ControllerRecord record;
    record.controllerId = id;
    SendRecord(record);
  }
  // The controller that was announced last, with what the runtime saw of its activation forgotten.
  vr::ITrackedDeviceServerDriver& Activate(std::uint32_t index = kIndex) {
    vr::ITrackedDeviceServerDriver& controller = *runtime.Host().Added().back().driver;
    EXPECT_EQ(controller.Activate(index), vr::VRInitError_None);
    updatesSeen_ = runtime.Input().Updates().size();
    return controller;
  }
  vr::ITrackedDeviceServerDriver& AddActive(std::uint32_t id, std::uint32_t index = kIndex) {
    Announce(id);
    return Activate(index);
  }

  // The input updates since the last call of this, or since the activation, as "path value".
  std::vector<std::string> NewUpdates() {
    std::vector<std::string> texts;
    const auto updates = runtime.Input().Updates();
    for (; updatesSeen_ < updates.size(); ++updatesSeen_) {
      const bench::InputUpdate& update = updates[updatesSeen_];
      EXPECT_EQ(update.timeOffset, 0.0);
      const bool boolean = update.kind == bench::InputKind::Boolean;
      texts.push_back(update.path + ' ' +
                      (boolean ? (update.boolValue ? "true" : "false") : std::to_string(update.scalarValue)));
    }
    return texts;
  }

 private:
  std::size_t updatesSeen_ = 0;
};

}  // namespace ombrel::test
