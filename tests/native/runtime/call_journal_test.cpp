#include "runtime/call_journal.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/thread_id.h"
#include "test_files/scratch_folder.h"

namespace bench {
namespace {

using testing::ElementsAre;
using namespace std::chrono_literals;

nlohmann::ordered_json Nothing() { return nlohmann::ordered_json::object(); }

TEST(CallJournal, KeepsCallsInTheirOrderWithTheirThread) {
  CallJournal journal;
  journal.Append("A.One", {{"value", 1}});
  std::uint32_t otherThread = 0;
  std::thread([&] {
    otherThread = runtime::ThreadId();
    journal.Append("B.Two", Nothing());
  }).join();
  const auto entries = journal.Entries();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].arguments["value"], 1);
  EXPECT_EQ(entries[0].threadId, runtime::ThreadId());
  EXPECT_EQ(entries[1].threadId, otherThread);
  EXPECT_EQ(entries[1].sequence, entries[0].sequence + 1);
  EXPECT_GE(entries[1].ticks, entries[0].ticks);
}

TEST(CallJournal, CountsCallsThatItNoLongerKeeps) {
  CallJournal journal;
  journal.LimitMemory(2);
  for (int call = 0; call < 5; ++call) {
    journal.Append("A.One", {{"call", call}});
  }
  EXPECT_EQ(journal.Count("A.One"), 5U);
  ASSERT_EQ(journal.Entries().size(), 2U);
  EXPECT_EQ(journal.Entries().front().arguments["call"], 3);
}

TEST(CallJournal, LosesNoCallOfManyThreads) {
  CallJournal journal;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int call = 0; call < 250; ++call) {
        journal.Append("A.One", Nothing());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const auto entries = journal.Entries();
  ASSERT_EQ(entries.size(), 1000U);
  for (std::size_t index = 0; index < entries.size(); ++index) {
    ASSERT_EQ(entries[index].sequence, index);
  }
}

TEST(CallJournal, WaitingEndsWhenTheCallArrives) {
  CallJournal journal;
  std::thread caller([&] { journal.Append("A.One", Nothing()); });
  EXPECT_TRUE(journal.WaitUntil([&] { return journal.Count("A.One") == 1; }, 10s));
  caller.join();
}

TEST(CallJournal, WaitingEndsWithoutTheCallAfterItsTime) {
  CallJournal journal;
  journal.Append("A.One", Nothing());
  EXPECT_FALSE(journal.WaitUntil([&] { return journal.Count("A.One") == 2; }, 20ms));
}

TEST(CallJournal, RecordsOneJsonObjectALine) {
  const ombrel::test::ScratchFolder folder;
  {
    CallJournal journal;
    journal.RecordTo(folder.At("calls.jsonl"));
    journal.Append("A.One", {{"text", "two\nlines"}});
    journal.Append("A.Two", {{"text", "\xFF no UTF-8"}});
  }
  std::ifstream stream(folder.At("calls.jsonl"));
  std::vector<nlohmann::json> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(nlohmann::json::parse(line));
  }
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0]["arguments"]["text"], "two\nlines");
  EXPECT_EQ(lines[1]["call"], "A.Two");
  EXPECT_EQ(lines[1]["sequence"], 1);
}

}  // namespace
}  // namespace bench
