#pragma once

#include "companion/frame_reader.h"
#include "contact_sheet.h"
#include "driver_link.h"
#include "frame_log.h"
#include "options.h"
#include "picture_writer.h"
#include "run_state.h"

namespace bench {

// Takes the driver's frames one by one: holds the pose of each against what was sent, and keeps the pictures that are
// asked for. For one thread.
class FrameTaker {
 public:
  // `device` may be null: frames are then not read.
  FrameTaker(const Options& options, DriverLink& link, RunState& run, Microsoft::WRL::ComPtr<ID3D11Device> device);

  void Announce(std::uint32_t connection, const companion::FrameSharingInfo& info);
  // Waits a few milliseconds for a frame. False when none came.
  bool TakeOne();
  bool Open() const { return reader_ && reader_->IsOpen(); }
  void Close();

  // Saves what is left to save.
  void Finish();

  const FrameLog& Log() const { return log_; }
  std::uint64_t NamedPictures() const { return sheet_.Named(); }
  std::uint64_t SavedPictures() const { return writer_.Saved(); }
  std::uint64_t SkippedPictures() const { return skipped_; }

 private:
  struct Uses {
    bool named = false;
    bool saved = false;
    bool Any() const { return named || saved; }
  };
  companion::YawPitch LookOf(const companion::FrameInfo& frame) const;
  Uses UsesOfNext() const;
  void Use(const Uses& uses, const companion::FrameInfo& frame, const Image* image);
  void PrintFrame(const companion::FrameInfo& frame) const;
  void SaveFrame(const Image& image);

  const Options& options_;
  DriverLink& link_;
  RunState& run_;
  std::optional<companion::FrameReader> reader_;
  FrameLog log_;
  PictureWriter writer_;
  ContactSheet sheet_;
  std::uint32_t connection_ = 0;
  std::uint64_t inConnection_ = 0;  // number of the next frame within the connection
  std::uint64_t skipped_ = 0;
};

}  // namespace bench
