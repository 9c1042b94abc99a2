#include "session.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_files/scratch_folder.h"

namespace ombrel::selftest {
namespace {

using Names = std::vector<std::string>;

SessionOutcome SoundSession() {
  SessionOutcome session;
  session.plan = {"direct", 90, 8};
  session.framesPerSecond = 89.7;
  session.presented = 720;
  session.received = session.matching = 718;
  session.posesSent = session.posesArrived = 1440;
  session.picturesWanted = session.pictures = 3;
  session.poseMs = {0.1, 0.2, 0.3};
  session.frameMs = {1, 2, 3};
  session.pacingErrorMs = {0.01, 0.1, 5};
  return session;
}

Names With(Result result, const SessionOutcome& session, bool isTimely = true) {
  Names names;
  for (const Verdict& verdict : Judge(session, isTimely)) {
    if (verdict.result == result) names.push_back(verdict.name);
  }
  return names;
}

// What is bad of a session that is sound but for one change.
template <typename Change>
Names Bad(Change change) {
  SessionOutcome session = SoundSession();
  change(session);
  return With(Result::kBad, session);
}

TEST(SessionTest, NothingIsWrongWithASoundOne) {
  EXPECT_EQ(With(Result::kBad, SoundSession()), Names());
  EXPECT_EQ(With(Result::kUnknown, SoundSession()), Names());
}

TEST(SessionTest, EachFigureThatIsWrongIsBad) {
  using S = SessionOutcome;
  EXPECT_EQ(Bad([](S& s) { s.framesPerSecond = 80; }), Names{"Frame rate"});
  EXPECT_EQ(Bad([](S& s) { s.received = 600; }), Names{"Frames received"});
  EXPECT_EQ(Bad([](S& s) { s.mismatching = 1; }), Names{"Pose beside each frame"});
  EXPECT_EQ(Bad([](S& s) { s.matching = 0; }), Names{"Pose beside each frame"});
  EXPECT_EQ(Bad([](S& s) { s.posesArrived = 1000; }), Names{"Poses at the runtime"});
  EXPECT_EQ(Bad([](S& s) { s.pictures = 2; }), Names{"Pictures"});
  EXPECT_EQ(Bad([](S& s) { s.complaints = {"a message of type 99"}; }), Names{"Companion's own checks"});
  EXPECT_EQ(Bad([](S& s) { s.poseMs = {20, 20}; }), Names{"Pose to runtime"});
  EXPECT_EQ(Bad([](S& s) { s.frameMs = {20, 20}; }), Names{"Frame to companion"});
  EXPECT_EQ(Bad([](S& s) { s.pacingErrorMs = {2, 2}; }), Names{"Pacing"});
}

TEST(SessionTest, WhereTheProcessorDrawsLatenessIsUnknownAndNothingElse) {
  SessionOutcome session = SoundSession();
  session.framesPerSecond = 20;
  session.received = 300;
  session.poseMs = session.frameMs = session.pacingErrorMs = {100};
  session.mismatching = 1;
  EXPECT_EQ(With(Result::kUnknown, session, false),
            (Names{"Frame rate", "Frames received", "Pose to runtime", "Frame to companion", "Pacing"}));
  EXPECT_EQ(With(Result::kBad, session, false), Names{"Pose beside each frame"});
}

TEST(SessionTest, PicturesThatAreMissingAreUnknownWhereThereWereTooFewFramesToSeeThem) {
  SessionOutcome session = SoundSession();
  session.pictures = 1;
  EXPECT_EQ(With(Result::kBad, session, false), Names{"Pictures"});
  session.presented = session.received = 12;
  EXPECT_EQ(With(Result::kBad, session, false), Names());
  EXPECT_EQ(With(Result::kBad, session), Names{"Pictures"});
}

TEST(SessionTest, NoFrameAtAllIsBadAnywhere) {
  SessionOutcome session = SoundSession();
  session.received = 0;
  EXPECT_EQ(With(Result::kBad, session, false), Names{"Frames received"});
}

TEST(SessionTest, OfTheVirtualDisplayNoPoseComesWithFrames) {
  SessionOutcome session = SoundSession();
  session.plan.mode = "virtual";
  session.matching = 0;
  EXPECT_EQ(With(Result::kBad, session), Names());
}

TEST(SessionTest, ASessionThatDidNotRunIsOneBadVerdict) {
  SessionOutcome session;
  session.plan = {"virtual", 60, 8};
  session.failure = "the runtime failed";
  EXPECT_EQ(With(Result::kBad, session), Names{"Session"});
  EXPECT_EQ(Judge(session, true).size(), 1U);
}

// Three frames at 100 a second of a counter of 1,000 ticks a second, the second of them 2 ms late.
class SessionFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    Write("runtime_frames.csv",
          Table("frame,qpc,qpc_frequency,presented_qpc,render_qpc,pose_qpc,missed,sync_wait",
                {"0,100,1000,103,90,51,0,1", "1,112,1000,113,105,63,2,0", "2,120,1000,121,115,63,0,0"}));
    Write("companion_frames.csv", Table("frame,qpc,pose_qpc", {"0,105,50", "1,114,60"}));
    Write("runtime_poses.csv", Table("pose,qpc,qpc_frequency", {"0,51,1000", "1,63,1000"}));
    Write("companion_poses.csv", Table("pose,qpc,qpc_frequency", {"0,50,1000", "1,60,1000", "2,70,1000"}));
    Write("runtime.json", R"({"framesPerSecondDue": 100})");
    Write("companion.json", R"({"matching": 2, "mismatching": 0, "namedPictures": 3, "failures": ["x"]})");
  }

  void Write(const char* name, const std::string& text) const { static_cast<void>(folder_.Write(name, text)); }
  // Rows with a pose of their own each.
  static std::string Table(const std::string& head, const std::vector<std::string>& rows) {
    std::string table = head + ",m00,m01,m02,m03,m10,m11,m12,m13,m20,m21,m22,m23\n";
    for (std::size_t i = 0; i < rows.size(); ++i)
      table += rows[i] + ",1,0,0," + std::to_string(i) + ",0,1,0,0,0,0,1,0\n";
    return table;
  }
  [[nodiscard]] SessionOutcome Read() const { return ReadOutcome({"direct", 100, 1}, folder_.At(".")); }

  const test::ScratchFolder folder_;
};

TEST_F(SessionFolderTest, CountsAreThoseOfBothSides) {
  const SessionOutcome session = Read();
  EXPECT_EQ(session.presented, 3U);
  EXPECT_EQ(session.received, 2U);
  EXPECT_EQ(session.dropped, 2);
  EXPECT_DOUBLE_EQ(session.framesPerSecond, 100);
  EXPECT_EQ(session.posesSent, 2U);  // the third after the runtime's last
  EXPECT_EQ(session.posesArrived, 2U);
  EXPECT_EQ(session.matching, 2U);
  EXPECT_EQ(session.pictures, 3U);
  EXPECT_EQ(session.complaints, Names{"x"});
}

TEST_F(SessionFolderTest, TimesAreMilliseconds) {
  const SessionOutcome session = Read();
  EXPECT_EQ(session.poseMs, (std::vector<double>{1, 3}));
  EXPECT_EQ(session.frameMs, (std::vector<double>{5, 2}));
  EXPECT_EQ(session.syncWaitMs, (std::vector<double>{1, 0, 0}));
  EXPECT_EQ(session.pacingErrorMs, (std::vector<double>{2, 2}));
  EXPECT_FALSE(session.isFrameMsByTime);
}

TEST_F(SessionFolderTest, AFileThatIsNotThereIsAnError) {
  folder_.Remove("companion_frames.csv");
  EXPECT_ANY_THROW(static_cast<void>(Read()));
}

}  // namespace
}  // namespace ombrel::selftest
