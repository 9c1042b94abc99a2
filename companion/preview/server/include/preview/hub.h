#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "preview/messages.h"

namespace preview {

// What the pages want of the companion. Called on the server's thread; only the leading pages are heard.
class Listener {
 public:
  virtual ~Listener() = default;
  virtual void OnHead(const HeadMessage& head) = 0;
  virtual void OnRate(std::uint32_t framesPerSecond) = 0;
  virtual void OnRecenter() = 0;
  virtual void OnController(const ControllerMessage& controller) = 0;
  // The last controllers page has gone.
  virtual void OnControllersGone() = 0;
};

enum class Role { Headset, Controllers };

// The way to one page.
class Channel {
 public:
  virtual ~Channel() = default;
  virtual void SendText(const std::string& text) = 0;
  virtual void SendFrame(std::shared_ptr<const std::vector<std::uint8_t>> bytes) = 0;
};

// The pages that are open. Of each role the oldest leads. For the server's thread, but for WantsFrame.
class Hub {
 public:
  // Of each role.
  static constexpr std::size_t kMostPages = 8;

  explicit Hub(Listener& listener) : listener_(listener) {}

  // The channel is not owned and must leave before it goes.
  [[nodiscard]] bool HasRoom(Role role) const;
  void Join(Channel& channel, Role role);
  void Leave(Channel& channel);

  // False when the text is no message that this page may send: the page is then to be cut off.
  [[nodiscard]] bool Receive(Channel& channel, std::string_view text);

  // To every headset page that waits for a frame. None is kept for the others: they get a newer one.
  void Publish(const Frame& frame);
  void SetDriver(bool connected);
  void Pulse(std::uint32_t controllerId, std::uint32_t durationMicroseconds);

  // Whether a page waits for a frame, so that compressing one is worth while. Any thread.
  [[nodiscard]] bool WantsFrame() const { return wantsFrame_; }
  // Frames are not wanted before this one was published. Any thread.
  void FrameComes() { wantsFrame_ = false; }

 private:
  struct Page {
    Channel* channel;
    Role role;
    // A finished write tells nothing: megabytes of it lie in buffers before a slow page sees them. So a page gets the
    // next frame when it has acknowledged this one.
    std::optional<std::uint32_t> underWay = std::nullopt;

    bool WantsFrame() const { return role == Role::Headset && !underWay; }
  };
  Page* Find(Channel& channel);
  bool Leads(const Page& page) const;
  bool Take(Page& page, const PageMessage& message);
  void SendStatus();
  void Count();

  Listener& listener_;
  std::vector<Page> pages_;  // oldest first
  bool driver_ = false;
  std::atomic<bool> wantsFrame_ = false;
};

}  // namespace preview
