#include "graphics_thread.h"

#include <exception>
#include <stdexcept>

#include "controller_view.h"
#include "runtime/direct_compositor.h"
#include "runtime/virtual_compositor.h"
#include "scene_renderer.h"
#include "sharing/sharing_device.h"

namespace bench {
namespace {

// The device with its scene. Members go in reverse: the scene before the device it was made with.
struct Graphics {
  Graphics(FakeRuntime& runtime, const RuntimeSession& session, bool keepDevice) {
    RequireOk(CreateSharingDevice(&device, &context), "making the runtime's Direct3D device");
    scene = std::make_unique<SceneRenderer>(device, context);
    scene->SetMovingParts([&runtime, &session] { return BuildControllers(runtime, session); });
    if (keepDevice) {
      device->AddRef();  // never given back: see DeviceKeeper
    }
  }

  Microsoft::WRL::ComPtr<ID3D11Device> device;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
  std::unique_ptr<SceneRenderer> scene;
};

bool IsDirect(Mode mode, const ActiveDevice& headset) {
  if (mode != Mode::Automatic) {
    return mode == Mode::Direct;
  }
  return headset.added.driver->GetComponent(vr::IVRDriverDirectModeComponent_Version) != nullptr;
}

}  // namespace

GraphicsThread::GraphicsThread(FakeRuntime& runtime, const RuntimeSession& session, const ActiveDevice& headset,
                               const SimulationOptions& options, Compositor::Listener listener)
    : modeName_(IsDirect(options.mode, headset) ? "direct" : "virtual") {
  const Setup setup{runtime, session, headset, options.fps, options.keepDevices, std::move(listener)};
  thread_ = std::thread([this, setup] { Work(setup); });
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return state_ != State::Starting; });
  if (!failure_.empty()) {
    lock.unlock();
    thread_.join();
    throw std::runtime_error(failure_);
  }
}

GraphicsThread::~GraphicsThread() {
  if (thread_.joinable()) {
    RequestStop();
    thread_.join();
  }
}

void GraphicsThread::Work(const Setup& setup) {
  std::string failure;
  try {
    if (modeName_ == "direct") {
      RunDirect(setup);
    } else {
      RunVirtual(setup);
    }
  } catch (const std::exception& error) {
    failure = error.what();
  }
  Enter(State::Ended, failure);
}

void GraphicsThread::RunDirect(const Setup& setup) {
  Graphics graphics(setup.runtime, setup.session, setup.keepDevice);
  DirectCompositor compositor(setup.runtime, setup.headset, *graphics.scene, graphics.device);
  RunFrames(compositor, setup);
  if (!driverIsGone_) {
    compositor.DestroySwapSets();
  }
}

void GraphicsThread::RunVirtual(const Setup& setup) {
  Graphics graphics(setup.runtime, setup.session, setup.keepDevice);
  VirtualCompositor compositor(setup.runtime, setup.headset, *graphics.scene, graphics.device);
  RunFrames(compositor, setup);
}

void GraphicsThread::RunFrames(Compositor& compositor, const Setup& setup) {
  geometry_ = compositor.Geometry();
  compositor.Listen(setup.listener);
  {
    const std::lock_guard lock(mutex_);
    compositor_ = &compositor;
  }
  Enter(State::Running);
  const auto leave = [this] {
    const std::lock_guard lock(mutex_);
    compositor_ = nullptr;
  };
  try {
    compositor.Run(setup.hertz);
  } catch (...) {
    leave();
    throw;
  }
  leave();
}

void GraphicsThread::Enter(State state, const std::string& failure) {
  const std::lock_guard lock(mutex_);
  state_ = state;
  failure_ = failure;
  changed_.notify_all();
}

void GraphicsThread::RequestStop() {
  const std::lock_guard lock(mutex_);
  if (compositor_ != nullptr) {
    compositor_->RequestStop();
  }
}

bool GraphicsThread::WaitStopped(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [this] { return state_ == State::Ended; });
}

std::string GraphicsThread::Failure() const {
  const std::lock_guard lock(mutex_);
  return failure_;
}

}  // namespace bench
