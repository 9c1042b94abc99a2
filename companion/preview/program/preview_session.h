#pragma once

#include <chrono>
#include <functional>

#include "driver_link.h"
#include "frame_source.h"
#include "jpeg_encoder.h"
#include "options.h"
#include "preview/server.h"

namespace preview {

// The program between driver and pages. Runs on the main thread, which reads the frames and compresses them.
class PreviewSession {
 public:
  // Throws std::exception when the pipes or the port belong to another program.
  explicit PreviewSession(const Options& options);

  [[nodiscard]] std::uint16_t Port() const { return server_.Port(); }

  // Until `ended` says so.
  void Run(const std::function<bool()>& ended);

 private:
  void NoticeConnection();
  void TakeMessages(std::uint32_t timeoutMs);
  void Announce(const companion::Bytes& payload);
  void TakeFrame();
  void Show(const companion::FrameInfo& frame, std::chrono::steady_clock::time_point when);

  JpegEncoder encoder_;
  FrameSource frames_;
  DriverLink link_;
  Server server_;
  bool connected_ = false;
  std::uint32_t connection_ = 0;
  std::uint32_t frameNumber_ = 0;
};

}  // namespace preview
