#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Platform/System/Log.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <csignal>
#include <future>
#include <set>
#include <thread>
#include <vector>

namespace fennick {
namespace {

using test::TemporaryFolder;

// No test of this program writes to the system's log.
const bool kIsQuiet = (logTo([](std::string_view) {}), true);

class DecoderPoolTest : public testing::Test {
protected:
  static DecoderPool::Options misbehaving(const std::string &way) {
    return {.program = MISBEHAVING_PROGRAM,
            .arguments = {way},
            .thumbnailTimeout = Seconds(way == "hang" ? 1.5 : 60)}; // sufficient on a busy computer
  }
  std::string processServing(DecoderPool &pool) { return pool.thumbnail(good, 400, 0.7).value_or("none"); }

  TemporaryFolder folder;
  std::filesystem::path good = folder.write("good.jpg", "good");
  std::filesystem::path bad = folder.write("bad.jpg", "bad");
};

TEST_F(DecoderPoolTest, LosesOnlyThePictureOfAProcessThatFails) {
  const std::vector<std::pair<std::string, PictureFault>> ways{
      {"crash", PictureFault::crashed},    {"leave", PictureFault::crashed},
      {"hang", PictureFault::timedOut},    {"babble", PictureFault::crashed},
      {"no-bytes", PictureFault::crashed}, {"unsealed", PictureFault::crashed}};
  for (const auto &[way, fault] : ways) {
    DecoderPool pool(misbehaving(way));
    const std::string first = processServing(pool);
    const auto result = pool.thumbnail(bad, 400, 0.7);
    ASSERT_FALSE(result) << way;
    EXPECT_EQ(result.error().fault, fault) << way << ": " << result.error().detail;
    EXPECT_EQ(pool.processCount(), 0U) << way;
    const std::string second = processServing(pool);
    EXPECT_NE(second, "none") << way;
    EXPECT_NE(second, first) << way << ": the process that went wrong is not asked again";
  }
}

TEST_F(DecoderPoolTest, RefusesToDecodeWithoutTheSandbox) {
  for (const char *way : {"open", "no-hello"}) {
    DecoderPool pool(misbehaving(way));
    const auto result = pool.thumbnail(good, 400, 0.7);
    ASSERT_FALSE(result) << way;
    EXPECT_EQ(result.error().fault, PictureFault::noDecoder);
    EXPECT_FALSE(pool.canEncodeHEIC());
    EXPECT_EQ(pool.processCount(), 0U);
  }
  DecoderPool missing({.program = folder / "not-there"});
  EXPECT_EQ(missing.facts(good).error().fault, PictureFault::noDecoder);
}

TEST_F(DecoderPoolTest, LimitsTheProcessesAndEndsIdleOnes) {
  auto options = misbehaving("crash");
  options.mostProcesses = 2;
  options.thumbnailTimeout = Seconds(30);
  DecoderPool pool(options);
  std::vector<std::future<std::string>> answers;
  for (int i = 0; i < 16; ++i)
    answers.push_back(std::async(std::launch::async, [&] { return processServing(pool); }));
  std::set<std::string> processes;
  for (auto &answer : answers)
    processes.insert(answer.get());
  EXPECT_FALSE(processes.contains("none"));
  EXPECT_LE(processes.size(), 2U);

  options.idleTime = Seconds(0);
  DecoderPool impatient(options);
  EXPECT_NE(processServing(impatient), "none");
  while (impatient.processCount() > 0) // until the idle process has been ended
    std::this_thread::yield();
}

TEST_F(DecoderPoolTest, ReservesProcessesForFactsAndEncodingsAndStopsAll) {
  auto options = misbehaving("hang");
  options.mostProcesses = 3;
  options.mostForThumbnails = 1;
  options.thumbnailTimeout = Seconds(90);
  options.waitTimeout = Seconds(0);
  DecoderPool pool(options);
  auto hanging = std::async(std::launch::async, [&] { return pool.thumbnail(bad, 400, 0.7); });
  while (pool.processCount() == 0)
    std::this_thread::yield();
  EXPECT_EQ(pool.thumbnail(good, 400, 0.7).error().fault, PictureFault::busy);
  EXPECT_TRUE(pool.facts(good));
  auto rendering = std::async(std::launch::async, [&] { return pool.render(bad, {}, Seconds(90)); });
  while (pool.processCount() < 3) // the hanging ones, and an idle one
    std::this_thread::yield();
  EXPECT_TRUE(pool.withOrientation(good, 6)); // the idle process is replaced
  EXPECT_EQ(pool.facts(good).error().fault, PictureFault::busy);
  pool.stop();
  EXPECT_EQ(hanging.get().error().fault, PictureFault::stopped);
  EXPECT_EQ(rendering.get().error().fault, PictureFault::stopped);
  EXPECT_EQ(pool.facts(good).error().fault, PictureFault::stopped);
  EXPECT_EQ(pool.processCount(), 0U);
}

TEST_F(DecoderPoolTest, MakesReplacementsInAProcessThatReadsNoOtherPicture) {
  DecoderPool pool(misbehaving("crash"));
  const std::string warm = processServing(pool);
  std::set<std::string> processes{warm};
  for (int i = 0; i < 3; ++i)
    processes.insert(pool.render(good, {}, Seconds(30))->bytes);
  processes.insert(pool.withOrientation(good, 6).value());
  EXPECT_EQ(processes.size(), 5U);
  EXPECT_EQ(pool.render(good, {}, Seconds(30))->longEdge, 27) << "the search ends before the time is over";
  EXPECT_TRUE(pool.canEncodeHEIC());
  EXPECT_EQ(processServing(pool), warm);
  ::kill(std::stoi(warm), SIGKILL); // while it is idle
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(std::stoi(warm)), &ended, WEXITED | WNOWAIT);
  EXPECT_NE(processServing(pool), "none");
}

TEST_F(DecoderPoolTest, ReportsFilesThatCannotBeOpenedAsUnreadable) {
  DecoderPool pool(misbehaving("crash"));
  std::filesystem::create_symlink(good, folder / "link.jpg");
  for (const auto &file : {folder / "missing.jpg", folder / "link.jpg", folder.path()})
    EXPECT_EQ(pool.thumbnail(file, 400, 0.7).error().fault, PictureFault::unreadable) << file;
  EXPECT_EQ(pool.processCount(), 0U);
}

} // namespace
} // namespace fennick
