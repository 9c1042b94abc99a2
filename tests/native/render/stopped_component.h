#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "link/ombrel_core.h"
#include "support/background.h"

namespace ombrel::test {

// For the thread sanitizer: a runtime's thread has made its calls, and nothing but the stop of the link synchronizes them
// with the destruction of the component.
template <typename Component>
void ExpectCallsToHaveLeft(OmbrelCore& core, std::unique_ptr<Component> component,
                           const std::function<void(Component&)>& calls) {
  std::atomic<bool> isOut{false};
  Background runtime([&, called = component.get()] {
    calls(*called);
    isOut.store(true, std::memory_order_relaxed);
  });
  ASSERT_TRUE(WaitUntil([&] { return isOut.load(std::memory_order_relaxed); }));
  core.StopLink();
  component.reset();
  EXPECT_TRUE(runtime.Finishes());
}

}  // namespace ombrel::test
