#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <span>
#include <vector>

namespace ombrel::test {

// Changes a companion's stream message by message, so that what comes out mostly has right lengths and known types and
// gets past the framing, and now and then has not.
class StreamMutator {
 public:
  using Stream = std::vector<std::byte>;
  // Changes bytes as it likes and may make them fewer or more, up to the given number.
  using RawMutation = std::function<void(Stream& bytes, std::size_t most)>;

  StreamMutator(unsigned seed, RawMutation raw) : random_(seed), raw_(std::move(raw)) {}

  // At most `most` bytes.
  [[nodiscard]] Stream Mutate(std::span<const std::byte> stream, std::size_t most);
  // Messages of both, in the order of each.
  [[nodiscard]] Stream Cross(std::span<const std::byte> a, std::span<const std::byte> b, std::size_t most);

 private:
  struct Message {
    std::uint32_t type = 0;
    Stream payload;
    std::uint32_t lie = 0;  // added to the length that the header tells
  };
  using Messages = std::vector<Message>;

  [[nodiscard]] static Messages Parse(std::span<const std::byte> stream);
  [[nodiscard]] static Stream Write(const Messages& messages, std::size_t most);
  void Change(Messages& messages);
  void ChangePayload(Message& message);
  void ChangeNumber(Message& message);
  [[nodiscard]] Message NewMessage();
  [[nodiscard]] Message NewPose();
  [[nodiscard]] Message NewController();
  void AppendU32(Stream& bytes, std::uint32_t value);
  void AppendFloats(Stream& bytes, std::size_t count);
  [[nodiscard]] std::uint32_t FloatBits();

  [[nodiscard]] std::size_t Below(std::size_t limit) { return random_() % limit; }
  template <typename T>
  [[nodiscard]] T OneOf(std::initializer_list<T> values) {
    return values.begin()[Below(values.size())];
  }

  std::minstd_rand random_;
  RawMutation raw_;
};

}  // namespace ombrel::test
