#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace quarrow {

// Where sound goes: 16-bit samples of one channel.
class SoundOutput {
public:
  virtual ~SoundOutput() = default;
  // Plays `samples`, which stay where they are, at `rate` a second, in place of what still plays. Returns at
  // once; nothing is heard where there is nothing to hear with. Main thread.
  virtual void play(std::span<const std::int16_t> samples, int rate) = 0;
};

// The short sound of an arrival: a glass that is touched. In a burst of arrivals it begins anew from time to
// time and never sounds twice at once. Main thread.
class Chime {
public:
  static constexpr int kRate = 48'000;
  static constexpr fennick::Seconds kLength{0.9};
  static constexpr double kPeak = 0.2512; // of full scale: -12 dB, so that it startles nobody
  // A sound that has begun is not cut off before.
  static constexpr fennick::Seconds kShortest{0.3};

  // Both outlive the object.
  Chime(const fennick::Clock &clock, SoundOutput &output) : clock_(clock), output_(output) {}

  void play();

  // The sound, as it is played.
  [[nodiscard]] static std::vector<std::int16_t> samples();

private:
  const fennick::Clock &clock_;
  SoundOutput &output_;
  std::vector<std::int16_t> samples_; // made when first heard
  std::optional<fennick::Uptime> began_;
};

} // namespace quarrow
