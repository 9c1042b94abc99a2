#include <algorithm>
#include <future>

#include "direct_fixture.h"

namespace ombrel::test {
namespace {

std::int64_t Now() {
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  return counter.QuadPart;
}

double ToMs(std::int64_t counts) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(counts) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

// The same wait, made by the test: the busier the machine, the longer both.
class OwnPacing {
 public:
  explicit OwnPacing(double periodMs) : periodMs_(periodMs) {}

  void Wait() {
    const double remaining = periodMs_ - ToMs(Now() - last_);
    if (remaining - 1.0 > 0.0) Sleep(static_cast<DWORD>(remaining - 1.0));
    while (ToMs(Now() - last_) < periodMs_) {
    }
    last_ = Now();
  }

 private:
  const double periodMs_;
  std::int64_t last_ = 0;
};

template <class Wait>
void AddPeriods(Wait wait, std::vector<double>& periods) {
  constexpr int kPeriods = 8;
  wait();  // what was before does not count
  std::int64_t last = Now();
  for (int i = 0; i < kPeriods; ++i) {
    wait();
    const std::int64_t now = Now();
    periods.push_back(ToMs(now - last));
    last = now;
  }
}

// The least disturbed of the periods are alike, and on the whole they are alike as far as a busy machine lets them be.
void ExpectAlike(std::vector<double> driver, std::vector<double> ours) {
  std::ranges::sort(driver);
  std::ranges::sort(ours);
  EXPECT_NEAR(driver.front() / ours.front(), 1.0, 0.03);
  EXPECT_NEAR(driver[driver.size() / 2] / ours[ours.size() / 2], 1.0, 0.3);
}

class PacingTest : public DirectTest {
 protected:
  void SetUp() override { Start(); }
};

class PeriodTest : public PacingTest {
 protected:
  void ExpectPeriodOf(std::uint32_t framesPerSecond);
};

void PeriodTest::ExpectPeriodOf(std::uint32_t framesPerSecond) {
  ASSERT_TRUE(SendFrameRate(framesPerSecond));
  const double periodMs = 1000.0 / framesPerSecond;
  OwnPacing own(periodMs);
  std::vector<double> driver, ours;
  for (int round = 0; round < 4; ++round) {
    AddPeriods([this] { Direct().PostPresent(); }, driver);
    AddPeriods([&] { own.Wait(); }, ours);
  }
  ExpectAlike(driver, ours);
}

TEST_F(PeriodTest, LastsAsLongAsTheSameWaitMadeHere) {
  for (const std::uint32_t framesPerSecond : {60u, 72u, 90u}) {
    SCOPED_TRACE(framesPerSecond);
    ExpectPeriodOf(framesPerSecond);
  }
}

TEST_F(PeriodTest, CanBeShorterThanAnySleep) { ExpectPeriodOf(2000); }

TEST_F(PacingTest, NoTimeIsAddedWhenThePeriodIsOverAlready) {
  ASSERT_TRUE(SendFrameRate(20));
  double shortest = 1e9;
  for (int i = 0; i < 5; ++i) {
    Sleep(60);
    const std::int64_t begin = Now();
    Direct().PostPresent();
    shortest = std::min(shortest, ToMs(Now() - begin));
  }
  EXPECT_LT(shortest, 25.0);  // half a period, and a frame rate that the machine can be late for
}

TEST_F(PacingTest, ThePeriodIsThatOf60FramesUntilARateIsKnown) {
  OwnPacing own(1000.0 / 60.0);
  std::vector<double> driver, ours;
  for (int round = 0; round < 4; ++round) {
    AddPeriods([this] { Direct().PostPresent(); }, driver);
    AddPeriods([&] { own.Wait(); }, ours);
  }
  ExpectAlike(driver, ours);
}

// Both wait for a second; only the driver hears of the companion's end.
TEST_F(PacingTest, AWaitEndsWhenTheCompanionGoes) {
  ASSERT_TRUE(SendFrameRate(1));
  Direct().PostPresent();
  auto driver = std::async(std::launch::async, [this] { Direct().PostPresent(); });
  auto ours = std::async(std::launch::async, [] { Sleep(1000); });
  companion->ClosePipes();
  ASSERT_EQ(driver.wait_for(kPatience), std::future_status::ready);
  EXPECT_EQ(ours.wait_for(milliseconds(0)), std::future_status::timeout);
}

TEST_F(PacingTest, ARateOfZeroWaitsNoLongerThanASecond) {
  ASSERT_TRUE(SendFrameRate(0));
  OwnPacing own(1000.0);
  const auto time = [](auto wait) {
    wait();
    const std::int64_t begin = Now();
    wait();
    return ToMs(Now() - begin);
  };
  const double driver = time([this] { Direct().PostPresent(); });
  EXPECT_NEAR(driver / time([&] { own.Wait(); }), 1.0, 0.2);
}

}  // namespace
}  // namespace ombrel::test
