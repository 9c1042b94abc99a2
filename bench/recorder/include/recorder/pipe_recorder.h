#pragma once

#include <memory>
#include <string>

#include <windows.h>

#include "recorder/recording_file.h"

namespace bench {

// Records what a driver does with the two pipes: its imports of CreateFileA, ReadFile, WriteFile and CloseHandle lead here
// from the constructor on. One at a time, and only for a driver that has started no thread yet; it must outlive the
// driver's last call.
class PipeRecorder {
 public:
  class State;

  // Throws std::runtime_error when the driver lacks one of the imports.
  PipeRecorder(HMODULE driver, const RecordingFile& file);
  ~PipeRecorder();
  PipeRecorder(const PipeRecorder&) = delete;
  PipeRecorder& operator=(const PipeRecorder&) = delete;

  // Of the block that the driver announced last; empty before that.
  [[nodiscard]] std::string BlockName() const;

 private:
  std::unique_ptr<State> state_;
};

}  // namespace bench
