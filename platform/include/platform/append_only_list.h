#pragma once

#include <atomic>

namespace ombrel {

// A lock-free singly linked list that grows while other threads walk it: an entry is published by a release store, and
// none goes away while walkers may be about. Add and ForEach may be called from any thread at any time; Clear only when
// no other thread uses the list. Entries are visited in the order in which they were added.
template <typename T>
class AppendOnlyList {
 public:
  AppendOnlyList() = default;
  AppendOnlyList(const AppendOnlyList&) = delete;
  AppendOnlyList& operator=(const AppendOnlyList&) = delete;
  ~AppendOnlyList() { Clear(); }

  void Add(T value) {
    Node* node = new Node{value, {nullptr}};
    std::atomic<Node*>* link = &first_;
    Node* next = nullptr;
    while (!link->compare_exchange_weak(next, node, std::memory_order_acq_rel)) {
      if (next == nullptr) continue;
      link = &next->next;
      next = nullptr;
    }
  }

  template <typename Visitor>
  void ForEach(Visitor&& visit) const {
    for (const Node* node = first_.load(std::memory_order_acquire); node != nullptr;
         node = node->next.load(std::memory_order_acquire)) {
      visit(node->value);
    }
  }

  void Clear() {
    Node* node = first_.exchange(nullptr, std::memory_order_acq_rel);
    while (node != nullptr) {
      Node* next = node->next.load(std::memory_order_acquire);
      delete node;
      node = next;
    }
  }

 private:
  struct Node {
    T value;
    std::atomic<Node*> next;
  };
  std::atomic<Node*> first_{nullptr};
};

}  // namespace ombrel
