#include "runtime/call_recorder.h"

#include <gtest/gtest.h>

namespace bench {
namespace {

TEST(CallRecorder, ThrowsAsOftenAsScriptedAndStillWritesDown) {
  CallRecorder recorder;
  recorder.ThrowFrom("A.One", 2);
  EXPECT_THROW(recorder.Enter("A.One"), ScriptedFault);
  EXPECT_NO_THROW(recorder.Enter("A.Two"));
  EXPECT_THROW(recorder.Enter("A.One"), ScriptedFault);
  EXPECT_NO_THROW(recorder.Enter("A.One"));
  EXPECT_EQ(recorder.Journal().Count("A.One"), 3U);
}

}  // namespace
}  // namespace bench
