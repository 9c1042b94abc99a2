#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

namespace bench {

// Finds what belongs to a Direct3D object, by its address or its handle, without keeping it alive. Any thread.
// Never calls Direct3D under its lock, because Direct3D calls RemoveExpired under its own.
template <class Key, class Value>
class WeakRegistry {
 public:
  void Add(const Key& key, const std::shared_ptr<Value>& value) {
    const std::lock_guard lock(mutex_);
    values_[key] = value;
  }

  // For a destructor of Value. A later value under the same key stays.
  void RemoveExpired(const Key& key) {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    if (found != values_.end() && found->second.expired()) values_.erase(found);
  }

  [[nodiscard]] std::shared_ptr<Value> Find(const Key& key) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : found->second.lock();
  }

 private:
  mutable std::mutex mutex_;
  std::unordered_map<Key, std::weak_ptr<Value>> values_;
};

}  // namespace bench
