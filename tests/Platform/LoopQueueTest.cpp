#include "FennickCore/Platform/LoopQueue.h"

#include "tests/Support/FakeClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace fennick {
namespace {

using ::testing::ElementsAre;

class LoopQueueTest : public ::testing::Test {
protected:
  auto note(const std::string &what) {
    return [this, what] { done.push_back(what); };
  }

  test::FakeClock clock;
  LoopQueue queue{clock};
  std::vector<std::string> done;
};

TEST_F(LoopQueueTest, TasksRunInTheOrderPosted) {
  queue.post(note("1"));
  queue.post([this] {
    note("2")();
    queue.post(note("4"));
  });
  queue.post(note("3"));
  queue.quit();
  queue.run();
  EXPECT_THAT(done, ElementsAre("1", "2", "3", "4"));
}

TEST_F(LoopQueueTest, TimersRunWhenTheirTimeHasComeAndNotBefore) {
  queue.postAfter(Seconds(3), note("3 s"));
  queue.postAfter(Seconds(1), note("1 s"));
  queue.postAfter(Seconds(1), note("1 s, later"));
  queue.postAfter(Seconds(1e18), note("never"));
  queue.post([this] { clock.advance(Seconds(1)); });
  queue.post([this] {
    queue.post([this] { clock.advance(Seconds(1.999)); });
    queue.post([this] {
      queue.post([this] {
        EXPECT_THAT(done, ElementsAre("1 s", "1 s, later"));
        clock.advance(Seconds(0.001));
        queue.post([this] { queue.quit(); });
      });
    });
  });
  queue.run();
  EXPECT_THAT(done, ElementsAre("1 s", "1 s, later", "3 s"));
}

TEST_F(LoopQueueTest, ASleepingLoopIsWokenByAnotherThread) {
  std::thread other([this] {
    for (int i = 0; i < 100; ++i)
      queue.post([this, i] { done.push_back(std::to_string(i)); });
    queue.quit();
  });
  queue.run();
  other.join();
  ASSERT_EQ(done.size(), 100U);
  EXPECT_EQ(done.front(), "0");
  EXPECT_EQ(done.back(), "99");
}

} // namespace
} // namespace fennick
