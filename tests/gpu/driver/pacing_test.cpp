// That a period lasts as long as it should by the system's own clock and sleep; the arithmetic and the ends of a wait
// are the native tests'.
#include <algorithm>

#include "base/clock.h"
#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using bench::NowTicks;
using bench::TicksToMilliseconds;

// The same wait, made by the test: the busier the machine, the longer both.
class OwnPacing {
 public:
  explicit OwnPacing(double periodMs) : periodMs_(periodMs) {}

  void Wait() {
    const double remaining = periodMs_ - SinceLast();
    if (remaining - 1.0 > 0.0) Sleep(static_cast<DWORD>(remaining - 1.0));
    while (SinceLast() < periodMs_) {
    }
    last_ = NowTicks();
  }

 private:
  [[nodiscard]] double SinceLast() const { return TicksToMilliseconds(NowTicks() - last_); }

  const double periodMs_;
  std::int64_t last_ = 0;
};

template <class Wait>
void AddPeriods(Wait wait, std::vector<double>& periods) {
  constexpr int kPeriods = 8;
  wait();  // what was before does not count
  std::int64_t last = NowTicks();
  for (int i = 0; i < kPeriods; ++i) {
    wait();
    const std::int64_t now = NowTicks();
    periods.push_back(TicksToMilliseconds(now - last));
    last = now;
  }
}

class PacingTest : public DirectTest {
 protected:
  void SetUp() override { Start(); }

  // The least disturbed of the periods are alike, and on the whole they are alike as far as a busy machine lets them be.
  void ExpectPeriodOf(std::uint32_t framesPerSecond) {
    SCOPED_TRACE(framesPerSecond);
    OwnPacing own(1000.0 / framesPerSecond);
    std::vector<double> driver, ours;
    for (int round = 0; round < 4; ++round) {
      AddPeriods([this] { Direct().PostPresent(); }, driver);
      AddPeriods([&] { own.Wait(); }, ours);
    }
    std::ranges::sort(driver);
    std::ranges::sort(ours);
    EXPECT_NEAR(driver.front() / ours.front(), 1.0, 0.03);
    EXPECT_NEAR(driver[driver.size() / 2] / ours[ours.size() / 2], 1.0, 0.3);
  }
};

TEST_F(PacingTest, APeriodLastsAsLongAsTheSameWaitMadeHere) {
  ExpectPeriodOf(60);  // until a rate is known
  for (const std::uint32_t framesPerSecond : {72u, 90u, 2000u}) {
    ASSERT_TRUE(SendFrameRate(framesPerSecond));
    ExpectPeriodOf(framesPerSecond);
  }
}

}  // namespace
}  // namespace ombrel::test
