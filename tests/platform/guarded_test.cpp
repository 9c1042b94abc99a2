#include "platform/guarded.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ombrel::test {
namespace {

TEST(Guarded, RunsTheBody) {
  bool ran = false;
  Guarded([&] { ran = true; });
  EXPECT_TRUE(ran);
}

TEST(Guarded, LetsNoExceptionOut) {
  EXPECT_NO_THROW(Guarded([] { throw std::runtime_error("no"); }));
}

TEST(Guarded, LetsNothingElseOutEither) {
  EXPECT_NO_THROW(Guarded([] { throw 1; }));
}

TEST(Guarded, GivesTheBodysResult) {
  EXPECT_EQ(GuardedOr(1, [] { return 2; }), 2);
}

TEST(Guarded, GivesTheOtherResultWhenTheBodyThrew) {
  EXPECT_EQ(GuardedOr(1, []() -> int { throw std::runtime_error("no"); }), 1);
}

}  // namespace
}  // namespace ombrel::test
