#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "platform/clock.h"

namespace ombrel {

// A value that is looked at often and changed seldom, without a lock: a change makes a whole new value, and the old one
// goes when nobody looks at it any more. Any thread may call both. A change waits for those who are looking, so looks
// are to be short, and none may change.
template <typename T>
class CopyOnWrite {
 public:
  CopyOnWrite() = default;
  ~CopyOnWrite() { delete current_.load(); }
  CopyOnWrite(const CopyOnWrite&) = delete;
  CopyOnWrite& operator=(const CopyOnWrite&) = delete;

  template <typename Visitor>
  auto Look(Visitor&& visit) const {
    const Looking looking(looking_);
    return visit(*current_.load());
  }

  // `change` gets a copy of the value to change; it is called again when another thread's change came first.
  template <typename Change>
  void Update(Change&& change) {
    std::unique_ptr<const T> old;
    while (old == nullptr) {
      const Looking looking(looking_);
      const T* seen = current_.load();
      auto changed = std::make_unique<T>(*seen);
      change(*changed);
      if (current_.compare_exchange_strong(seen, changed.get())) {
        static_cast<void>(changed.release());  // it is the value now
        old.reset(seen);
      }
    }
    while (looking_.load() != 0) SleepMs(0);
  }

 private:
  class Looking {
   public:
    explicit Looking(std::atomic<std::int32_t>& count) : count_(count) { count_.fetch_add(1); }
    ~Looking() { count_.fetch_sub(1); }
    Looking(const Looking&) = delete;
    Looking& operator=(const Looking&) = delete;

   private:
    std::atomic<std::int32_t>& count_;
  };

  std::atomic<const T*> current_{new T};
  mutable std::atomic<std::int32_t> looking_{0};
};

}  // namespace ombrel
