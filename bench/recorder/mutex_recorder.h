#pragma once

#include "recorder/recording_file.h"

namespace bench {

// Records what this process does with keyed mutexes, whoever supplies them: the methods of their class are replaced for
// good, and recorded as long as this lives. One at a time.
class MutexRecorder {
 public:
  // After ChooseSharing. The file must outlive it.
  explicit MutexRecorder(const RecordingFile& file);
  ~MutexRecorder();
  MutexRecorder(const MutexRecorder&) = delete;
  MutexRecorder& operator=(const MutexRecorder&) = delete;

  // False: there are no keyed mutexes here, or they cannot be watched.
  [[nodiscard]] bool Works() const { return works_; }

 private:
  bool works_ = false;
};

}  // namespace bench
