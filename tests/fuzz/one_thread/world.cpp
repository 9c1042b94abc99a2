#include "one_thread/world.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace ombrel::test {

World& TheWorld() {
  static World world;
  return world;
}

void GiveUp(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

void World::Reset(std::vector<std::vector<std::byte>> connections) {
  if (!pending_.empty()) GiveUp("a thread of an earlier run was never joined");
  connections_ = std::move(connections);
  written.assign(connections_.size(), {});
  readToItsEnd.assign(connections_.size(), false);
  opened_ = 0;
  over_ = true;
  monitorEnds = 0;
  now = 0;
}

void World::RunThreads() {
  while (!pending_.empty()) {
    const Pending next = std::move(pending_.front());
    pending_.pop_front();
    next.body();
  }
}

void World::Start(const void* thread, std::function<void()> body) { pending_.push_back({thread, std::move(body)}); }

void World::Join(const void* thread) {
  const auto found = std::ranges::find(pending_, thread, &Pending::thread);
  if (found == pending_.end()) return;
  const Pending joined = std::move(*found);
  pending_.erase(found);
  joined.body();
}

bool World::OpenNext() {
  if (opened_ == connections_.size()) {
    onNobodyThere();
    return false;
  }
  ++opened_;
  offset_ = 0;
  reads_ = 0;
  over_ = false;
  return true;
}

bool World::Read(std::span<std::byte> space, std::size_t& got) {
  got = 0;
  if (over_) return false;
  if (space.empty()) GiveUp("a read into no space");
  ++reads_;
  beforeRead();
  const std::span<const std::byte> rest = std::span(connections_[opened_ - 1]).subspan(offset_);
  got = std::min({rest.size(), space.size(), nextPiece()});
  std::ranges::copy(rest.first(got), space.begin());
  offset_ += got;
  over_ = readToItsEnd[opened_ - 1] = rest.empty();
  return !over_;
}

void World::Write(std::span<const std::byte> bytes) {
  std::vector<std::byte>& log = written[opened_ - 1];
  log.insert(log.end(), bytes.begin(), bytes.end());
}

}  // namespace ombrel::test
