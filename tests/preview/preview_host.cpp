// The preview's server without a driver behind it: shows made-up frames, prints what the pages want as a JSON object a
// line, and does what standard input says, a command a line:
//   driver 0|1    the driver is away, or here
//   frames 0|1    sixty a second, half red and half blue, or none
//   pulse ID US   of a controller
//   newest        prints {"newest": NUMBER} of the last frame that was made, shown or not
// Ends with standard input. The first line is {"port": NUMBER}: one that is free, or the one of the command line.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "nlohmann/json.hpp"
#include "preview/server.h"

namespace {

using nlohmann::json;

void Print(const json& line) {
  static std::mutex mutex;
  const std::scoped_lock lock(mutex);
  std::printf("%s\n", line.dump().c_str());
  std::fflush(stdout);
}

class Printer : public preview::Listener {
 public:
  void OnHead(const preview::HeadMessage& head) override {
    number = head.number;
    Print({{"head", head.orientation}});
  }
  void OnRate(std::uint32_t framesPerSecond) override { Print({{"rate", framesPerSecond}}); }
  void OnRecenter() override { Print({{"recenter", true}}); }
  void OnController(const preview::ControllerMessage& controller) override {
    Print({{"controller", controller.id},
           {"pressed", controller.pressed},
           {"touched", controller.touched},
           {"trackpad", controller.trackpad},
           {"trigger", controller.trigger}});
  }
  void OnControllersGone() override { Print({{"gone", true}}); }

  std::atomic<std::uint32_t> number = 0;
};

// The left eye's half red, the right one's blue.
std::vector<std::uint8_t> Picture() {
  constexpr int kWidth = 64, kHeight = 32;
  std::vector<std::uint8_t> pixels;
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const bool left = i % kWidth < kWidth / 2;
    pixels.insert(pixels.end(),
                  {static_cast<std::uint8_t>(left ? 255 : 0), 0, static_cast<std::uint8_t>(left ? 0 : 255)});
  }
  std::vector<std::uint8_t> jpeg;
  stbi_write_jpg_to_func(
      [](void* context, void* data, int size) {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        static_cast<std::vector<std::uint8_t>*>(context)->insert(
            static_cast<std::vector<std::uint8_t>*>(context)->end(), bytes, bytes + size);
      },
      &jpeg, kWidth, kHeight, 3, pixels.data(), 90);
  return jpeg;
}

class FrameMaker {
 public:
  FrameMaker(preview::Server& server, const Printer& printer)
      : thread_([this, &server, &printer] { Run(server, printer); }) {}
  ~FrameMaker() {
    stop_ = true;
    thread_.join();
  }
  std::atomic<bool> on = true;
  std::atomic<std::uint32_t> newest = 0;

 private:
  void Run(preview::Server& server, const Printer& printer) {
    const auto jpeg = Picture();
    while (!stop_) {
      std::this_thread::sleep_for(std::chrono::milliseconds(16));
      if (!on) continue;
      ++newest;
      if (server.WantsFrame()) server.Publish({newest, printer.number, 10, 1, jpeg});
    }
  }

  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

}  // namespace

int main(int argc, char** argv) {
  Printer printer;
  preview::Server server(static_cast<std::uint16_t>(argc > 1 ? std::stoi(argv[1]) : 0), printer, {64, 1000, 2000});
  server.SetDriver(true);
  FrameMaker frames(server, printer);
  Print({{"port", server.Port()}});
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string command;
    std::uint32_t first = 0, second = 0;
    words >> command >> first >> second;
    if (command == "driver") server.SetDriver(first != 0);
    if (command == "frames") frames.on = first != 0;
    if (command == "pulse") server.Pulse(first, second);
    if (command == "newest") Print({{"newest", frames.newest.load()}});
  }
}
