// The wait for the end of a frame period.
#include <chrono>

#include "core_fixture.h"

namespace ombrel::test {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

Milliseconds TimeOf(const std::function<void()>& call) {
  const auto begin = Clock::now();
  call();
  return Clock::now() - begin;
}

Milliseconds TimeOfWait(FramePacer& pacer) {
  return TimeOf([&] { pacer.WaitForNextFrame(); });
}

class FramePacerTest : public testing::Test {
 protected:
  FramePacer pacer_;
};

TEST_F(FramePacerTest, FillsThePeriodThatBeganWithTheLastWait) {
  pacer_.SetFramesPerSecond(20);
  pacer_.WaitForNextFrame();
  EXPECT_GE(TimeOfWait(pacer_), Milliseconds(49.9));
}

TEST_F(FramePacerTest, WaitsOnlyForWhatIsLeftOfThePeriod) {
  pacer_.SetFramesPerSecond(10);
  // The period over again would take 140 each time; on a busy machine an attempt or two may.
  Milliseconds shortest(1000);
  for (int attempt = 0; attempt < 5; ++attempt) {
    pacer_.WaitForNextFrame();
    const Milliseconds both = TimeOf([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(40));
      pacer_.WaitForNextFrame();
    });
    EXPECT_GE(both, Milliseconds(99.9));
    shortest = std::min(shortest, both);
  }
  EXPECT_LT(shortest, Milliseconds(139));
}

TEST_F(FramePacerTest, SpinsToTheEndOfAVeryShortPeriod) {
  pacer_.SetFramesPerSecond(2000);
  pacer_.WaitForNextFrame();
  EXPECT_GE(TimeOfWait(pacer_), Milliseconds(0.4));
}

TEST_F(FramePacerTest, DoesNotWaitWhenThePeriodIsOver) {
  // Nothing was paced yet: the last wait ended at the beginning of time.
  pacer_.SetFramesPerSecond(1);
  EXPECT_LT(TimeOfWait(pacer_), Milliseconds(900));
}

TEST_F(FramePacerTest, LastsASecondAtMost) {
  pacer_.SetFramesPerSecond(0);
  pacer_.WaitForNextFrame();
  const Milliseconds waited = TimeOfWait(pacer_);
  EXPECT_GE(waited, Milliseconds(998));
  EXPECT_LT(waited, Milliseconds(3000));
}

TEST_F(FramePacerTest, DoesNotWaitOnceItIsClosed) {
  pacer_.SetFramesPerSecond(0);
  pacer_.WaitForNextFrame();
  pacer_.Close();
  EXPECT_LT(TimeOfWait(pacer_), Milliseconds(900));
}

class PacingWaitTest : public OmbrelCoreTest {
 protected:
  // Whether a wait of a second ends early when `release` is called. A machine that is busy just then may make it miss
  // the moment, but not five times.
  [[nodiscard]] bool EndsEarly(const std::function<void()>& prepare, const std::function<void()>& release) {
    for (int attempt = 0; attempt < 5; ++attempt) {
      prepare();
      core_->OnFramerateUpdated(0);
      core_->Pacer().WaitForNextFrame();
      Milliseconds waited{};
      Background wait([&] { waited = TimeOfWait(core_->Pacer()); });
      static_cast<void>(wait.StaysBlocked());
      release();
      if (!wait.Finishes()) return false;
      if (waited < Milliseconds(900)) return true;
    }
    return false;
  }
};

TEST_F(PacingWaitTest, EndsWhenTheLinkGoesDown) {
  PrepareOutput();
  SetUpCore();
  const auto connect = [this] {
    const std::size_t ups = listener_.journal.Count("up");
    EXPECT_TRUE(companion_.Connect() && listener_.journal.WaitForLine("up", ups + 1));
  };
  EXPECT_TRUE(EndsEarly(connect, [this] { companion_.Disconnect(); }));
}

TEST_F(PacingWaitTest, EndsWhenTheLinkStops) {
  const auto renew = [this] {
    core_ = std::make_unique<OmbrelCore>(std::make_unique<FakeRenderer>());
    core_->SetUp();
    core_->StartLink();
  };
  EXPECT_TRUE(EndsEarly(renew, [this] { core_->StopLink(); }));
}

// A link that is busy with outputs holds the stop up, but not who waits for a frame's time.
TEST_F(PacingWaitTest, EndsAtTheBeginningOfAStopThatTakesItsTime) {
  std::unique_ptr<Barrier> making;
  std::unique_ptr<Background> stop;
  const auto letGo = [&] {
    if (making) making->Open();
    stop.reset();
  };
  const auto renew = [&] {
    letGo();
    making = std::make_unique<Barrier>();
    made_ = std::make_unique<FakeRenderer>();
    renderer_ = made_.get();
    core_ = std::make_unique<OmbrelCore>(std::move(made_));
    PrepareOutput();
    renderer_->onCall = [&making](const std::string& line) {
      if (line == "CreateOutputTextures") making->Pass();
    };
    core_->SetUp();
    core_->StartLink();
    EXPECT_TRUE(companion_.Connect() && making->WaitForVisitor());
  };
  EXPECT_TRUE(EndsEarly(renew, [&] { stop = std::make_unique<Background>([this] { core_->StopLink(); }); }));
  letGo();
}

}  // namespace
}  // namespace ombrel::test
