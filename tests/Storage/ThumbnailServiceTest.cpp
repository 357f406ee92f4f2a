#include "FennickCore/Storage/Thumbnails.h"

#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <thread>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Asker = ThumbnailService::Asker;
using Operation = test::FaultyFileSystem::Operation;

class ThumbnailServiceTest : public ::testing::Test {
protected:
  // Returns the thumbnail as text; uses another service to bypass the memory.
  std::string ask(const fs::path &file) { return textOf(service.thumbnail(file)); }
  std::string askAnother(const fs::path &file) {
    return textOf(ThumbnailService(files, disk / "cache", 400, 4, decoder).thumbnail(file));
  }
  static std::string textOf(const ThumbnailService::Result &result) {
    if (result)
      return **result;
    return result.error() == ThumbnailService::Missing::busy ? "busy" : "none";
  }

  std::vector<fs::path> writePhotos(int count) {
    std::vector<fs::path> photos;
    for (int i = 0; i < count; ++i)
      photos.push_back(disk.write(fmt::format("{}.jpg", i)));
    return photos;
  }
  // Asks on another thread, until `finish`.
  void askMeanwhile(const fs::path &file, Asker asker) {
    askers.emplace_back([this, file, asker] { EXPECT_EQ(textOf(service.thumbnail(file, asker)), small); });
  }
  void finish() {
    decoder.release();
    askers.clear();
  }

  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  test::FakeDecoder decoder;
  ThumbnailService service{files, disk / "cache", 400, 2, decoder};
  const fs::path photo = disk.write("a b/海.jpg", "12345");
  const std::string small = test::smallJPEG("small");
  std::vector<std::jthread> askers;
};

TEST_F(ThumbnailServiceTest, MakesAThumbnailOnceAndStoresIt) {
  ASSERT_TRUE(setModificationTime(photo, Instant(std::chrono::milliseconds(7'900))));
  EXPECT_EQ(ask(photo), small);
  EXPECT_EQ(service.thumbnail(photo), service.thumbnail(photo));
  EXPECT_EQ(askAnother(photo), small);
  EXPECT_EQ(decoder.calls(), 1);
  std::string name = photo.string() + "-5-7-400.jpg";
  for (char &c : name)
    c = c == '/' || c == ' ' ? '_' : c;
  EXPECT_THAT(disk.names("cache"), ::testing::ElementsAre(name));
  service.clear();
  EXPECT_THAT(disk.names("cache"), IsEmpty());
  EXPECT_EQ(ask(photo), small);
  EXPECT_EQ(decoder.calls(), 2);
  fs::create_symlink(photo, disk / "link.jpg");
  EXPECT_EQ(ask(disk / "link.jpg") + ask(disk / "gone.jpg") + ask(disk / "a b"), "nonenonenone");
  EXPECT_EQ(decoder.calls(), 2);
}

TEST_F(ThumbnailServiceTest, RendersChangedPicturesAgain) {
  EXPECT_EQ(ask(photo), small);
  disk.write("a b/海.jpg", "123456");
  decoder.setThumbnail(test::smallJPEG("changed"));
  EXPECT_EQ(ask(photo), test::smallJPEG("changed"));

  decoder.before([&] { disk.write("a b/海.jpg", "1234567"); });
  disk.write("a b/海.jpg", "1");
  EXPECT_EQ(ask(photo), test::smallJPEG("changed"));
  disk.write("a b/海.jpg", "1");
  decoder.before(nullptr);
  decoder.setThumbnail(test::smallJPEG("settled"));
  EXPECT_EQ(ask(photo), test::smallJPEG("settled"));
}

TEST_F(ThumbnailServiceTest, SurvivesADamagedCacheAndAFullDisk) {
  EXPECT_EQ(ask(photo), small);
  const std::string name = "cache/" + disk.names("cache").front();
  for (const std::string &damage :
       {std::string(), small.substr(0, 5), small.substr(1), std::string(7, '\0')}) {
    disk.write(name, damage);
    EXPECT_EQ(askAnother(photo), small);
    EXPECT_EQ(disk.read(name), small);
  }
  for (const auto operation : {Operation::createFile, Operation::write, Operation::replace}) {
    fs::remove(disk / name);
    files.failNext(operation, ENOSPC);
    EXPECT_EQ(askAnother(photo), small);
    EXPECT_THAT(disk.names("cache"), IsEmpty());
  }
  fs::remove(disk / "cache");
  EXPECT_EQ(ask(photo), small); // from memory
  disk.write("cache", "a file where the folder should be");
  EXPECT_EQ(askAnother(photo), small);
}

TEST_F(ThumbnailServiceTest, TriesAnUnreadablePictureOnceOrTwice) {
  const auto file = disk.write("broken.jpg");
  decoder.setThumbnail(test::FakeDecoder::kFault(PictureFault::noDecoder));
  EXPECT_EQ(ask(file), "none");
  decoder.setThumbnail(test::FakeDecoder::kFault(PictureFault::undecodable));
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(ask(file), "none");
  EXPECT_EQ(decoder.calls(), 2);
  disk.write("broken.jpg", "1");
  decoder.setThumbnail(test::FakeDecoder::kFault(PictureFault::busy));
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(ask(file), "busy");
  for (const auto fault : {PictureFault::timedOut, PictureFault::crashed, PictureFault::stopped}) {
    decoder.setThumbnail(test::FakeDecoder::kFault(fault));
    EXPECT_EQ(ask(file), "none");
  }
  EXPECT_EQ(decoder.calls(), 7); // twice if the decoder ended
}

TEST_F(ThumbnailServiceTest, KeepsLongPathsAndBinaryNamesApart) {
  const std::string deep = std::string(200, 'x') + "/" + std::string(200, 'y');
  for (const std::string &name :
       {deep + "1.jpg", deep + "2.jpg", std::string("\xFF.jpg"), std::string("\xFE.jpg")}) {
    const auto file = disk.write(name);
    decoder.setThumbnail(test::smallJPEG(name));
    EXPECT_EQ(ask(file), test::smallJPEG(name));
    EXPECT_EQ(askAnother(file), test::smallJPEG(name));
  }
  EXPECT_EQ(decoder.calls(), 4);
  EXPECT_THAT(disk.names("cache"), SizeIs(4));
}

TEST_F(ThumbnailServiceTest, SharesOneRenderAndLimitsOthers) {
  const auto photos = writePhotos(4);
  decoder.hold();
  for (std::size_t i = 0; i < 12; ++i)
    askMeanwhile(photos.at(i % 4), Asker::window);
  decoder.awaitHeld(2); // all slots are in use
  finish();
  EXPECT_EQ(decoder.mostAtOnce(), 2);
  EXPECT_EQ(decoder.calls(), 4);
}

TEST_F(ThumbnailServiceTest, ServesWindowsBesideManyPhoneRequests) {
  decoder.hold();
  for (const auto &each : writePhotos(8))
    askMeanwhile(each, Asker::phone);
  decoder.awaitHeld(2);
  askMeanwhile(photo, Asker::window);
  decoder.awaitHeld(3);
  finish();
  EXPECT_EQ(decoder.mostAtOnce(), 3);
}

TEST_F(ThumbnailServiceTest, WarmsOnlyWhileNobodyWaits) {
  const auto photos = writePhotos(6);
  decoder.hold();
  for (std::size_t i = 0; i < 3; ++i)
    askMeanwhile(photos[i], Asker::phone);
  decoder.awaitHeld(2); // the third one waits
  askMeanwhile(photo, Asker::nobody);
  EXPECT_FALSE(service.known(photo));
  finish();
  EXPECT_EQ(decoder.calls(), 4);
  EXPECT_EQ(textOf(*service.known(photo)), small);
  EXPECT_EQ(textOf(*ThumbnailService(files, disk / "cache", 400, 4, decoder).known(photo)),
            small); // on the disk

  // Renders that nobody waits for take no slot from phones.
  decoder.hold();
  askMeanwhile(photos[3], Asker::nobody);
  decoder.awaitHeld(1);
  askMeanwhile(photos[4], Asker::phone);
  askMeanwhile(photos[5], Asker::phone);
  decoder.awaitHeld(3);
  finish();
}

// The stored thumbnails of the folder "photos" in both sizes.
class ThumbnailsTest : public ThumbnailServiceTest {
protected:
  void make(const fs::path &file) {
    EXPECT_TRUE(thumbnails->small().thumbnail(file));
    EXPECT_TRUE(thumbnails->large().thumbnail(file));
  }
  // Runs `upkeep` and returns the number of remaining thumbnails.
  template <typename Upkeep>
  std::size_t storedAfter(Upkeep upkeep) {
    upkeep(*thumbnails);
    thumbnails.emplace(files, disk / "thumbs", decoder, kMostBytes); // waits for the upkeep
    return disk.names("thumbs/s").size() + disk.names("thumbs/l").size();
  }

  static constexpr std::int64_t kMostBytes = 10 * 4096;
  std::optional<Thumbnails> thumbnails{std::in_place, files, disk / "thumbs", decoder, kMostBytes};
  const fs::path folder = disk / "photos";
};

TEST_F(ThumbnailsTest, RemovesThumbnailsOfGoneAndChangedPhotos) {
  const std::string deep = "photos/" + std::string(200, 'x') + "/" + std::string(150, 'y') + ".jpg";
  const auto forget = [](const fs::path &file) {
    return [file](Thumbnails &stored) { stored.forget({file}); };
  };
  const auto tidy = [this](Thumbnails &stored) { stored.tidy(folder); };
  for (const std::string &name : {std::string("photos/a b.jpg"), std::string("photos/\xFF.jpg"), deep}) {
    const auto file = disk.write(name);
    make(file);
    disk.write(name, "a changed photo");
    make(file);
    EXPECT_EQ(storedAfter(forget(file)), 4U) << "it is still there";
    EXPECT_EQ(storedAfter(tidy), 2U) << "of its version now";
    disk.write(name, "and again");
    make(file);
    fs::remove(file);
    EXPECT_EQ(storedAfter(forget(file)), 0U) << name;
  }
  for (const char *name : {"photos/a.jpg", "photos/2024-05-01/trip/b.HEIC", "photos/originals/c.jpg",
                           "photos/2024-05-01/trip/originals/d.jpg", "elsewhere/e.jpg"})
    make(disk.write(name));
  disk.write("thumbs/s/" + std::string(64, '0') + ".jpg", "of an older form");
  EXPECT_EQ(storedAfter(tidy), 10U);
  fs::rename(folder, disk / "unplugged");
  EXPECT_EQ(storedAfter(tidy), 10U);
  EXPECT_EQ(storedAfter(forget(folder / "a.jpg")), 10U);
  fs::rename(disk / "unplugged", folder);
  fs::remove_all(folder / "2024-05-01");
  fs::remove_all(disk / "elsewhere");
  EXPECT_EQ(storedAfter(tidy), 6U);
}

TEST_F(ThumbnailsTest, EvictsTheLeastRecentlyUsedThumbnails) {
  std::vector<fs::path> photos;
  for (int i = 0; i < 12; ++i) {
    photos.push_back(disk.write(fmt::format("photos/{:02}.jpg", i)));
    make(photos.back());
  }
  for (const auto *size : {"thumbs/s", "thumbs/l"})
    for (const auto &name : disk.names(size))
      ASSERT_TRUE(setModificationTime(disk / size / name, SystemClock().now() - std::chrono::hours(1)));
  EXPECT_EQ(storedAfter([](Thumbnails &) {}), 24U);
  make(photos.front()); // from the disk
  EXPECT_EQ(storedAfter([this](Thumbnails &stored) { stored.tidy(folder); }), 18U);
  EXPECT_THAT(disk.names("thumbs/l"), ::testing::Contains(::testing::HasSubstr("_00.jpg-")));
}

TEST(MemoryCacheTest, EvictsTheLeastRecentlyUsed) {
  const auto data = [](std::size_t bytes) { return std::make_shared<const std::string>(bytes, 'x'); };
  MemoryCache cache(2 * (MemoryCache::kEntryBytes + 1) + 10); // two entries and ten bytes
  cache.put("a", data(4));
  cache.put("b", data(4));
  const auto held = cache.get("b");
  EXPECT_TRUE(cache.get("a"));
  cache.put("c", data(6));
  EXPECT_TRUE(cache.get("a"));
  EXPECT_FALSE(cache.get("b"));
  EXPECT_EQ(held->size(), 4U);
  cache.put("c", data(5)); // counts once
  EXPECT_TRUE(cache.get("a"));
  cache.put("d", data(MemoryCache::kEntryBytes + 12));
  EXPECT_FALSE(cache.get("d"));
  EXPECT_TRUE(cache.get("a"));
  cache.put("e", data(0)), cache.put("f", data(0)); // empty data takes space as well
  EXPECT_FALSE(cache.get("a"));
}

} // namespace
} // namespace fennick
