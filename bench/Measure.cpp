#include "bench/Measure.h"

#include "FennickCore/Platform/System/Random.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace bench {

double secondsOf(const std::function<void()> &work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
}

void runMany(int count, int parallel, const std::function<void(int)> &work) {
  std::atomic<int> next = 0;
  std::vector<std::jthread> threads;
  for (int t = 0; t < parallel; ++t)
    threads.emplace_back([&] {
      for (int i = next++; i < count; i = next++)
        work(i);
    });
}

std::vector<double> compare(const std::vector<Contender> &contenders, int rounds, WarmUp warmUp) {
  std::vector<std::vector<double>> times(contenders.size());
  for (int round = warmUp == WarmUp::yes ? -1 : 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      const double seconds = secondsOf(contenders[i].run);
      contenders[i].cleanUp();
      if (round >= 0)
        times[i].push_back(seconds);
    }
  }
  std::vector<double> medians;
  for (const auto &values : times)
    medians.push_back(median(values));
  return medians;
}

void printTimes(const std::vector<Contender> &contenders, const std::vector<double> &seconds, int perRun) {
  for (std::size_t i = 0; i < contenders.size(); ++i) {
    fmt::print("    {:<34} {:>9.2f} ms", contenders[i].name, seconds[i] * 1e3 / perRun);
    if (i > 0)
      fmt::print("   {} takes {:.2f} x as long", contenders[0].name, seconds[0] / seconds[i]);
    fmt::print("\n");
  }
}

Scratch::Scratch(const std::filesystem::path &parent)
    : path_(parent / ("tevrin-bench-" + fennick::newUUID())) {
  std::filesystem::create_directories(path_);
}

Scratch::~Scratch() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void Scratch::empty() const {
  for (const auto &entry : std::filesystem::directory_iterator(path_))
    std::filesystem::remove_all(entry.path());
}

} // namespace bench
