#include "picture_request.h"

#include <utility>

namespace bench {

void PictureRequest::Ask(Expectation wanted) {
  const std::scoped_lock lock(mutex_);
  wanted_ = std::move(wanted);
  difference_ = "no frame came";
}

std::string PictureRequest::Withdraw() {
  const std::scoped_lock lock(mutex_);
  wanted_.reset();
  return difference_;
}

bool PictureRequest::Open() const {
  const std::scoped_lock lock(mutex_);
  return wanted_.has_value();
}

std::optional<std::string> PictureRequest::Offer(const Image& image) {
  const std::scoped_lock lock(mutex_);
  if (!wanted_) return std::nullopt;
  difference_ = wanted_->hasRegion ? RegionDifference(*wanted_, image) : std::string();
  if (!difference_.empty()) return std::nullopt;
  return std::exchange(wanted_, std::nullopt)->name;
}

}  // namespace bench
