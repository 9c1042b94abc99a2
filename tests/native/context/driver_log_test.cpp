#include "context/driver_log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "runtime/fake_driver_log.h"

namespace ombrel::test {
namespace {

using Lines = std::vector<std::string>;

class DriverLogTest : public testing::Test {
 protected:
  ~DriverLogTest() override { ClearLogSink(); }

  bench::CallRecorder recorder_;
  bench::FakeDriverLog sink_{recorder_};
};

TEST_F(DriverLogTest, DropsMessagesWhileThereIsNoSink) {
  Log("nobody %d\n", 1);
  SetLogSinkIfNone(&sink_);
  EXPECT_EQ(sink_.Lines().size(), 0U);
}

TEST_F(DriverLogTest, PassesTheTextOnAsItStands) {
  SetLogSinkIfNone(&sink_);
  Log("Preparing HMD, mode %d\n", 2);
  Log("HMD activated with id %d \n", -1);
  Log("no line end, %s and %f", "text", 72.0);
  EXPECT_EQ(sink_.Lines(),
            (Lines{"Preparing HMD, mode 2\n", "HMD activated with id -1 \n", "no line end, text and 72.000000"}));
}

TEST_F(DriverLogTest, KeepsTheSinkThatIsThere) {
  bench::FakeDriverLog other(recorder_);
  SetLogSinkIfNone(&sink_);
  SetLogSinkIfNone(&other);
  Log("here\n");
  EXPECT_EQ(sink_.Lines().size(), 1U);
  EXPECT_EQ(other.Lines().size(), 0U);
}

TEST_F(DriverLogTest, ReachesNothingOnceTheSinkIsCleared) {
  SetLogSinkIfNone(&sink_);
  ClearLogSink();
  Log("late\n");
  EXPECT_EQ(sink_.Lines().size(), 0U);
}

TEST_F(DriverLogTest, TakesAnotherSinkOnceTheFirstIsCleared) {
  bench::FakeDriverLog other(recorder_);
  SetLogSinkIfNone(&sink_);
  ClearLogSink();
  SetLogSinkIfNone(&other);
  Log("there\n");
  EXPECT_EQ(other.Lines(), Lines{"there\n"});
}

TEST_F(DriverLogTest, PassesTheLongestMessageWholeAndCutsALongerOne) {
  SetLogSinkIfNone(&sink_);
  Log("%s", std::string(1023, 'a').c_str());
  Log("%s", std::string(5000, 'b').c_str());
  ASSERT_EQ(sink_.Lines().size(), 2U);
  EXPECT_EQ(sink_.Lines()[0], std::string(1023, 'a'));
  EXPECT_LT(sink_.Lines()[1].size(), 1024U);
}

TEST_F(DriverLogTest, OutlivesASinkThatThrows) {
  recorder_.ThrowFrom("IVRDriverLog.Log");
  SetLogSinkIfNone(&sink_);
  EXPECT_NO_THROW(Log("lost\n"));
}

TEST_F(DriverLogTest, KeepsTheMessagesOfSeveralThreadsApart) {
  SetLogSinkIfNone(&sink_);
  constexpr int kMessages = 200;
  const auto log = [](int thread) {
    for (int i = 0; i < kMessages; ++i) Log("thread %d\n", thread);
  };
  std::thread one(log, 1), two(log, 2);
  one.join();
  two.join();
  EXPECT_EQ(std::ranges::count(sink_.Lines(), "thread 1\n"), 200);
  EXPECT_EQ(std::ranges::count(sink_.Lines(), "thread 2\n"), 200);
}

TEST_F(DriverLogTest, MayLoseItsSinkWhileOthersLog) {
  std::thread logger([] {
    for (int i = 0; i < 2000; ++i) Log("still\n");
  });
  for (int i = 0; i < 200; ++i) {
    SetLogSinkIfNone(&sink_);
    ClearLogSink();
  }
  logger.join();
  EXPECT_TRUE(std::ranges::all_of(sink_.Lines(), [](const std::string& line) { return line == "still\n"; }));
}

}  // namespace
}  // namespace ombrel::test
