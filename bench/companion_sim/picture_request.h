#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "picture/comparison.h"

namespace bench {

// What a script wants to see. Without a region, any frame.
struct WantedPicture {
  std::string name;
  std::optional<Box> region = {};
  Rgba rgba = {};
  int tolerance = 0;  // largest difference of a channel
};

// One picture at a time that a script wants: the first frame that shows what it says. Callable from any thread.
class PictureRequest {
 public:
  void Ask(WantedPicture wanted);
  // Takes the request back. Says how the last frame that was offered differed.
  std::string Withdraw();
  bool Open() const;

  // The picture's name when this is the frame that is wanted; it is wanted no longer then.
  std::optional<std::string> Offer(const Image& image);

 private:
  mutable std::mutex mutex_;
  std::optional<WantedPicture> wanted_;
  std::string difference_;
};

}  // namespace bench
