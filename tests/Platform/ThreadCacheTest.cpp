#include "FennickCore/Platform/ThreadCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <latch>
#include <thread>
#include <vector>

namespace fennick {
namespace {

TEST(ThreadCache, EveryTaskRunsAtOnceHoweverManyWait) {
  constexpr int kTasks = 32;
  std::latch together(kTasks); // passed only when all of them run at the same time
  std::atomic<int> done = 0;
  {
    ThreadCache threads(2);
    for (int i = 0; i < kTasks; ++i)
      threads.run([&] {
        together.arrive_and_wait();
        ++done;
      });
  } // waits for them
  EXPECT_EQ(done, kTasks);
}

TEST(ThreadCache, AnIdleThreadTakesALaterTask) {
  ThreadCache threads(1);
  for (int mostByOne = 0; mostByOne < 2;) { // at the latest once the first thread had the time to fall asleep
    std::promise<int> ran;
    threads.run([&] {
      static thread_local int byThisThread = 0;
      ran.set_value(++byThisThread);
    });
    mostByOne = ran.get_future().get();
  }
}

TEST(ThreadCache, ATaskHandedInWhileOthersEndIsNeverLost) {
  std::atomic<int> done = 0;
  {
    ThreadCache threads(3);
    std::vector<std::jthread> callers;
    for (int caller = 0; caller < 4; ++caller)
      callers.emplace_back([&] {
        for (int i = 0; i < 200; ++i)
          threads.run([&] { ++done; });
      });
  }
  EXPECT_EQ(done, 800);
}

} // namespace
} // namespace fennick
