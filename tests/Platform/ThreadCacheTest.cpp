#include "FennickCore/Platform/Threads/ThreadCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

namespace fennick {
namespace {

TEST(ThreadCache, RunsEveryTaskAtOnce) {
  std::latch together(32); // passed only if all run at the same time
  std::atomic<int> done = 0;
  {
    ThreadCache threads(2);
    for (int i = 0; i < 32; ++i)
      threads.run([&] {
        together.arrive_and_wait();
        ++done;
      });
    std::vector<std::jthread> callers;
    for (int caller = 0; caller < 4; ++caller)
      callers.emplace_back([&] {
        for (int i = 0; i < 200; ++i)
          threads.run([&] { ++done; });
      });
  } // waits for them
  EXPECT_EQ(done, 832);
}

} // namespace
} // namespace fennick
