// A link that gets no thread, or no memory for one, starts afresh in the next round.
#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <new>

#include "pipe_client_fixture.h"

namespace {

// Threads of a link, in the order in which they are started.
constexpr int kConnectThread = 0, kWriter = 1, kReader = 2;
std::atomic<int> startsBeforeFailure = -1;  // negative: none fails

}  // namespace

// Interposed: the program's own symbol comes before the C library's and the sanitizer's.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                              void* argument) noexcept {
  static const auto next = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  if (startsBeforeFailure >= 0 && startsBeforeFailure-- == 0) return EAGAIN;
  return next(thread, attributes, body, argument);
}

namespace ombrel::test {
namespace {

class NoThreadTest : public PipeClientTest {
 protected:
  void StartWithout(int thread) {
    startsBeforeFailure = thread;
    client_.Start();
  }
  void ExpectBothPipesClosedAndOpenedAnew() {
    ASSERT_TRUE(companion_.Connect());
    EXPECT_TRUE(companion_.in.WaitForClientGone());
    EXPECT_TRUE(companion_.out.WaitForClientGone());
    EXPECT_FALSE(client_.IsConnected());
    EXPECT_TRUE(companion_.Connect());
    EXPECT_TRUE(WaitFor("up"));
    EXPECT_TRUE(companion_.SendPose(0, 0, 0, 1));
    EXPECT_TRUE(WaitFor("tracking"));
    EXPECT_EQ(listener_.journal.Count("up"), 1U);
  }
};

TEST_F(NoThreadTest, ThatWritesEndsTheConnection) {
  StartWithout(kWriter);
  ExpectBothPipesClosedAndOpenedAnew();
}

TEST_F(NoThreadTest, ThatReadsEndsTheConnection) {
  StartWithout(kReader);
  ExpectBothPipesClosedAndOpenedAnew();
}

TEST_F(NoThreadTest, ThatConnectsLeavesALinkThatCanBeStartedLater) {
  StartWithout(kConnectThread);
  EXPECT_TRUE(Connect());
}

TEST_F(NoThreadTest, NorMemoryGivesTheFirstPipeBack) {
  std::atomic<bool> throws = false;
  client_.AskBeforeConnecting([&throws] { return throws.exchange(false) ? throw std::bad_alloc() : true; });
  client_.Start();
  companion_.in.Offer();
  ASSERT_TRUE(companion_.in.Accept());
  throws = true;
  EXPECT_TRUE(companion_.in.WaitForClientGone());
  EXPECT_TRUE(companion_.Connect());
  EXPECT_TRUE(WaitFor("up"));
  client_.Stop();
}

}  // namespace
}  // namespace ombrel::test
