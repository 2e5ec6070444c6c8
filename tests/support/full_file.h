// A stream to a file that takes some bytes and then no more, on systems that have such a device.
#pragma once
#include <gtest/gtest.h>

#include <cstddef>

#include "src/frame/codec/stream.h"
#include "src/frame/host/platform.h"

namespace testing_support {

// What a stream holds before it hands it to its file: nothing larger can be tested with FullFile.
inline constexpr std::size_t kRoom = std::size_t{1} << 20U;

inline oldtorvio::frame::File openFullDevice() { return oldtorvio::frame::File::openToWrite("/dev/full"); }
inline bool hasFullDevice() { return static_cast<bool>(openFullDevice()); }

class FullFile {
 public:
  // Takes that many bytes.
  explicit FullFile(std::size_t bytes) { EXPECT_NE(stream_.room(kRoom - bytes), nullptr); }
  auto& stream() { return stream_; }

 private:
  oldtorvio::frame::File file_ = openFullDevice();
  oldtorvio::codec::OutStream stream_{file_.handle()};
};

}  // namespace testing_support
