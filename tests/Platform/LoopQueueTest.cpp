#include "FennickCore/Platform/LoopQueue.h"

#include "tests/Support/FakeClock.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace fennick {
namespace {

TEST(LoopQueue, TasksRunInOrderAndTimersWhenTheirTimeHasComeAndNotBefore) {
  test::FakeClock clock;
  LoopQueue queue(clock);
  std::string done;
  const auto note = [&](char what) { return [&done, what] { done += what; }; };
  queue.postAfter(Seconds(3), [&] {
    note('c')();
    queue.quit();
  });
  queue.postAfter(Seconds(1), note('a'));
  queue.postAfter(Seconds(1), note('b'));
  queue.postAfter(Seconds(1e18), note('!'));
  queue.post([&] {
    note('1')();
    clock.advance(Seconds(2.999));
    queue.post([&] { queue.post([&] { clock.advance(Seconds(0.001)); }); });
    queue.post([&] { queue.post(note('3')); });
  });
  queue.post(note('2'));
  queue.run();
  EXPECT_EQ(done, "12ab3c");
}

TEST(LoopQueue, ASleepingLoopIsWokenByAnotherThread) {
  test::FakeClock clock;
  LoopQueue queue(clock);
  int done = 0;
  const std::jthread other([&] {
    for (int i = 0; i < 100; ++i)
      queue.post([&] { ++done; });
    queue.quit();
  });
  queue.run();
  EXPECT_EQ(done, 100);
}

} // namespace
} // namespace fennick
