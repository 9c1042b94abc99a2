#include "seeds.h"

#include <initializer_list>
#include <limits>

#include "support/bytes.h"

namespace ombrel::test {
namespace {

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();
constexpr float kSmallest = std::numeric_limits<float>::denorm_min();

struct Sizes {
  std::uint32_t format;
  std::size_t payload;  // needed at least
};
constexpr std::initializer_list<Sizes> kFormats{{0, 52}, {1, 4},  {2, 40}, {3, 40},  {4, 32},         {5, 16},
                                                {6, 52}, {7, 52}, {50, 4}, {254, 5}, {2147483647, 4}, {0x80000000, 52}};

Bytes Stream(std::initializer_list<Bytes> messages) {
  Bytes stream;
  for (const Bytes& message : messages) stream.Append(message);
  return stream;
}

Bytes Pose(std::uint32_t format, std::initializer_list<float> numbers) {
  return Framed(4, Bytes().F32(numbers).U32(format));
}

Bytes Repeated(float number, std::size_t count, std::uint32_t format) {
  Bytes payload;
  for (std::size_t i = 0; i < count; ++i) payload.F32({number});
  return Framed(4, payload.U32(format));
}

Bytes Turned() { return Pose(4, {0, 0.6F, 0, 0.8F, 1, 2, 3}); }
Bytes Republish() { return Framed(4, Bytes().U32(1)); }
Bytes FrameRate(std::uint32_t rate) { return Framed(9, Bytes().U32(rate)); }

struct Held {
  std::uint64_t pressed = 0, touched = 0;
  float trackpadX = 0, trackpadY = 0, trigger = 0, triggerY = 0;
  std::uint32_t trackingState = 0;
};

Bytes Controller(std::uint32_t id, const Held& held, double motion = 0.25) {
  Bytes record;
  record.U32(id).U32(held.trackingState).Fill(8).F32({1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3}).Fill(16);
  record.U32(1).U32(0).U64(held.pressed).U64(held.touched);
  record.F32({held.trackpadX, held.trackpadY, held.trigger, held.triggerY, 0, 0, 0, 0, 0, 0});
  for (int i = 0; i < 6; ++i) record.F64(motion);
  return Framed(10, record);
}

void AddPoses(Seeds& seeds) {
  Bytes exact, shorter, longer;
  for (const auto& [format, payload] : kFormats) {
    exact.Append(Framed(4, Bytes().Fill(payload - 4).U32(format)));
    if (payload > 4) shorter.Append(Framed(4, Bytes().Fill(payload - 5, 1).U32(format)));
    longer.Append(Framed(4, Bytes().Fill(payload + 3, 1).U32(format)));
  }
  seeds["poses_just_long_enough"] = exact.Get();
  seeds["poses_too_short"] = Stream({shorter, Framed(4, {}), Framed(4, Bytes().Fill(3))}).Get();
  seeds["poses_too_long"] = longer.Get();
  seeds["position_shows_later"] =
      Stream({Pose(5, {4, 5, 6}), Republish(), Turned(), Pose(5, {7, 8, 9}), Framed(4, Bytes().U8(2).U32(254))}).Get();
  seeds["half_turns"] =
      Stream({Pose(0, {1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0}), Pose(0, {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0}),
              Pose(0, {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0}), Pose(6, {-1, 0, 0, 1, 0, -1, 0, 2, 0, 0, 1, 3})})
          .Get();
  seeds["tracking_states"] = Stream({Framed(4, Bytes().U8(1).U32(254)), Framed(4, Bytes().U8(2).U32(254)), Turned(),
                                     Framed(4, Bytes().U8(255).U32(254))})
                                 .Get();
}

void AddNumbers(Seeds& seeds) {
  for (const auto& [name, number] :
       {std::pair{"no_numbers", kNoNumber}, std::pair{"infinities", kInfinity}, std::pair{"largest_numbers", kLargest},
        std::pair{"smallest_numbers", kSmallest}}) {
    seeds[name] = Stream({Repeated(number, 12, 0), Repeated(number, 9, 3), Repeated(number, 7, 4), Framed(8, {}),
                          Repeated(number, 3, 5), Repeated(number, 12, 6), Framed(4, Bytes().U32(50)), Turned()})
                      .Get();
    seeds[std::string("sensors_of_") + name] =
        Stream({Repeated(number, 9, 2), Pose(2, {0, 1, 0, number, 0, 0, 0, 0, 0}),
                Pose(2, {0, 1, 0, 0, 0, 1, number, 0, 0}), Pose(2, {0, 1, 0, 0, 0, 1, 1, 0, 0}), Framed(8, {}),
                Republish()})
            .Get();
  }
  seeds["orientation_of_no_length"] = Stream({Pose(4, {0, 0, 0, 0, 1, 2, 3}), Framed(8, {}), Republish()}).Get();
  seeds["recentred_twice"] =
      Stream({Turned(), Framed(8, Bytes().Fill(3)), Republish(), Pose(4, {0, 0.8F, 0, -0.6F, 1, 2, 3}),
              Framed(4, Bytes().U32(50)), Framed(4, Bytes().U32(2147483647)), Turned()})
          .Get();
}

void AddControllers(Seeds& seeds) {
  const Held pulled{.pressed = 0x300000007, .touched = 0x100000000, .trackpadX = 0.5F, .trigger = 1};
  seeds["controller_pressed_and_released"] =
      Stream({Controller(4, {}), Controller(4, pulled), Controller(4, {.pressed = 0x200000004}), Controller(4, {})})
          .Get();
  seeds["controllers_of_many_ids"] = Stream({Controller(0, {}), Controller(3, {}), Controller(0xFFFFFFFF, {}),
                                             Controller(0x80000000, {}), Controller(0, pulled), Controller(3, pulled),
                                             Controller(0xFFFFFFFF, pulled), Controller(0x80000000, pulled)})
                                         .Get();
  const Held odd{.trackpadX = kNoNumber, .trackpadY = kInfinity, .trigger = -kLargest, .trackingState = 7};
  seeds["controller_of_odd_numbers"] =
      Stream({Controller(1, {}), Controller(1, odd, std::numeric_limits<double>::quiet_NaN()), Controller(1, odd),
              Controller(1, {.triggerY = 1, .trackingState = 1}), Controller(1, {.trackingState = 2})})
          .Get();
  seeds["controllers_too_short_and_too_long"] =
      Stream({Framed(10, {}), Framed(10, Bytes().Fill(191)), Framed(10, Bytes().Fill(192)),
              Framed(10, Bytes().Fill(193, 1)), Framed(10, Bytes().Fill(600, 2))})
          .Get();
}

void AddFraming(Seeds& seeds) {
  const Bytes asIfAMessage = FrameRate(1);
  Bytes unknown;
  for (const std::uint32_t type : {0U, 2U, 3U, 11U, 15U, 0xFFFFFFFFU}) unknown.Append(Framed(type, asIfAMessage));
  seeds["types_that_nobody_knows"] = unknown.Get();
  Bytes empty;
  for (std::uint32_t type = 0; type < 16; ++type) empty.Append(Framed(type, {}));
  seeds["messages_of_no_bytes"] = empty.Get();
  seeds["frame_rates"] = Stream({FrameRate(0), FrameRate(1), FrameRate(0x7FFFFFFF), FrameRate(0x80000000),
                                 FrameRate(0xFFFFFFFF), Framed(9, Bytes().Fill(3)), Framed(9, Bytes().U32(90).Fill(9))})
                             .Get();
  seeds["largest_payload"] = Stream({Turned(), Framed(3, Bytes().Fill(65536)), FrameRate(72)}).Get();
  seeds["payload_over_the_bound"] = Stream({Turned(), Bytes().U32(65537).U32(9), FrameRate(72)}).Get();
  seeds["length_of_all_bits"] = Stream({Turned(), Bytes().U32(0xFFFFFFFF).U32(4), FrameRate(72)}).Get();
  seeds["length_of_all_bits_and_no_more"] = Bytes().U32(0xFFFFFFFF).Get();
  seeds["half_a_length"] = Stream({Turned(), Bytes().Fill(2)}).Get();
  seeds["half_a_header"] = Stream({Turned(), Bytes().U32(32).Fill(2)}).Get();
  seeds["half_a_payload"] = Stream({Turned(), Bytes().U32(32).U32(4).Fill(20)}).Get();
}

}  // namespace

Seeds MakeSeeds(const std::map<std::string, std::vector<std::uint8_t>>& shownByThePage) {
  Seeds seeds;
  Bytes all;
  for (const auto& [name, block] : shownByThePage) {
    if (name == "slot") continue;  // no message
    const auto bytes = std::as_bytes(std::span(block));
    all.Append(bytes);
    seeds["page_" + name].assign(bytes.begin(), bytes.end());
  }
  seeds["page_all_at_once"] = all.Get();
  AddPoses(seeds);
  AddNumbers(seeds);
  AddControllers(seeds);
  AddFraming(seeds);
  return seeds;
}

}  // namespace ombrel::test
