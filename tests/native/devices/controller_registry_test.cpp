#include "devices/controller_registry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace ombrel::test {
namespace {

class ControllerRegistryTest : public testing::Test {
 protected:
  ControllerDevice& Add(std::uint32_t id) {
    return registry_.Add(id, std::make_unique<ControllerDevice>(nullptr, nullptr, static_cast<std::int32_t>(id)));
  }

  ControllerRegistry registry_;
};

TEST_F(ControllerRegistryTest, KnowsNobodyAtFirst) { EXPECT_EQ(registry_.Find(0), nullptr); }

TEST_F(ControllerRegistryTest, FindsWhatWasAddedUnderAnyId) {
  for (const std::uint32_t id : {0U, 7U, 0xFFFFFFFFU}) {
    const ControllerDevice& added = Add(id);
    EXPECT_EQ(registry_.Find(id), &added);
  }
}

TEST_F(ControllerRegistryTest, DoesNotFindAnotherId) {
  Add(7);
  EXPECT_EQ(registry_.Find(8), nullptr);
}

// Ids that count up, that are far apart, and that differ in their high bits alone.
TEST_F(ControllerRegistryTest, TellsAThousandApart) {
  std::vector<const ControllerDevice*> added;
  for (const std::uint32_t factor : {1U, 1'000'003U, 1U << 20U}) {
    registry_.Retire();
    added.clear();
    for (std::uint32_t i = 0; i < 1000; ++i) added.push_back(&Add(i * factor));
    for (std::uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(registry_.Find(i * factor), added[i]);
    EXPECT_EQ(registry_.Find(1000 * factor + 1), nullptr);
  }
}

TEST_F(ControllerRegistryTest, KnowsNobodyOnceRetired) {
  ControllerDevice& retired = Add(7);
  registry_.Retire();
  EXPECT_EQ(retired.ControllerId(), 7) << "the runtime may still ask it";
  EXPECT_EQ(registry_.Find(7), nullptr);
  EXPECT_EQ(registry_.Find(0), nullptr);
}

}  // namespace
}  // namespace ombrel::test
