#include "preview/hub.h"

#include <gmock/gmock.h>

namespace preview {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RecordingListener : public Listener {
 public:
  void OnHead(const HeadMessage& head) override { heads.push_back(head.number); }
  void OnRate(std::uint32_t rate) override { rates.push_back(rate); }
  void OnRecenter() override { ++recenters; }
  void OnController(const ControllerMessage& controller) override { controllers.push_back(controller.id); }
  void OnControllersGone() override { ++controllersGone; }

  std::vector<std::uint32_t> heads, rates, controllers;
  int recenters = 0;
  int controllersGone = 0;
};

class RecordingChannel : public Channel {
 public:
  void SendText(const std::string& text) override { texts.push_back(text); }
  void SendFrame(std::shared_ptr<const std::vector<std::uint8_t>> bytes) override { frames.push_back(bytes->front()); }

  std::vector<std::string> texts;
  std::vector<std::uint8_t> frames;  // their numbers
};

class HubTest : public testing::Test {
 protected:
  bool Head(Channel& page, int number) {
    return hub_.Receive(page, R"({"type":"head","orientation":[0,0,0,1],"number":)" + std::to_string(number) + "}");
  }
  void Publish(std::uint32_t number) {
    Frame frame;
    frame.number = number;
    hub_.Publish(frame);
  }
  bool Acknowledge(Channel& page, int frame) {
    return hub_.Receive(page, R"({"type":"received","frame":)" + std::to_string(frame) + "}");
  }

  RecordingListener listener_;
  Hub hub_{listener_};
  RecordingChannel first_, second_;
};

TEST_F(HubTest, APageGetsTheNextFrameWhenItHasAcknowledgedTheLast) {
  hub_.Join(first_, Role::Headset);
  Publish(1);
  EXPECT_FALSE(hub_.WantsFrame());
  Publish(2);
  EXPECT_TRUE(Acknowledge(first_, 1));
  EXPECT_TRUE(hub_.WantsFrame());
  Publish(3);
  EXPECT_THAT(first_.frames, ElementsAre(1, 3));
}

TEST_F(HubTest, ASlowPageDoesNotSlowAnother) {
  hub_.Join(first_, Role::Headset);
  hub_.Join(second_, Role::Headset);
  for (std::uint32_t number = 1; number <= 3; ++number) {
    Publish(number);
    EXPECT_TRUE(Acknowledge(second_, static_cast<int>(number)));
  }
  EXPECT_THAT(first_.frames, ElementsAre(1));
  EXPECT_THAT(second_.frames, ElementsAre(1, 2, 3));
}

TEST_F(HubTest, AnAcknowledgementOfAnotherFrameIsRefused) {
  hub_.Join(first_, Role::Headset);
  EXPECT_FALSE(Acknowledge(first_, 0));
  Publish(1);
  EXPECT_FALSE(Acknowledge(first_, 2));
}

TEST_F(HubTest, NothingIsCompressedWithoutAPage) {
  EXPECT_FALSE(hub_.WantsFrame());
  hub_.Join(first_, Role::Controllers);
  EXPECT_FALSE(hub_.WantsFrame());
}

TEST_F(HubTest, TheOldestPageLeadsAndTheNextOneFollowsIt) {
  hub_.Join(first_, Role::Headset);
  hub_.Join(second_, Role::Headset);
  EXPECT_TRUE(Head(first_, 1));
  EXPECT_TRUE(Head(second_, 2));
  EXPECT_THAT(second_.texts.back(), HasSubstr(R"("leads":false)"));
  hub_.Leave(first_);
  EXPECT_THAT(second_.texts.back(), HasSubstr(R"("leads":true)"));
  EXPECT_TRUE(Head(second_, 3));
  EXPECT_THAT(listener_.heads, ElementsAre(1, 3));
}

TEST_F(HubTest, APageSaysWhatItsRoleAllows) {
  hub_.Join(first_, Role::Headset);
  hub_.Join(second_, Role::Controllers);
  const auto controller = R"({"type":"controller","id":1,"pressed":[],"touched":[],"trackpad":[0,0],"trigger":0})";
  EXPECT_FALSE(hub_.Receive(first_, controller));
  EXPECT_TRUE(hub_.Receive(second_, controller));
  EXPECT_FALSE(Head(second_, 1));
  EXPECT_THAT(listener_.heads, IsEmpty());
  EXPECT_THAT(listener_.controllers, ElementsAre(1));
}

TEST_F(HubTest, ControllersAreGoneWithTheLastOfTheirPages) {
  hub_.Join(first_, Role::Controllers);
  hub_.Join(second_, Role::Controllers);
  hub_.Leave(first_);
  EXPECT_EQ(listener_.controllersGone, 0);
  hub_.Leave(second_);
  hub_.Leave(second_);
  EXPECT_EQ(listener_.controllersGone, 1);
}

TEST_F(HubTest, PulsesGoToTheControllersPages) {
  hub_.Join(first_, Role::Headset);
  hub_.Join(second_, Role::Controllers);
  const auto before = first_.texts.size();
  hub_.Pulse(2, 34464);
  EXPECT_EQ(first_.texts.size(), before);
  EXPECT_THAT(second_.texts.back(), HasSubstr("34.464"));
}

TEST_F(HubTest, EveryPageHearsOfTheDriver) {
  hub_.Join(first_, Role::Headset);
  EXPECT_THAT(first_.texts.back(), HasSubstr(R"("driver":false)"));
  hub_.SetDriver(true);
  EXPECT_THAT(first_.texts.back(), HasSubstr(R"("driver":true)"));
}

TEST_F(HubTest, OfEachRoleThereIsRoomForEight) {
  std::vector<RecordingChannel> pages(Hub::kMostPages);
  for (auto& page : pages) hub_.Join(page, Role::Headset);
  EXPECT_FALSE(hub_.HasRoom(Role::Headset));
  EXPECT_TRUE(hub_.HasRoom(Role::Controllers));
}

}  // namespace
}  // namespace preview
