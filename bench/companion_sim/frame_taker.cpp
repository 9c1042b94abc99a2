#include "frame_taker.h"

#include <algorithm>
#include <cstdio>

#include "picture/drawing.h"
#include "sharing/sharing_device.h"

namespace bench {

using namespace companion;

namespace {

constexpr std::uint32_t kWaitMs = 10;

// Opens the textures with a promise to the stand-in's sharing: nothing is ever drawn into them.
HRESULT OpenReadOnly(FrameReader& reader, const FrameSharingInfo& info) {
  HRESULT result = reader.Open(info);
  for (int index = 0; index < OMBREL_TEXTURES && SUCCEEDED(result); ++index) {
    result = MarkReadOnly(reader.Texture(index));
  }
  return result;
}

std::optional<Image> ToImage(std::optional<Picture> picture) {
  if (!picture) return std::nullopt;
  return Image(static_cast<int>(picture->width), static_cast<int>(picture->height), std::move(picture->rgba));
}

}  // namespace

FrameTaker::FrameTaker(const Options& options, DriverLink& link, RunState& run,
                       Microsoft::WRL::ComPtr<ID3D11Device> device)
    : options_(options), link_(link), run_(run), log_(options.framesCsv) {
  if (device) reader_.emplace(std::move(device));
}

void FrameTaker::Announce(std::uint32_t connection, const FrameSharingInfo& info) {
  connection_ = connection;
  inConnection_ = 0;
  if (!reader_) return;
  const HRESULT result = OpenReadOnly(*reader_, info);
  char text[80];
  std::snprintf(text, sizeof(text), "the announced textures cannot be opened, error 0x%08lX",
                static_cast<unsigned long>(result));
  if (FAILED(result)) run_.Fail(text);
  if (SUCCEEDED(result) && !reader_->HasPoseBlock()) run_.Fail("there is no block named " + info.name);
}

void FrameTaker::Close() {
  if (reader_) reader_->Close();
}

bool FrameTaker::TakeOne() {
  if (!Open()) return false;
  FrameInfo frame;
  Uses uses;
  const TurnResult result = reader_->Next(
      kWaitMs,
      [&](const FrameInfo&) {
        uses = UsesOfNext();
        return uses.Any();
      },
      frame);
  if (result == TurnResult::Failed) reader_->Close();
  if (result != TurnResult::FrameHeld) return false;
  const auto match = link_.Match(frame.slot);
  log_.Add(log_.Frames(), connection_, frame, match);
  std::optional<Image> image;
  if (uses.Any()) image = ToImage(reader_->Pixels());
  Use(uses, frame, image ? &*image : nullptr);
  if (options_.printFrames) PrintFrame(frame);
  ++inConnection_;
  run_.SetFrames(log_.Frames());
  return true;
}

YawPitch FrameTaker::LookOf(const FrameInfo& frame) const {
  // Without a pose beside it the frame shows about what was sent last.
  if (frame.slot == PoseSlot{}) return LookDirection(link_.PublishedPose());
  PoseMatrix matrix{};
  std::copy_n(frame.slot.begin(), matrix.size(), matrix.begin());
  return LookDirection(matrix);
}

void FrameTaker::PrintFrame(const FrameInfo& frame) const {
  std::printf("companion: connection %u frame %llu texture %d\n", connection_,
              static_cast<unsigned long long>(inConnection_), frame.texture);
  std::fflush(stdout);
}

FrameTaker::Uses FrameTaker::UsesOfNext() const {
  Uses uses;
  uses.named = run_.PictureWanted().Open();
  if (options_.out.empty()) return uses;
  uses.saved = options_.saveEvery != 0 && log_.Frames() % options_.saveEvery == 0;
  return uses;
}

void FrameTaker::Use(const Uses& uses, const FrameInfo& frame, const Image* image) {
  if (uses.Any() && image == nullptr) run_.Fail("a frame's pixels could not be read");
  if (image == nullptr) return;
  const std::uint64_t number = log_.Frames() - 1;
  if (const auto name = run_.PictureWanted().Offer(*image)) sheet_.AddNamed(*name, number, LookOf(frame), *image);
  if (!uses.saved) return;
  sheet_.AddSample(number, LookOf(frame), *image);
  SaveFrame(*image);
}

void FrameTaker::SaveFrame(const Image& image) {
  char name[40];
  std::snprintf(name, sizeof(name), "frame_%06llu.png", static_cast<unsigned long long>(log_.Frames() - 1));
  Image picture = options_.saveWidth > 0 ? Shrink(image, options_.saveWidth) : image;
  if (!writer_.Save(std::move(picture), options_.out / name)) ++skipped_;
}

void FrameTaker::Finish() {
  writer_.Finish();
  if (writer_.Failed() != 0) run_.Fail(std::to_string(writer_.Failed()) + " pictures could not be saved");
  if (options_.out.empty() || sheet_.Empty()) return;
  if (!SavePng(sheet_.Draw(), options_.out / "contact_sheet.png")) run_.Fail("the contact sheet could not be saved");
  std::ofstream(options_.out / "contact_sheet.txt") << sheet_.Describe();
}

}  // namespace bench
