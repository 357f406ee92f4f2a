#include "FennickCore/Platform/Threads/LatestTask.h"
#include "FennickCore/Platform/Threads/ThreadCache.h"
#include "tests/Support/ManualQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

namespace fennick {
namespace {

TEST(Lifetime, RunsGuardedCallbacksUntilCancelledOrDestroyed) {
  std::vector<int> calls;
  auto lifetime = std::make_unique<Lifetime>();
  const auto note = [&](int value) { calls.push_back(value); };
  const auto cancelled = lifetime->guard(note);
  const auto token = lifetime->token();
  cancelled(1);
  lifetime->cancel();
  cancelled(2);
  EXPECT_TRUE(token.isCancelled());

  const auto current = lifetime->guard(note);
  current(3);
  lifetime.reset();
  current(4);
  EXPECT_EQ(calls, (std::vector{1, 3}));
}

TEST(LatestTask, DeliversOnlyTheLatestRequest) {
  test::ManualQueue mainQueue;
  std::vector<int> delivered;
  std::vector<int> computed;
  LatestTask<int> task(mainQueue, "latest", [&](int result) { delivered.push_back(result); });
  std::latch started(1);
  std::latch goOn(1);
  const auto compute = [&](int number) {
    computed.push_back(number);
    return number;
  };
  task.request([&] {
    started.count_down();
    goOn.wait();
    return compute(1);
  });
  started.wait();
  task.request([&] { return compute(2); }); // overtaken before it starts
  task.request([&] { return compute(3); });
  goOn.count_down();
  mainQueue.runUntil([&] { return !delivered.empty(); });
  EXPECT_EQ(computed, (std::vector{1, 3}));
  EXPECT_EQ(delivered, std::vector{3});
}

TEST(LatestTask, DeliversNothingAfterCancelOrDestruction) {
  test::ManualQueue mainQueue;
  int delivered = 0;
  for (const bool isDestroyed : {false, true}) {
    auto task = std::make_unique<LatestTask<int>>(mainQueue, "latest", [&](int) { ++delivered; });
    std::latch computed(1);
    task->request([&] {
      computed.count_down();
      return 1;
    });
    computed.wait();
    if (isDestroyed)
      task.reset();
    else
      task->cancel();
    task.reset(); // the thread has posted its result already
    mainQueue.run();
    EXPECT_EQ(delivered, 0);
  }
}

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
