#include "FennickCore/Storage/PhotoLibrary.h"

#include "FennickCore/Storage/PhotoOrder.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/ManualQueue.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PhotoLibraryTest : public ::testing::Test {
protected:
  // Writes a photo whose time is the given second.
  fs::path write(const std::string &name, int second) {
    fs::path file = disk.write("photos/" + name);
    EXPECT_TRUE(setModificationTime(file, Instant(std::chrono::seconds(second))));
    return file;
  }
  void open() {
    library->setFolder(photos);
    queue.runUntil([&] { return !library->items().empty(); });
  }
  // Waits until all earlier requests to the library are done.
  void awaitRequests() {
    ++awaited;
    const auto last = write(fmt::format("awaited{}.jpg", awaited), -awaited);
    library->scan();
    library->noteAdded(last);
    queue.runUntil([&] { return library->recentlyAdded().contains(last); });
    fs::remove(last);
    library->remove(std::array{last});
  }
  static std::vector<std::string> namesOf(const PhotoLibrary::Items &items) {
    std::vector<std::string> names;
    for (const auto &item : items)
      names.push_back(item.name);
    return names;
  }
  std::vector<std::string> shown() { return namesOf(library->items()); }
  // Returns the list of a new library.
  std::vector<std::string> shownAfresh() {
    library = std::make_unique<PhotoLibrary>(files, decoder, queue);
    open();
    return shown();
  }

  test::TemporaryFolder disk;
  const fs::path photos = disk.makeFolder("photos");
  SystemFileSystem files;
  test::FakeDecoder decoder;
  test::ManualQueue queue;
  int awaited = 0;
  std::unique_ptr<PhotoLibrary> library = std::make_unique<PhotoLibrary>(files, decoder, queue);
};

TEST_F(PhotoLibraryTest, ListsPhotosAndVideosNewestFirst) {
  write("old.jpg", 1), write("new.MOV", 9), write("day/middle.png", 5), write("day/trip/deep.heic", 7);
  write("\xFF.jpg", 3);
  for (const char *unlisted : {"day/trip/more/a.jpg", "originals/a.jpg", "export/a.jpg", "day/export/a.jpg",
                               ".fennick-incoming/a.jpg", ".a.jpg", "a.txt", "jpg"})
    write(unlisted, 4);
  fs::create_symlink(photos / "old.jpg", photos / "link.jpg");
  fs::create_directory_symlink(disk.makeFolder("outside"), photos / "linked");
  disk.write("outside/a.jpg");
  fs::create_directory(photos / "folder.jpg");
  open();
  EXPECT_THAT(shown(), ElementsAre("new.MOV", "deep.heic", "middle.png", "\xFF.jpg", "old.jpg"));
  const auto &video = library->items().front();
  EXPECT_TRUE(video.isVideo && !video.isImage && !video.pixelWidth);
  EXPECT_EQ(decoder.calls(), 4); // videos are not read
}

TEST_F(PhotoLibraryTest, ReadsOnlyTheNewestPhotosWithinTheLimit) {
  for (int i = 0; i < 600; ++i)
    write(fmt::format("{:03}.jpg", i), i);
  open();
  ASSERT_EQ(library->items().size(), 500U);
  EXPECT_EQ(shown().front() + shown().back(), "599.jpg100.jpg");
  EXPECT_EQ(decoder.calls(), 500);
  awaitRequests(); // scans again: one new file is read
  EXPECT_EQ(decoder.calls(), 501);
}

TEST_F(PhotoLibraryTest, ReportsDimensionsAsShown) {
  write("a.jpg", 1);
  const auto shownAs = [&](PictureResult<PictureFacts> facts) {
    decoder.setFacts(std::move(facts));
    shownAfresh();
    const auto &item = library->items().front();
    return fmt::format("{} x {}{}", item.pixelWidth.value_or(0), item.pixelHeight.value_or(0),
                       item.isOversized ? " oversized" : "");
  };
  EXPECT_EQ(shownAs(PictureFacts{.width = 4000, .height = 3000, .orientation = 6}), "3000 x 4000");
  EXPECT_EQ(shownAs(PictureFacts{.width = 4000, .height = 3000, .orientation = 4}), "4000 x 3000");
  EXPECT_EQ(shownAs(PictureFacts{.width = 20'001, .height = 10, .orientation = 5}), "10 x 20001 oversized");
  EXPECT_EQ(shownAs(PictureFacts{.width = {}, .height = {}, .orientation = {}}), "0 x 0 oversized");
  EXPECT_EQ(shownAs(decoder.kFault(PictureFault::undecodable)), "0 x 0");
}

TEST_F(PhotoLibraryTest, ScansOnceForABurstOfChanges) {
  decoder.setFacts(decoder.kFault(PictureFault::unreadable)); // requested again by every scan
  write("a.jpg", 1);
  open();
  int told = 0;
  const auto subscription = library->observeItems([&](const auto &) { ++told; });
  queue.runUntil([&] { return queue.pending() >= 1; }); // watching has begun
  for (int i = 0; i < 50; ++i)
    write("a.jpg", i % 2);
  queue.runUntil([&] { return queue.pending() >= 3; }); // the watcher reports the first change and the others
  EXPECT_EQ(decoder.calls(), 1);
  queue.advance(Seconds(0.3));
  library->noteAdded(photos / "a.jpg"); // reads it again after the scan
  queue.runUntil([&] { return !library->recentlyAdded().empty(); });
  EXPECT_EQ(decoder.calls(), 3);
  EXPECT_EQ(told, 0);
}

TEST_F(PhotoLibraryTest, PublishesNothingFromAnOvertakenScan) {
  write("old.jpg", 1);
  disk.write("elsewhere/new.jpg");
  std::vector<std::vector<std::string>> seen;
  const auto subscription = library->observeItems([&](const auto &items) { seen.push_back(namesOf(items)); });
  decoder.hold();
  library->setFolder(photos);
  decoder.awaitHeld(1);
  library->setFolder(disk / "elsewhere");
  decoder.release();
  queue.runUntil([&] { return !library->items().empty(); });
  EXPECT_THAT(seen, ElementsAre(ElementsAre("new.jpg")));

  write("gone.jpg", 2);
  open();
  fs::remove(photos / "gone.jpg");
  write("added.jpg", 3);
  decoder.hold();
  library->scan();
  decoder.awaitHeld(1);
  library->remove(std::array{photos / "old.jpg"});
  fs::remove(photos / "old.jpg");
  seen.clear();
  decoder.release();
  queue.runUntil([&] { return shown() == std::vector<std::string>{"added.jpg"}; });
  EXPECT_EQ(seen.size(), 1U);
  library->setFolder(std::nullopt);
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(PhotoLibraryTest, PutsAnAddedFileFirstAndHighlightsIt) {
  write("a.jpg", 5);
  open();
  const auto added = write("b.jpg", 1);
  for (const auto &other : {disk.write("outside.jpg"), write("notes.txt", 9), photos / "gone.jpg", added})
    library->noteAdded(other);
  queue.runUntil([&] { return library->recentlyAdded().size() == 1; });
  EXPECT_THAT(shown(), ElementsAre("b.jpg", "a.jpg"));
  EXPECT_EQ(decoder.calls(), 2); // files elsewhere are not read
  queue.advance(Seconds(1));
  library->noteAdded(added); // processed, and saved again
  awaitRequests();
  queue.advance(Seconds(1.4));
  EXPECT_TRUE(library->recentlyAdded().contains(added));
  queue.advance(Seconds(0.1));
  EXPECT_THAT(library->recentlyAdded(), IsEmpty());
}

TEST_F(PhotoLibraryTest, ShowsUserChangesAtOnceAndAfterLaterScans) {
  write("a.jpg", 9), write("b.jpg", 8), write("c.jpg", 7), write("day/x.jpg", 6), write("day/y.jpg", 5);
  PhotoOrder::save({"gone.jpg", "b.jpg", "a.jpg", "b.jpg"}, photos, files);
  open();
  EXPECT_THAT(shown(), ElementsAre("b.jpg", "a.jpg", "c.jpg", "x.jpg", "y.jpg"));
  library->reorder({photos / "c.jpg", photos / "day/y.jpg", photos / "a.jpg", photos / "unknown.jpg"});
  EXPECT_THAT(shown(), ElementsAre("c.jpg", "a.jpg", "b.jpg", "y.jpg", "x.jpg"));
  EXPECT_THAT(shownAfresh(), ElementsAre("c.jpg", "a.jpg", "b.jpg", "y.jpg", "x.jpg"));
  EXPECT_THAT(PhotoOrder::load(photos), ElementsAre("c.jpg", "a.jpg", "b.jpg"));

  fs::rename(photos / "c.jpg", photos / "swap"); // names are exchanged
  fs::rename(photos / "a.jpg", photos / "c.jpg");
  fs::rename(photos / "swap", photos / "a.jpg");
  library->rename(std::array{Renaming{.from = photos / "c.jpg", .to = photos / "a.jpg"},
                             Renaming{.from = photos / "a.jpg", .to = photos / "c.jpg"}});
  EXPECT_THAT(shown(), ElementsAre("a.jpg", "c.jpg", "b.jpg", "y.jpg", "x.jpg"));
  EXPECT_EQ(library->items().front().url, photos / "a.jpg");
  EXPECT_THAT(shownAfresh(), ElementsAre("a.jpg", "c.jpg", "b.jpg", "y.jpg", "x.jpg"));

  fs::remove(photos / "c.jpg");
  library->remove(std::array{photos / "c.jpg", photos / "unknown.jpg"});
  EXPECT_THAT(shown(), ElementsAre("a.jpg", "b.jpg", "y.jpg", "x.jpg"));
  EXPECT_THAT(shownAfresh(), ElementsAre("a.jpg", "b.jpg", "y.jpg", "x.jpg"));
}

TEST_F(PhotoLibraryTest, RemovesAndRestoresACustomOrder) {
  write("a.jpg", 9), write("b.jpg", 8), write("c.jpg", 7), write("day/x.jpg", 6), write("day/y.jpg", 5);
  std::vector<PhotoLibrary::RearrangementRef> made;
  const auto subscription =
      library->observeRearrangements([&](const auto &change) { made.push_back(change); });
  const auto await = [&](const std::vector<std::string> &names) {
    queue.runUntil([&] { return shown() == names; });
  };
  open();
  EXPECT_FALSE(library->isArranged());
  library->reorder({photos / "a.jpg"}); // changes nothing
  library->reorder({photos / "c.jpg", photos / "day/y.jpg"});
  ASSERT_EQ(made.size(), 1U);
  EXPECT_TRUE(library->isArranged());
  library->sortByDate();
  await({"a.jpg", "b.jpg", "c.jpg", "x.jpg", "y.jpg"});
  EXPECT_FALSE(library->isArranged());
  EXPECT_THAT(disk.names("photos"), ElementsAre("a.jpg", "b.jpg", "c.jpg", "day"));

  library->placeFirst(write("new.jpg", 4));
  library->undo(made.at(1));
  await({"new.jpg", "c.jpg", "a.jpg", "y.jpg", "x.jpg", "b.jpg"});
  EXPECT_TRUE(library->isArranged());
  library->placeFirst(write("newer.jpg", 3));
  library->undo(made.at(0));
  await({"a.jpg", "b.jpg", "c.jpg", "x.jpg", "y.jpg", "new.jpg", "newer.jpg"});
  EXPECT_FALSE(library->isArranged());
}

TEST_F(PhotoLibraryTest, RepeatsAnUndoThatCouldNotBeStored) {
  test::FaultyFileSystem faulty;
  library = std::make_unique<PhotoLibrary>(faulty, decoder, queue);
  write("a.jpg", 2), write("b.jpg", 1);
  PhotoLibrary::RearrangementRef made;
  const auto subscription = library->observeRearrangements([&](const auto &change) { made = change; });
  open();
  library->reorder({photos / "b.jpg"});
  faulty.failNext(test::FaultyFileSystem::Operation::remove, EACCES);
  std::vector<bool> stored;
  library->undo(made, [&](const auto &result) { stored.push_back(result.has_value()); });
  library->undo(made, [&](const auto &result) { stored.push_back(result.has_value()); });
  queue.runUntil([&] { return stored.size() == 2; });
  EXPECT_THAT(stored, ElementsAre(false, true));
  EXPECT_THAT(shownAfresh(), ElementsAre("a.jpg", "b.jpg"));
}

class PhotoOrderTest : public ::testing::Test {
protected:
  void save(const std::vector<std::string> &names) { PhotoOrder::save(names, disk.path(), files); }
  std::vector<std::string> load() { return PhotoOrder::load(disk.path()); }

  test::TemporaryFolder disk;
  SystemFileSystem files;
  const std::string kFile = ".fennick-order.json";
};

TEST_F(PhotoOrderTest, StoresTheOrderAsNames) {
  save({"b.jpg", "a\n\"b\\.jpg", "海.jpg", "\xFF.jpg"});
  EXPECT_EQ(disk.read(kFile), R"({"order":["b.jpg","a\n\"b\\.jpg","海.jpg"]})");
  EXPECT_THAT(load(), ElementsAre("b.jpg", "a\n\"b\\.jpg", "海.jpg"));
  save({});
  EXPECT_THAT(disk.names(), IsEmpty());
  save({}); // nothing to remove
}

TEST_F(PhotoOrderTest, IgnoresFilesThatAreNotAnOrder) {
  for (const char *content :
       {"", "{", "[]", "[\"a.jpg\"]", R"({"order":"x"})", R"({"order":{}})", R"({"order":["a.jpg",1]})",
        R"({"Order":["a.jpg"]})", "{\"order\":[\"\xFF\"]}"}) {
    disk.write(kFile, content);
    EXPECT_THAT(load(), IsEmpty()) << content;
  }
  disk.write(kFile, std::string(100'000, '[')); // deeper than the stack allows
  EXPECT_THAT(load(), IsEmpty());
  fs::remove(disk / kFile);
  EXPECT_THAT(load(), IsEmpty());
  ASSERT_EQ(::mkfifo((disk / kFile).c_str(), 0600), 0);
  EXPECT_THAT(load(), IsEmpty());
}

TEST_F(PhotoOrderTest, DoesNotFollowLinks) {
  const auto outside = disk.write("outside", R"({"order":["a.jpg"]})");
  fs::create_symlink(outside, disk / kFile);
  EXPECT_THAT(load(), IsEmpty());
  save({"b.jpg"});
  EXPECT_THAT(load(), ElementsAre("b.jpg"));
  EXPECT_EQ(disk.read("outside"), R"({"order":["a.jpg"]})");
}

TEST_F(PhotoOrderTest, AppliesEditsAndKeepsTheOtherNames) {
  using Names = PhotoOrder::Names;
  for (const char *name : {"a", "b", "new", "newer"})
    disk.write(name);
  const auto withNew = [&](const Names &order) {
    return PhotoOrder::withNew(order, {"new", "gone", "newer"}, disk.path());
  };
  EXPECT_THAT(withNew({}), IsEmpty());
  EXPECT_THAT(withNew({"b", "new", "trashed", "a"}), ElementsAre("newer", "new", "b", "trashed", "a"));
  Names many(2000, "trashed");
  many.emplace_back("a");
  EXPECT_THAT(withNew(many), ElementsAre("newer", "new", "a"));

  EXPECT_THAT(PhotoOrder::withRestored({"a", "b"}, "b", "b"), ElementsAre("a", "b"));
  EXPECT_THAT(PhotoOrder::withRestored({"a", "b"}, "a", "a_2"), ElementsAre("a", "a_2", "b"));
  EXPECT_THAT(PhotoOrder::withRestored({"a", "b"}, "c", "c"), ElementsAre("c", "a", "b"));
  EXPECT_THAT(PhotoOrder::withRestored({}, "c", "c"), IsEmpty());

  const auto undone = [&](const Names &order, const Names &before, const Names &after) {
    return PhotoOrder::undone(order, {.folder = disk.path(), .before = before, .after = after});
  };
  EXPECT_THAT(undone({"new", "b", "a"}, {"a", "trashed"}, {"b", "a"}), ElementsAre("new", "a", "trashed"));
  EXPECT_THAT(undone({"new", "b", "a"}, {}, {"b", "a"}), IsEmpty());
}

} // namespace
} // namespace fennick
