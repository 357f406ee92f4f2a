#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <cerrno>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using test::kJPEG;
using test::Operation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr PrivateData kLocation{.location = true};
const ImagingOptions kStrip{.stripLocation = true};
const ImagingOptions kStripAll{.stripAllMetadata = true};

class PendingPhotosTest : public test::UploadStage {
protected:
  PendingPhotosTest() {
    gallery = destination.folder;
    pending.setFolder(destination.folder);
    pending.setOptions(kStrip);
  }
  // Returns what phones get of each photo: its list entry, its file and its thumbnail must agree.
  std::vector<std::string> shown() {
    const std::string list = ask("GET /gallery?k=secret");
    std::vector<std::string> names;
    for (const auto &name : photos()) {
      const bool isListed = list.contains(name);
      for (const char *route : {"file", "thumb"}) {
        const auto answer =
            std::get<HTTPRespond>(decide(fmt::format("GET /{}/{}?k=secret", route, name))).response;
        EXPECT_EQ(answer.status, isListed ? 200 : 404) << route << " " << name;
      }
      if (isListed)
        names.push_back(name);
    }
    EXPECT_GE(galleryCount(*gallery, &pending), std::ssize(names)); // may miss a rename
    return names;
  }
  // Records that the last received photo keeps its location.
  void keepLast() {
    const auto last = reported().back();
    ASSERT_TRUE(pending.begin(last.pending));
    EXPECT_TRUE(pending.finish(last.pending, last.url, kLocation, kLocation));
  }
};

TEST_F(PendingPhotosTest, ShowsAPhotoOnceItsPrivateDataIsRemoved) {
  disk.write("photos/own.jpg", kJPEG);
  EXPECT_EQ(upload(kJPEG), "200 IMG_001.jpg");
  EXPECT_THAT(shown(), ElementsAre("own.jpg"));
  pending.setOptions({});
  EXPECT_THAT(shown(), ElementsAre("IMG_001.jpg", "own.jpg"));
  pending.setOptions(kStripAll);
  const auto record = reported().back();
  EXPECT_FALSE(pending.finish(record.pending, record.url, {.metadata = true}, kLocation))
      << "more is to be removed than was when the processing began";
  EXPECT_THAT(shown(), ElementsAre("own.jpg"));
  EXPECT_TRUE(pending.finish(record.pending, record.url, {.metadata = true}, {true, true}));
  EXPECT_THAT(shown(), ElementsAre("own.jpg"));
  pending.setOptions(kStrip); // it has no location
  EXPECT_THAT(shown(), ElementsAre("IMG_001.jpg", "own.jpg"));

  upload(kJPEG);
  const auto second = reported().back();
  EXPECT_TRUE(pending.finish(second.pending, second.url, {.metadata = true}, kLocation));
  EXPECT_THAT(shown(), SizeIs(3));
  gallery = disk.makeFolder("photos/originals");
  disk.write("photos/originals/IMG_001.jpg", kJPEG);
  EXPECT_EQ(ask("GET /gallery?k=secret"), "respond 200 []");
}

TEST_F(PendingPhotosTest, HidesAPhotoWithLocationUnderAnyName) {
  upload(kJPEG);
  keepLast();
  const auto rename = [&](const char *from, const char *to) {
    fs::rename(disk / "photos" / from, disk / "photos" / to);
  };
  rename("IMG_001.jpg", "a.jpg");
  EXPECT_THAT(shown(), IsEmpty()) << "before the change is noticed";
  pending.follow();
  disk.write("photos/turned.tmp", "turned");
  rename("turned.tmp", "a.jpg"); // a rotation replaces the file
  EXPECT_THAT(shown(), IsEmpty());
  pending.follow();
  rename("a.jpg", "b.jpg");
  EXPECT_THAT(shown(), IsEmpty());
  const auto time = fs::last_write_time(disk / "photos/b.jpg");
  fs::copy_file(disk / "photos/b.jpg", disk / "photos/c.jpg"); // FAT drives give a file another inode
  fs::last_write_time(disk / "photos/c.jpg", time);
  fs::remove(disk / "photos/b.jpg");
  EXPECT_THAT(shown(), IsEmpty());
  pending.follow();
  rename("c.jpg", "b.jpg");

  PendingPhotos next(files); // another run or program
  next.setFolder(destination.folder);
  next.setOptions(kStrip);
  EXPECT_THAT(galleryList(*gallery, &next), IsEmpty());
  EXPECT_THAT(next.takeOver(), IsEmpty());
  next.follow();
  disk.write("photos/IMG_001.jpg", kJPEG);
  EXPECT_THAT(galleryList(*gallery, &next), SizeIs(1)) << "the user's own photo under the former name";
  pending.setOptions({});
  EXPECT_THAT(shown(), ElementsAre("IMG_001.jpg", "b.jpg"));
}

TEST_F(PendingPhotosTest, RefusesUnrecordableUploadsOnlyIfDataMustBeRemoved) {
  for (const auto operation :
       {Operation::createFile, Operation::write, Operation::sync, Operation::replace}) {
    auto sink = admit(kJPEG.size());
    ASSERT_TRUE(sink->write(std::as_bytes(std::span(kJPEG))));
    files.before(Operation::createDirectories, [&] { files.failNext(operation, ENOSPC); });
    EXPECT_EQ(textOf(sink->finish()), "500 保存失败 / save failed") << static_cast<int>(operation);
    files.before(Operation::createDirectories, {});
    files.mend(operation);
    EXPECT_THAT(photos(), IsEmpty());
    EXPECT_THAT(parts(), IsEmpty());
  }
  pending.setOptions({.maxPixels = 100});
  auto sink = admit(kJPEG.size());
  files.failAlways(Operation::replace, ENOSPC);
  EXPECT_TRUE(finish(std::move(sink), kJPEG).starts_with("200 IMG_"));
  EXPECT_THAT(parts(), IsEmpty());
  files.mend(Operation::replace);
  pending.setOptions(kStrip);
  EXPECT_THAT(shown(), IsEmpty());
  pending.follow();
  EXPECT_THAT(parts(), SizeIs(1)) << "a photo that waits is recorded as soon as options need it";
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(PendingPhotosTest, HidesEverythingWhileRecordsCannotBeListed) {
  upload(kJPEG);
  keepLast();
  pending.setFolder({}); // forgets the records
  pending.setFolder(destination.folder);
  disk.write("photos/own.jpg", kJPEG);
  const auto status = fileStatus(*gallery / "IMG_001.jpg");
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const bool isActive = pending.isActive(*gallery);
  const bool hides = pending.hides(*gallery / "IMG_001.jpg", &*status);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_TRUE(isActive && hides);
  EXPECT_THAT(shown(), ElementsAre("own.jpg"));
}

TEST_F(PendingPhotosTest, KeepsAPhotoWithADamagedRecord) {
  upload(kJPEG);
  upload(kJPEG + "!");
  const auto records = parts();
  disk.write("photos/.fennick-incoming/" + records[0], R"({"path":"../outside.jpg","bytes":1})");
  disk.write("photos/.fennick-incoming/" + records[1], std::string(1000, '['));
  PendingPhotos next(files);
  next.setFolder(destination.folder);
  next.setOptions(kStrip);
  EXPECT_THAT(next.takeOver(), IsEmpty());
  EXPECT_THAT(galleryList(*gallery, &next), IsEmpty());
  EXPECT_THAT(photos(), SizeIs(2));
}

} // namespace
} // namespace fennick
