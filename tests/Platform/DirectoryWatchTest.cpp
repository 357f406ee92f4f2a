#include "FennickCore/Platform/DirectoryWatch.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = DirectoryChange::Kind;

class DirectoryWatchTest : public ::testing::Test {
protected:
  // "+name" for what appeared, "-name" for what vanished, in order; "lost" once, "overflow".
  std::vector<std::string> changes() {
    std::vector<std::string> texts;
    for (const auto &change : watch.drain()) {
      std::string text = textOf(change);
      if (texts.empty() || text != "lost" || texts.back() != "lost")
        texts.push_back(std::move(text));
    }
    return texts;
  }

  test::TemporaryFolder folder;
  DirectoryWatch watch;

private:
  static std::string textOf(const DirectoryChange &change) {
    switch (change.kind) {
    case Kind::appeared:
      return "+" + change.name;
    case Kind::vanished:
      return "-" + change.name;
    case Kind::lost:
      return "lost";
    case Kind::overflow:
      return "overflow";
    }
    return {};
  }
};

TEST_F(DirectoryWatchTest, EveryArrivalAndDepartureIsSeenInOrder) {
  const auto inbox = folder.makeFolder("inbox");
  folder.write("outside");
  ASSERT_TRUE(watch.add(inbox));
  folder.write("inbox/a");
  fs::rename(inbox / "a", inbox / "b");
  fs::rename(folder / "outside", inbox / "c");
  fs::create_hard_link(inbox / "c", inbox / "d");
  fs::remove(inbox / "b");
  fs::rename(inbox / "c", folder / "outside");
  EXPECT_THAT(changes(), ElementsAre("+a", "-a", "+b", "+c", "+d", "-b", "-c"));
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DirectoryWatchTest, WritingIntoAFileIsNoChangeOfTheFolder) {
  const auto file = folder.write("a", "1");
  ASSERT_TRUE(watch.add(folder.path()));
  folder.write("a", "longer");
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DirectoryWatchTest, AFolderThatGoesAwayIsLost) {
  const auto deleted = folder.makeFolder("deleted");
  const auto moved = folder.makeFolder("moved");
  ASSERT_TRUE(watch.add(deleted));
  fs::remove(deleted);
  EXPECT_THAT(changes(), ElementsAre("lost"));
  ASSERT_TRUE(watch.add(moved));
  fs::rename(moved, folder / "elsewhere");
  EXPECT_THAT(changes(), ElementsAre("lost"));
}

TEST_F(DirectoryWatchTest, ChangesNameTheFolderTheyHappenedIn) {
  const auto first = watch.add(folder.makeFolder("first"));
  const auto second = watch.add(folder.makeFolder("second"));
  ASSERT_TRUE(first && second);
  folder.write("second/a");
  const auto seen = watch.drain();
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen.front().watch, *second);
  watch.remove(*second);
  (void)watch.drain();
  folder.write("second/b");
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(DirectoryWatchTest, WhatCannotBeWatchedIsAnError) {
  EXPECT_FALSE(watch.add(folder / "missing"));
  EXPECT_FALSE(watch.add(folder.write("file")));
}

TEST_F(DirectoryWatchTest, DroppedEventsAreToldAsAnOverflow) {
  std::ifstream limit("/proc/sys/fs/inotify/max_queued_events");
  int most = 0;
  if (!(limit >> most) || most > 100'000)
    GTEST_SKIP() << "the system's queue of events is too long to fill";
  ASSERT_TRUE(watch.add(folder.path()));
  const auto a = folder.write("a");
  for (int i = 0; i <= most / 2; ++i) { // two events each
    fs::rename(folder / "a", folder / "b");
    fs::rename(folder / "b", folder / "a");
  }
  EXPECT_EQ(watch.drain().back().kind, Kind::overflow);
  folder.write("afterwards");
  EXPECT_THAT(changes(), ElementsAre("+afterwards"));
}

} // namespace
} // namespace fennick
