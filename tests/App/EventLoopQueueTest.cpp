#include "Quarrow/App/EventLoopQueue.h"

#include "tests/Support/FakeClock.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

namespace quarrow {
namespace {

using fennick::Seconds;

class EventLoopQueueTest : public ::testing::Test {
protected:
  [[nodiscard]] auto note(char what) {
    return [this, what] { done += what; };
  }
  static void quit() { QCoreApplication::quit(); }

  std::string name = "tests";
  char *arguments[2] = {name.data(), nullptr};
  int count = 1;
  QCoreApplication application{count, arguments};
  fennick::test::FakeClock clock;
  EventLoopQueue queue{clock};
  std::string done;
};

TEST_F(EventLoopQueueTest, RunsTasksInOrderAndTimersWhenDue) {
  queue.postAfter(Seconds(3), [&] {
    note('c')();
    quit();
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
  QCoreApplication::exec();
  EXPECT_EQ(done, "12ab3c");
}

TEST_F(EventLoopQueueTest, WakesTheLoopFromAnotherThreadAndByTimer) {
  const fennick::SystemClock real;
  EventLoopQueue sleeping(real);
  int ran = 0;
  const std::jthread other([&] {
    for (int i = 0; i < 100; ++i)
      sleeping.post([&] { ++ran; });
    sleeping.postAfter(Seconds(3600), [&] { ran = -1; });
    sleeping.postAfter(Seconds(0.002), quit);
    sleeping.postAfter(Seconds(0.001), [&] { ++ran; });
  });
  QCoreApplication::exec();
  EXPECT_EQ(ran, 101);
}

TEST_F(EventLoopQueueTest, RunsLaterTasksInsideANestedLoop) {
  queue.post([&] {
    queue.post(note('4'));
    QEventLoop nested;
    queue.post([&] { nested.quit(); });
    nested.exec();
    note('5')();
    quit();
  });
  for (const char what : {'1', '2', '3'})
    queue.post(note(what));
  QCoreApplication::exec();
  EXPECT_EQ(done, "12345");
}

TEST_F(EventLoopQueueTest, LetsOtherEventsRunBetweenTasks) {
  const std::function<void()> again = [&] { queue.post(again); };
  again();
  QObject::connect(
      &application, &QCoreApplication::applicationNameChanged, &application, [&] { done = "seen"; },
      Qt::QueuedConnection);
  QCoreApplication::setApplicationName("other");
  while (done.empty())
    QCoreApplication::processEvents();
}

TEST_F(EventLoopQueueTest, DrainsDueTasksAndThoseTheyPost) {
  queue.postAfter(Seconds(2), note('!'));
  queue.postAfter(Seconds(1), note('3'));
  clock.advance(Seconds(1));
  queue.post([&] {
    note('1')();
    queue.post([&] { queue.post(note('4')); });
  });
  queue.post(note('2'));
  queue.drain();
  EXPECT_EQ(done, "1234");
}

} // namespace
} // namespace quarrow
