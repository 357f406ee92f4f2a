#include "tests/Upload/UploadStage.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <regex>
#include <set>
#include <tuple>

namespace fennick {
namespace {

using test::kJPEG;
using test::kTIFF;
using test::Operation;

class UploadRouterTest : public test::UploadStage {
protected:
  std::string offer(std::int64_t length) {
    return ask("POST /upload?k=secret", fmt::format("Content-Length: {}\r\n", length));
  }
};

constexpr const char *kThrottled = "respond 429 上传太频繁，请稍后再试 / Too many uploads, slow down";
constexpr const char *kNoLength = "reject 411 Content-Length required";
constexpr const char *kDiskFull =
    "respond 507 Mac 磁盘空间不足，已停止接收 / Not enough disk space on the Mac";
constexpr const char *kNotWritable =
    "respond 500 无法写入保存目录，请检查 Mac 端设置 / cannot write to the save folder";

TEST_F(UploadRouterTest, ChecksMethodAndKeyOfEveryRoute) {
  const std::string wrongMethod = "respond 405 method not allowed";
  const std::string notFound = "respond 404 not found";
  const std::string scan = "reject 403 请扫描 Mac 面板上的二维码进入 / Scan the QR code on your Mac";
  const std::string invalid = "reject 403 invalid key";
  const std::string off = "respond 403 照片墙未开启 / gallery is off";
  const std::string page = "respond 200 <!doctype html><p>fennick page missing</p>";
  const std::string status = R"(respond 200 {"gallery":false,"video":true,"diskLow":false})";
  const std::tuple<std::string, std::string, std::string> routes[] = {
      {"GET /", page, scan},
      {"HEAD /", page, scan},
      {"POST /", wrongMethod, wrongMethod},
      {"GET /health", "respond 200 ok", "respond 200 ok"},
      {"PUT /health", wrongMethod, wrongMethod},
      {"GET /quota", status, invalid},
      {"HEAD /quota", wrongMethod, wrongMethod},
      {"GET /gallery", off, invalid},
      {"GET /thumb/a.jpg", off, invalid},
      {"GET /file/a.jpg", off, invalid},
      {"HEAD /thumb/a.jpg", notFound, notFound},
      {"POST /upload", kNoLength, "reject 403 密钥不对，请重新扫码 / Invalid key, scan again"},
      {"GET /upload", wrongMethod, wrongMethod},
      {"GET /nope", notFound, notFound},
      {"GET /Quota", notFound, notFound},
      {"POST /upload/", notFound, notFound},
      {"GET /%71uota", notFound, notFound},
      {"GET //", notFound, notFound}};
  for (const auto &[request, keyed, unkeyed] : routes) {
    EXPECT_EQ(ask(request + "?k=secret"), keyed) << request;
    EXPECT_EQ(ask(request), unkeyed) << request;
  }
}

TEST_F(UploadRouterTest, AcceptsOnlyTheExactKey) {
  for (const char *wrong : {"", "?", "?k", "?k=", "?k=secre", "?k=secrets", "?k=Secret", "?K=secret",
                            "?x=secret", "?k=secret&k=", "?k=%00secret", "?k=secret%00"})
    EXPECT_EQ(ask(fmt::format("GET /quota{}", wrong)), "reject 403 invalid key") << wrong;
  for (const char *right : {"?k=secret", "?x=1&k=secret", "?k=%73ecret", "?k=wrong&k=secret"})
    EXPECT_TRUE(ask(fmt::format("GET /quota{}", right)).starts_with("respond 200")) << right;
  key = "renewed";
  EXPECT_EQ(ask("GET /quota?k=secret"), "reject 403 invalid key");
  key = "";
  EXPECT_TRUE(ask("GET /?k=").starts_with("reject 403"));
}

// All checks fail at first and are fixed one after another.
TEST_F(UploadRouterTest, AnswersTheFirstOfSeveralErrors) {
  for (int i = 0; i < 120; ++i)
    EXPECT_EQ(offer(0), "reject 400 空请求 / empty body");
  policy = {.folderLimit = 1, .autoPrune = false};
  const auto photo = disk.write("photos/a.jpg");
  files.setAvailableBytes(0);
  const auto incoming = disk.write("photos/.fennick-incoming");
  maxBytes = 9;
  const auto post = [&](std::string_view headers) { return ask("POST /upload?k=secret", headers); };
  const std::string chunked = "Transfer-Encoding: gzip, Chunked\r\n";

  EXPECT_EQ(ask("POST /upload?k=wrong", chunked),
            "reject 403 密钥不对，请重新扫码 / Invalid key, scan again");
  EXPECT_EQ(post(chunked), "reject 403 文件夹已满（上限 1 张）/ Folder is full (limit 1)");
  std::filesystem::remove(photo);
  EXPECT_EQ(post(chunked), kThrottled);
  clock.advance(Seconds(60));
  EXPECT_EQ(post(chunked + "Content-Length: 0\r\n"), kNoLength);
  for (const char *length : {"", "Content-Length: many\r\n", "Content-Length: 9223372036854775808\r\n"})
    EXPECT_EQ(post(length), kNoLength) << length;
  EXPECT_EQ(offer(0), "reject 400 空请求 / empty body");
  EXPECT_EQ(offer(-1), "reject 400 空请求 / empty body");
  EXPECT_EQ(offer(10), "reject 413 文件太大 / too large (limit 9 bytes)");
  EXPECT_EQ(offer(9), kDiskFull);
  files.setAvailableBytes(2'000'000'000);
  EXPECT_EQ(offer(9), kNotWritable);
  std::filesystem::remove(incoming);
  EXPECT_EQ(offer(9), "receive 9");
}

TEST_F(UploadRouterTest, LimitsUploadsPerMinuteAndAddress) {
  for (int minute = 0; minute < 2; ++minute) {
    for (int i = 0; i < 120; ++i) {
      EXPECT_NE(offer(0), kThrottled);
      EXPECT_TRUE(ask("POST /upload?k=wrong").starts_with("reject 403")); // not counted
    }
    EXPECT_EQ(offer(10), kThrottled);
    remote = "192.168.1.21";
    EXPECT_EQ(offer(10), "receive 10");
    remote = "192.168.1.20";
    clock.advance(Seconds(59.5));
    EXPECT_EQ(offer(10), kThrottled); // refused attempts do not extend the wait
    clock.advance(Seconds(0.5));
  }
  EXPECT_EQ(offer(10), "receive 10");
}

TEST_F(UploadRouterTest, KeepsAGigabyteFree) {
  files.setAvailableBytes(1'000'000'010);
  EXPECT_EQ(offer(10), "receive 10");
  EXPECT_EQ(offer(11), kDiskFull);
  EXPECT_TRUE(ask("GET /quota?k=secret").ends_with(R"("diskLow":false})"));
  files.setAvailableBytes(999'999'999);
  EXPECT_TRUE(ask("GET /quota?k=secret").ends_with(R"("diskLow":true})"));
  maxBytes = INT64_MAX;
  EXPECT_EQ(offer(INT64_MAX), kDiskFull);
  files.failAlways(Operation::availableBytes, EIO); // an unknown value refuses nothing
  EXPECT_EQ(offer(10), "receive 10");
  EXPECT_TRUE(ask("GET /quota?k=secret").ends_with(R"("diskLow":false})"));
}

TEST_F(UploadRouterTest, RefusesAFullFolderUnlessItIsPruned) {
  policy = {.folderLimit = 2, .autoPrune = false};
  destination.dateSubfolders = true;
  EXPECT_EQ(upload(kJPEG), "200 IMG_001.jpg");
  EXPECT_EQ(upload(kJPEG), "200 IMG_002.jpg");
  EXPECT_EQ(offer(10), "reject 403 文件夹已满（上限 2 张）/ Folder is full (limit 2)");
  EXPECT_TRUE(ask("GET /quota?k=secret").ends_with(R"("folderLimit":2,"folderCount":2,"autoPrune":false})"));
  policy.autoPrune = true;
  EXPECT_EQ(offer(10), "receive 10");
  policy.autoPrune = false;
  clock.setCalendar(clock.now() + std::chrono::hours(24));
  EXPECT_EQ(upload(kJPEG), "200 IMG_001.jpg");
}

TEST_F(UploadRouterTest, NeverUsesTheSendersNameAsAPath) {
  int saved = 0;
  for (const auto &[name, extension] :
       std::initializer_list<std::pair<std::string, std::string>>{{"%", "tif"},
                                                                  {"%FF.dng", "tif"},
                                                                  {"%2e%2e%2f%2e%2e%2fa.dng", "dng"},
                                                                  {"a%00b.dng", "dng"},
                                                                  {"a.dng%00", "tif"},
                                                                  {std::string(10'000, 'x') + ".dng", "dng"}})
    EXPECT_EQ(upload(kTIFF, fmt::format("X-Filename: {}\r\n", name)),
              fmt::format("200 IMG_{:03}.{}", ++saved, extension))
        << name;
  EXPECT_EQ(std::ssize(photos()), saved);
  EXPECT_THAT(disk.names(), ::testing::ElementsAre("photos"));
}

// The nonce that the page's policy allows.
std::string allowedNonce(const HTTPResponse &page) {
  for (const auto &[name, value] : page.headers)
    if (std::smatch found;
        name == "Content-Security-Policy" &&
        std::regex_search(value, found, std::regex("script-src 'nonce-([A-Za-z0-9+/]{22}==)'")))
      return found[1];
  return "none";
}

TEST_F(UploadRouterTest, RendersTheLimitAndAFreshNonce) {
  disk.write("bundle/PhonePage.html", "<script nonce=__NONCE__></script>__NONCE__ __MAX_BYTES__");
  std::set<std::string> nonces;
  for (const std::int64_t limit : {5L, 12'345'678'901L}) {
    maxBytes = limit;
    const HTTPResponse page = std::get<HTTPRespond>(decide("GET /?k=secret")).response;
    EXPECT_EQ(page.body, fmt::format("<script nonce={0}></script>{0} {1}", allowedNonce(page), limit));
    nonces.insert(allowedNonce(page));
  }
  EXPECT_EQ(nonces.size(), 2U);
}

} // namespace
} // namespace fennick
