#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Storage/PhotoOrder.h"
#include "tests/Support/Words.h"
#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <atomic>
#include <latch>
#include <map>
#include <thread>
#include <vector>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using test::smallJPEG;
using ::testing::Contains;
using ::testing::ElementsAre;

class GalleryTest : public test::UploadStage {
protected:
  GalleryTest() { gallery = destination.folder; }

  fs::path write(const std::string &name, double second, std::string_view content = test::kJPEG) {
    auto file = disk.write("photos/" + name, content);
    const auto modified = std::chrono::duration_cast<std::chrono::nanoseconds>(Seconds(second));
    EXPECT_TRUE(setModificationTime(file, Instant(modified)));
    return file;
  }
  nlohmann::json list() {
    return nlohmann::json::parse(ask("GET /gallery?k=secret").substr(sizeof "respond 200"));
  }
  std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto &entry : list())
      names.push_back(entry.at("name"));
    return names;
  }
  HTTPResponse get(const std::string &path) {
    return std::get<HTTPRespond>(decide(fmt::format("GET {}", path))).response;
  }
  // Returns the photo in the response, or "404".
  std::string served(const std::string &path) {
    const auto answer = get("/file/" + path + "?k=secret");
    return answer.bodyFile ? answer.bodyFile->filename().string() : std::to_string(answer.status);
  }
  static auto thumbnailHeaders() {
    return ElementsAre(std::pair("Content-Type", "image/jpeg"),
                       std::pair("X-Content-Type-Options", "nosniff"),
                       std::pair("Cache-Control", "private, max-age=600"));
  }
};

TEST_F(GalleryTest, ListsPhotosAsArrangedThenNewestFirst) {
  EXPECT_EQ(ask("GET /gallery?k=secret"), "respond 200 []");
  write("a.JPG", 1.9, "12345"), write("b.heif", -1.9, "1"), write("c.png", 3), write("海 \n.gif", 2);
  for (const char *unlisted : {"clip.mov", "raw.dng", ".a.jpg", "a.txt", "sub/a.jpg", "a\\b.jpg", "\xFF.jpg"})
    write(unlisted, 9);
  fs::create_symlink(disk / "photos/a.JPG", disk / "photos/link.jpg");
  EXPECT_THAT(names(), ElementsAre("c.png", "海 \n.gif", "a.JPG", "b.heif"));
  PhotoOrder::save({"b.heif", "clip.mov", "a.JPG"}, *gallery, files);
  EXPECT_EQ(
      ask("GET /gallery?k=secret").substr(0, 102),
      R"(respond 200 [{"name":"b.heif","bytes":1,"time":-1},{"name":"a.JPG","bytes":5,"time":1},{"name":"c.png")");
  for (int i = 0; i < 600; ++i)
    write(fmt::format("{}.jpg", i), 100 + i);
  const auto all = names();
  ASSERT_EQ(all.size(), 500U);
  EXPECT_EQ(all[0] + all[1] + all[2] + all[499], "b.heifa.JPG599.jpg102.jpg");
  EXPECT_TRUE(ask("GET /quota?k=secret").starts_with(R"(respond 200 {"gallery":true)"));
  gallery = disk / "gone";
  EXPECT_EQ(ask("GET /gallery?k=secret"), "respond 200 []");
}

TEST_F(GalleryTest, ServesOnlyPhotosDirectlyInTheFolder) {
  const std::string longest = std::string(251, 'x') + ".jpg";
  for (const auto &name :
       {std::string("a b.jpg"), std::string("UPPER.JPG"), std::string("海\n%2F.jpg"), longest})
    write(name, 1);
  EXPECT_EQ(served("a%20b.jpg"), "a b.jpg");
  EXPECT_EQ(served("%55PPER%2eJPG"), "UPPER.JPG");
  EXPECT_EQ(served("%E6%B5%B7%0A%252F.jpg"), "海\n%2F.jpg");
  EXPECT_EQ(served(longest), longest);

  disk.write("secret.jpg");
  for (const char *name :
       {".hidden.jpg", "clip.mov", "raw.dng", "sub/a.jpg", "a\\b.jpg", "a.txt", "\xFF.jpg"})
    write(name, 1);
  fs::create_symlink(disk / "secret.jpg", disk / "photos/link.jpg");
  fs::create_directory_symlink(disk.path(), disk / "photos/up");
  fs::create_directory(disk / "photos/folder.jpg");
  ASSERT_EQ(::mkfifo((disk / "photos/pipe.jpg").c_str(), 0600), 0);
  auto names = test::words(". .. ../secret.jpg ..%2Fsecret.jpg %2e%2e%2fsecret.jpg ..%5Csecret.jpg "
                           "%252e%252e%252fsecret.jpg %c0%ae%c0%ae%c0%afsecret.jpg ..%ef%bc%8fsecret.jpg "
                           "/secret.jpg %2Fetc%2Fpasswd up/secret.jpg up%2Fsecret.jpg sub%2Fa.jpg "
                           "a%5Cb.jpg .hidden.jpg %2Ehidden.jpg clip.mov raw.dng a.txt link.jpg pipe.jpg "
                           "folder.jpg gone.jpg %FF.jpg UPPER.jpg a%20b.jpg%00 a%20b.jpg%00.jpg "
                           "a%20b.jpg/ a%20b.jpg. a%20b.jpg%20 a%2 % jpg .jpg x.jpg%2F..%2Fa%20b.jpg");
  names.emplace_back();
  for (const auto &refused : names) {
    EXPECT_EQ(served(refused), "404") << refused;
    EXPECT_EQ(ask("GET /thumb/" + refused + "?k=secret"), "respond 404 not found") << refused;
  }
  EXPECT_EQ(served(longest + "x"), "404");
  EXPECT_EQ(decoder.calls(), 0);
}

TEST_F(GalleryTest, SendsTheMediaTypeOfTheContent) {
  const std::string box = std::string("\0\0\0\x18", 4) + "ftyp";
  for (const auto &[content, type] : std::initializer_list<std::pair<std::string, std::string>>{
           {test::kJPEG, "image/jpeg"},
           {test::kTIFF, "image/tiff"},
           {"\x89PNG\r\n\x1A\n", "image/png"},
           {box + "heic", "image/heic"},
           {box + "qt  ", "video/quicktime"},
           {"<script>alert(1)</script>", "application/octet-stream"},
           {"", "application/octet-stream"}}) {
    write("a b.jpg", 1, content);
    const auto answer = get("/file/a%20b.jpg?k=secret");
    EXPECT_THAT(answer.headers,
                ElementsAre(std::pair("Content-Type", type), std::pair("X-Content-Type-Options", "nosniff"),
                            std::pair("Content-Disposition", "attachment; filename*=UTF-8''a%20b%2Ejpg")));
    EXPECT_EQ(answer.bodyFileLength, std::ssize(content));
  }
}

TEST_F(GalleryTest, ServesThumbnailsOfPicturesInTwoSizes) {
  write("a.jpg", 1);
  for (const char *query : {"", "&s=LARGE", "&s=small", "&s=larger"}) {
    const auto answer = get(fmt::format("/thumb/a.jpg?k=secret{}", query));
    EXPECT_THAT(answer.headers, thumbnailHeaders());
    EXPECT_EQ(*answer.sharedBody, smallJPEG("small"));
  }
  EXPECT_EQ(decoder.calls(), 1);
  EXPECT_EQ(*get("/thumb/a.jpg?k=secret&s=large").sharedBody, smallJPEG("small"));
  EXPECT_EQ(decoder.calls(), 2);
  EXPECT_EQ(cache.names("s").size() + cache.names("l").size(), 2U);
  decoder.setThumbnail(decoder.kFault(PictureFault::crashed));
  write("b.jpg", 1);
  EXPECT_EQ(ask("GET /thumb/b.jpg?k=secret"), "respond 404 not found");
}

TEST_F(GalleryTest, CachesVersionedURLsForeverAndServesNewPhotosAtOnce) {
  write("a.jpg", 1, "one");
  write("b.jpg", 1, "two"); // with equal size and date
  const auto versions = [&] {
    const std::string answer = ask("GET /gallery?k=secret&versions=1").substr(12);
    const auto listing = nlohmann::json::parse(answer);
    EXPECT_EQ(listing.at("total"), 2);
    std::map<std::string, std::string> found;
    for (const auto &each : listing.at("photos"))
      found[each.at("name")] = each.at("version");
    return found;
  };
  const auto cacheControl = [&](const std::string &version) {
    return get("/thumb/a.jpg?k=secret&v=" + version).headers.at(2).second;
  };
  const auto before = versions();
  EXPECT_EQ(cacheControl(before.at("a.jpg")), "private, max-age=31536000, immutable");
  EXPECT_EQ(cacheControl("other"), "no-store");

  fs::rename(disk / "photos/a.jpg", disk / "photos/c.jpg");
  fs::rename(disk / "photos/b.jpg", disk / "photos/a.jpg");
  fs::rename(disk / "photos/c.jpg", disk / "photos/b.jpg");
  const auto after = versions();
  EXPECT_NE(after.at("a.jpg"), before.at("a.jpg"));
  EXPECT_EQ(cacheControl(before.at("a.jpg")), "no-store");
  EXPECT_EQ(cacheControl(after.at("a.jpg")), "private, max-age=31536000, immutable");
}

TEST_F(GalleryTest, LimitsConnectionsThatWaitForThumbnails) {
  write("known.jpg", 1);
  get("/thumb/known.jpg?k=secret");
  constexpr int kPhones = GalleryThumbnails::kMostWaiting + 1;
  for (int i = 0; i <= kPhones; ++i)
    write(fmt::format("{}.jpg", i), 1);
  decoder.hold();
  std::atomic<int> served = 0;
  {
    std::latch turnedAway(1); // the phone beyond the limit
    std::vector<std::jthread> phones;
    for (int i = 0; i < kPhones; ++i)
      phones.emplace_back([&, i] {
        const auto answer = get(fmt::format("/thumb/{}.jpg?k=secret&v=1", i));
        served += answer.status == 200 ? 1 : 0;
        if (answer.status == 503 && answer.body == "busy")
          turnedAway.count_down();
      });
    turnedAway.wait();
    EXPECT_THAT(get(fmt::format("/thumb/{}.jpg?k=secret&v=1", kPhones)).headers,
                Contains(std::pair("Retry-After", "1")));
    EXPECT_EQ(ask(fmt::format("GET /thumb/{}.jpg?k=secret", kPhones)), "respond 404 not found");
    EXPECT_EQ(get("/thumb/known.jpg?k=secret").status, 200);
    decoder.release();
  }
  EXPECT_EQ(served, GalleryThumbnails::kMostWaiting);
  EXPECT_EQ(get(fmt::format("/thumb/{}.jpg?k=secret&v=1", kPhones)).status, 200);
}

} // namespace
} // namespace fennick
