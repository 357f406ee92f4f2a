#include "tests/Storage/WatchedFolder.h"

#include <fmt/format.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using FolderWatcherTest = test::WatchedFolder;

TEST_F(FolderWatcherTest, NoticesChangesDownToTheSecondLevel) {
  disk.makeFolder("home/photos/2024-05-01/trip");
  watch();
  expectNoticed("arrival", [&] { arrive("a.jpg"); });
  expectNoticed("departure", [&] { fs::remove(photos / "a.jpg"); });
  expectNoticed("order", [&] { arrive(".fennick-order.json"); });
  expectNoticed("second level", [&] { arrive("2024-05-01/trip/a.jpg"); });
  expectNoticed("time", [&] { fs::last_write_time(photos / "2024-05-01/trip/a.jpg", {}); });
  expectNoticed("new folder", [&] { fs::create_directory(photos / "2024-05-02"); });
  expectNoticed("in it", [&] { arrive("2024-05-02/a.jpg"); });
  disk.makeFolder("elsewhere/day/trip");
  expectNoticed("folders moved in", [&] { fs::rename(disk / "elsewhere/day", photos / "day"); });
  expectNoticed("in them", [&] { arrive("day/trip/a.jpg"); });
  expectNoticed("moved away", [&] { fs::rename(photos / "day", disk / "elsewhere/day"); });
}

TEST_F(FolderWatcherTest, IgnoresFilesThatAreNotShown) {
  for (const char *name : {"originals", "export", ".fennick-incoming", "1/2/3"})
    disk.makeFolder(fmt::format("home/photos/{}", name));
  disk.makeFolder("outside");
  fs::create_directory_symlink(disk / "outside", photos / "link");
  watch();
  for (const char *name : {".rotate-1.tmp", "notes.txt", "originals/a.jpg", "export/a.jpg",
                           ".fennick-incoming/X.part", "1/2/3/a.jpg", "link/a.jpg"})
    for (int i = 0; i < 200; ++i) // gives an incorrect watcher time to call
      arrive(name);
  disk.write("home/other/a.jpg");
  expectNothingNoticedSoFar();
}

TEST_F(FolderWatcherTest, FollowsThePathWhenTheFolderIsReplaced) {
  watch();
  const std::vector<std::pair<std::string, std::function<void()>>> turns{
      {"moved away", [&] { fs::rename(photos, disk / "old"); }},
      {"made anew", [&] { fs::create_directory(photos); }},
      {"removed", [&] { fs::remove_all(photos); }},
      {"a link to another", [&] { fs::create_directory_symlink(disk / "old", photos); }},
      {"a folder above moved away", [&] { fs::rename(disk / "home", disk / "away"); }},
      {"and back", [&] { fs::rename(disk / "away", disk / "home"); }},
  };
  for (const auto &[name, turn] : turns)
    expectNoticed(name, turn);
  expectNoticed("behind the link", [&] { arrive("a.jpg"); });
}

} // namespace
} // namespace fennick
