#include "Quarrow/Desktop/Chime.h"

#include "tests/Support/FakeClock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace quarrow {
namespace {

class CountingOutput final : public SoundOutput {
public:
  void play(std::span<const std::int16_t> samples, int rate) override {
    ++count;
    EXPECT_EQ(static_cast<double>(samples.size()) / rate, Chime::kLength.count());
  }
  int count = 0;
};

double loudness(std::span<const std::int16_t> samples) {
  double sum = 0;
  for (const double sample : samples)
    sum += sample * sample;
  return std::sqrt(sum / static_cast<double>(samples.size()));
}

// Returns the amplitude of a frequency.
double amount(std::span<const std::int16_t> samples, double frequency) {
  std::complex<double> sum;
  for (std::size_t i = 0; i < samples.size(); ++i)
    sum += static_cast<double>(samples[i]) *
           std::polar(1.0, -2 * std::numbers::pi * frequency * static_cast<double>(i) / Chime::kRate);
  return std::abs(sum);
}

TEST(ChimeTest, StartsSoftlyAndFadesToSilence) {
  const auto sound = Chime::samples();
  const std::span all(sound);
  const auto peak = std::ranges::max(sound, {}, [](int sample) { return std::abs(sample); });
  EXPECT_NEAR(20 * std::log10(std::abs(peak) / 32767.0), -12, 0.1);
  constexpr std::size_t kMillisecond = Chime::kRate / 1000;
  EXPECT_LT(loudness(all.first(kMillisecond)), 0.2 * loudness(all.subspan(5 * kMillisecond, kMillisecond)));
  EXPECT_LT(loudness(all.last(100 * kMillisecond)), 0.05 * loudness(all.first(100 * kMillisecond)));
  EXPECT_EQ(sound.back(), 0);
  // Its second partial is not an octave, as for glass.
  EXPECT_GT(amount(all, 1318.5 * 2.32), 5 * amount(all, 1318.5 * 2));
}

TEST(ChimeTest, DoesNotInterruptTheSoundInABurst) {
  fennick::test::FakeClock clock;
  CountingOutput output;
  Chime chime(clock, output);
  const std::pair<double, int> story[] = {{0, 1}, {0.29, 1}, {0.02, 2}, {0.2, 2}, {0.2, 3}, {60, 4}};
  for (const auto &[pause, count] : story) {
    clock.advance(fennick::Seconds(pause));
    chime.play();
    EXPECT_EQ(output.count, count) << pause;
  }
}

} // namespace
} // namespace quarrow
