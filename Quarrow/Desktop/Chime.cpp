#include "Quarrow/Desktop/Chime.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace quarrow {

namespace {

constexpr double kPitch = 1318.5; // Hz, E6

// The modes in which the rim of a glass vibrates: frequency relative to the pitch, loudness, and seconds
// until it has decayed to a third. The high ones decay first.
struct Partial {
  double ratio;
  double loudness;
  double fade;
};
constexpr Partial kPartials[] = {
    {1.0, 1.0, 0.26}, {2.32, 0.5, 0.17}, {4.25, 0.28, 0.10}, {6.63, 0.14, 0.06}, {9.38, 0.06, 0.035}};

constexpr double kAttack = 0.005; // seconds; a shorter one sounds like a click
constexpr double kRelease = 0.08; // at the end, while the slowest partial still sounds

// Returns half a cosine from 0 to 1.
double ramp(double part) { return 0.5 - 0.5 * std::cos(std::numbers::pi * std::clamp(part, 0.0, 1.0)); }

double soundAt(double seconds) {
  double sum = 0;
  for (const auto &[ratio, loudness, fade] : kPartials)
    sum += loudness * std::exp(-seconds / fade) * std::sin(2 * std::numbers::pi * kPitch * ratio * seconds);
  return sum * ramp(seconds / kAttack) * ramp((Chime::kLength.count() - seconds) / kRelease);
}

} // namespace

std::vector<std::int16_t> Chime::samples() {
  std::vector<double> sound(static_cast<std::size_t>(kLength.count() * kRate));
  double loudest = 0;
  for (std::size_t i = 0; i < sound.size(); ++i) {
    sound[i] = soundAt(static_cast<double>(i) / kRate);
    loudest = std::max(loudest, std::abs(sound[i]));
  }
  const double scale = kPeak * std::numeric_limits<std::int16_t>::max() / loudest;
  std::vector<std::int16_t> samples(sound.size());
  std::ranges::transform(sound, samples.begin(),
                         [&](double value) { return static_cast<std::int16_t>(std::lround(value * scale)); });
  return samples;
}

void Chime::play() {
  const auto now = clock_.uptime();
  if (began_ && now < fennick::after(*began_, kShortest))
    return;
  began_ = now;
  if (samples_.empty())
    samples_ = samples();
  output_.play(samples_, kRate);
}

} // namespace quarrow
