#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "expectations.h"
#include "picture/image.h"

namespace bench {

// One picture at a time that a script wants: the first frame that shows what it says. Callable from any thread.
class PictureRequest {
 public:
  // The expectation's name becomes the picture's; without a region the next frame will do.
  void Ask(Expectation wanted);
  // Takes the request back. Says how the last frame that was offered differed.
  std::string Withdraw();
  bool Open() const;

  // The picture's name when this is the frame that is wanted; it is wanted no longer then.
  std::optional<std::string> Offer(const Image& image);

 private:
  mutable std::mutex mutex_;
  std::optional<Expectation> wanted_;
  std::string difference_;
};

}  // namespace bench
