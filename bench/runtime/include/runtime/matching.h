#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

namespace bench::runtime {

// Copies of those that `matches` takes, in order.
template <typename Range, typename Predicate>
[[nodiscard]] std::vector<typename Range::value_type> Matching(const Range& range, Predicate matches) {
  std::vector<typename Range::value_type> found;
  std::ranges::copy_if(range, std::back_inserter(found), matches);
  return found;
}

}  // namespace bench::runtime
