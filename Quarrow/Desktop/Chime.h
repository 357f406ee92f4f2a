#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace quarrow {

// Plays sound: 16-bit samples of one channel.
class SoundOutput {
public:
  virtual ~SoundOutput() = default;
  // Plays `samples`, which must stay valid, at `rate` per second, and stops what is still playing. Returns at
  // once; does nothing without a sound device. Main thread.
  virtual void play(std::span<const std::int16_t> samples, int rate) = 0;
};

// The short sound of an arrival: a touched glass. In a burst of arrivals it starts again from time to time
// and never overlaps itself. Main thread.
class Chime {
public:
  static constexpr int kRate = 48'000;
  static constexpr fennick::Seconds kLength{0.9};
  static constexpr double kPeak = 0.2512; // of full scale: -12 dB, not startling
  // A sound is not interrupted before this.
  static constexpr fennick::Seconds kShortest{0.3};

  // Both outlive the object.
  Chime(const fennick::Clock &clock, SoundOutput &output) : clock_(clock), output_(output) {}

  void play();

  // Returns the samples of the sound.
  [[nodiscard]] static std::vector<std::int16_t> samples();

private:
  const fennick::Clock &clock_;
  SoundOutput &output_;
  std::vector<std::int16_t> samples_; // made for the first sound
  std::optional<fennick::Uptime> began_;
};

} // namespace quarrow
