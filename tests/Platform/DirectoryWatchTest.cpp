#include "FennickCore/Platform/Files/DirectoryWatch.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

class DirectoryWatchTest : public ::testing::Test {
protected:
  // Returns "+name" for new entries, "-name" for removed ones, "lost" and "overflow", in order without
  // repetitions.
  std::vector<std::string> changes() {
    constexpr auto textOf = [](const DirectoryChange &change) -> std::string {
      using enum DirectoryChange::Kind;
      return change.kind == appeared   ? "+" + change.name
             : change.kind == vanished ? "-" + change.name
             : change.kind == lost     ? "lost"
                                       : "overflow";
    };
    std::vector<std::string> texts;
    for (const auto &change : watch.drain())
      if (texts.empty() || texts.back() != textOf(change))
        texts.push_back(textOf(change));
    return texts;
  }

  test::TemporaryFolder folder;
  DirectoryWatch watch;
};

TEST_F(DirectoryWatchTest, ReportsDroppedEventsAsAnOverflow) {
  std::ifstream limit("/proc/sys/fs/inotify/max_queued_events");
  int most = 0;
  if (!(limit >> most) || most > 100'000)
    GTEST_SKIP() << "the system's queue of events is too long to fill";
  ASSERT_TRUE(watch.add(folder.path()));
  folder.write("a");
  for (int i = 0; i <= most / 2; ++i) { // two events each
    fs::rename(folder / "a", folder / "b");
    fs::rename(folder / "b", folder / "a");
  }
  EXPECT_EQ(changes().back(), "overflow");
  folder.write("afterwards");
  EXPECT_THAT(changes(), ElementsAre("+afterwards"));
}

} // namespace
} // namespace fennick
