// detector.h: a detector under test, with its record in view and its decisions recorded.
#pragma once

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "fenced.h"
#include "random.h"
#include "seed.h"
#include "vel_stopngo.h"
#include "vel_stopngo_ctx.h"

namespace test {

class Detector {
 public:
  Detector() {
    EXPECT_EQ(vel_stopngo_open(Context()), 0);
    Control(VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK, &Detector::OnDecision,
            VEL_CTRL_STOPNGO_SET_EVENT_CALLBACK_ARGS, this);
  }
  ~Detector() { vel_stopngo_close(Context()); }
  Detector(const Detector&) = delete;
  Detector& operator=(const Detector&) = delete;

  VEL_STOPNGO_CTX* Context() { return reinterpret_cast<VEL_STOPNGO_CTX*>(memory_.Data()); }
  VEL_STOPNGO_CTX* operator->() { return Context(); }

  template <typename... List>
  int Control(VEL_CTRL_STOPNGO first, List... list) {
    return vel_stopngo_control(Context(), first, list..., VEL_CTRL_STOPNGO_END);
  }
  int Update() {
    int unused = 0;
    return Control(VEL_CTRL_STOPNGO_UPDATE_PARAMS, &unused);
  }
  off_t Write(const std::uint8_t* frame) {
    return vel_stopngo_write(Context(), const_cast<std::uint8_t*>(frame), 0);
  }

  /// Without hidden nodes the score is the logistic function of the output bias alone.
  void ForceOutputSum(float sum) {
    Context()->Hiddens = 0;
    Context()->Weight[0] = sum;
  }

  /// The bytes of the record.
  std::vector<std::uint8_t> Snapshot() {
    const std::span<std::uint8_t> bytes = memory_.Bytes();
    return {bytes.begin(), bytes.end()};
  }

  /// The decisions reported since the last call.
  std::vector<int> TakeDecisions() { return std::exchange(decisions_, {}); }

 private:
  static int OnDecision(void* self, int flag) {
    static_cast<Detector*>(self)->decisions_.push_back(flag);
    return -1;
  }

  Fenced memory_{sizeof(VEL_STOPNGO_CTX)};
  std::vector<int> decisions_;
};

/// A frame of noise.
inline std::vector<std::uint8_t> Noise(std::size_t size, std::uint64_t stream) {
  std::vector<std::uint8_t> frame(size);
  Random random(Seed(stream));
  random.Fill(frame);
  return frame;
}

/// What the module prints while work runs.
template <typename Work>
std::string Printed(Work work) {
  testing::internal::CaptureStdout();
  work();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

}  // namespace test
