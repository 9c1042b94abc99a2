#include "picture_request.h"

#include <utility>

namespace bench {

void PictureRequest::Ask(WantedPicture wanted) {
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
  if (wanted_->region) {
    difference_ = FirstDifference(image, *wanted_->region, OneColour(wanted_->rgba), wanted_->tolerance);
    if (!difference_.empty()) return std::nullopt;
  }
  return std::exchange(wanted_, std::nullopt)->name;
}

}  // namespace bench
