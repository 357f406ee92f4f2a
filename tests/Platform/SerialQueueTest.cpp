#include "FennickCore/Platform/SerialQueue.h"

#include <gtest/gtest.h>

#include <latch>
#include <numeric>
#include <vector>

namespace fennick {
namespace {

TEST(SerialQueueTest, TasksRunInOrderAndAllOfThemBeforeTheQueueIsGone) {
  std::vector<int> expected(100);
  std::iota(expected.begin(), expected.end(), 0);
  std::vector<int> ran;
  std::latch posted(1);
  {
    SerialQueue queue("a label that is far too long for a thread");
    queue.post([&] { posted.wait(); });
    for (const int i : expected)
      queue.post([&, i] { ran.push_back(i); });
    posted.count_down();
  }
  EXPECT_EQ(ran, expected);
}

} // namespace
} // namespace fennick
