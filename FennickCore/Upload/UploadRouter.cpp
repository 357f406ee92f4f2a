#include "FennickCore/Upload/UploadRouter.h"

#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/Text.h"
#include "FennickCore/Upload/Gallery.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace fennick {

namespace {

// 120 photos a minute is more than a phone picks by hand and far less than what would fill a disk unnoticed.
constexpr std::int64_t kMostUploads = 120;
constexpr Seconds kUploadWindow{60};

HTTPRouteDecision respond(std::int64_t status, std::string_view text) {
  return HTTPRespond{HTTPResponse::text(status, text)};
}

HTTPRouteDecision reject(std::int64_t status, std::string_view text) {
  return HTTPReject{HTTPResponse::text(status, text)};
}

// Takes the same time for every key of one length, so that the answer's delay tells nothing of the key.
bool sameKey(std::string_view given, std::string_view key) {
  if (given.size() != key.size() || given.empty())
    return false;
  unsigned char difference = 0;
  for (std::size_t i = 0; i < key.size(); ++i)
    difference = static_cast<unsigned char>(difference | (given[i] ^ key[i]));
  return difference == 0;
}

bool isRoute(std::string_view path) {
  static constexpr std::array<std::string_view, 5> kRoutes{"/", "/upload", "/health", "/quota", "/gallery"};
  return std::ranges::find(kRoutes, path) != kRoutes.end();
}

bool isGalleryRoute(std::string_view path) {
  return path == "/gallery" || path.starts_with("/thumb/") || path.starts_with("/file/");
}

HTTPResponse listAnswer(const std::filesystem::path &folder, GalleryFilter *filter) {
  auto list = nlohmann::ordered_json::array();
  for (const auto &[name, bytes, time] : galleryList(folder, filter))
    list.push_back({{"name", name}, {"bytes", bytes}, {"time", time}});
  return HTTPResponse::json(list);
}

std::optional<HTTPResponse> download(const std::filesystem::path &file) {
  return HTTPResponse::file(file, galleryMediaType(file), file.filename().string());
}

} // namespace

UploadRouter::UploadRouter(Providers providers, std::filesystem::path bundle, FileSystem &files,
                           IncomingFolder &incoming, const Clock &clock, UploadActivity &activity,
                           Thumbnails *thumbnails)
    : providers_(std::move(providers)), page_(std::move(bundle)), files_(files), incoming_(incoming),
      clock_(clock), activity_(activity), allocator_(files), uploadThrottle_(kMostUploads, kUploadWindow),
      thumbnails_(thumbnails) {}

HTTPRouteDecision UploadRouter::route(const HTTPRequestHead &head, const std::string &remote) {
  const bool get = head.method == "GET";
  const bool getOrHead = get || head.method == "HEAD";
  if (getOrHead && head.path == "/")
    return phonePage(head);
  if (getOrHead && head.path == "/health")
    return respond(200, "ok");
  if (get && head.path == "/quota")
    return status(head);
  if (get && isGalleryRoute(head.path))
    return gallery(head);
  if (head.method == "POST" && head.path == "/upload")
    return upload(head, remote);
  if (isRoute(head.path))
    return respond(405, "method not allowed");
  return HTTPRespond{HTTPResponse::notFound()};
}

bool UploadRouter::hasKey(const HTTPRequestHead &head) const {
  const auto given = head.query.find("k");
  return given != head.query.end() && sameKey(given->second, providers_.key());
}

HTTPRouteDecision UploadRouter::phonePage(const HTTPRequestHead &head) const {
  if (!hasKey(head))
    return reject(403, "请扫描 Mac 面板上的二维码进入 / Scan the QR code on your Mac");
  const std::string nonce = newNonce();
  return HTTPRespond{HTTPResponse::page(page_.render(providers_.maxBytes(), nonce), nonce)};
}

HTTPRouteDecision UploadRouter::status(const HTTPRequestHead &head) {
  if (!hasKey(head))
    return reject(403, "invalid key");
  nlohmann::ordered_json status{
      {"gallery", providers_.gallery().has_value()}, {"video", true}, {"diskLow", false}};
  if (const auto available = availableBytes())
    status["diskLow"] = *available < kDiskReserve;
  const UploadPolicy policy = providers_.policy();
  if (policy.folderLimit) {
    status["folderLimit"] = *policy.folderLimit;
    status["folderCount"] = allocator_.mediaCount(providers_.destination().directory(clock_.now()));
    status["autoPrune"] = policy.autoPrune;
  }
  return HTTPRespond{HTTPResponse::json(status)};
}

HTTPRouteDecision UploadRouter::gallery(const HTTPRequestHead &head) {
  if (!hasKey(head))
    return reject(403, "invalid key");
  const auto folder = providers_.gallery();
  if (!folder)
    return respond(403, "照片墙未开启 / gallery is off");
  if (head.path == "/gallery")
    return HTTPRespond{listAnswer(*folder, providers_.pending)};
  const auto file = galleryFile(head.path, *folder, providers_.pending);
  if (!file)
    return HTTPRespond{HTTPResponse::notFound()};
  auto answer = head.path.starts_with("/thumb/") ? galleryThumbnail(*file, head) : download(*file);
  return HTTPRespond{answer ? std::move(*answer) : HTTPResponse::notFound()};
}

std::optional<HTTPResponse> UploadRouter::galleryThumbnail(const std::filesystem::path &file,
                                                           const HTTPRequestHead &head) {
  if (thumbnails_ == nullptr)
    return std::nullopt;
  const auto size = head.query.find("s");
  const bool isLarge = size != head.query.end() && size->second == "large";
  auto &service = isLarge ? thumbnails_->large() : thumbnails_->small();
  auto data = service.thumbnail(file, ThumbnailService::Asker::phone);
  if (!data)
    return std::nullopt;
  HTTPResponse response;
  response.headers = {{"Content-Type", "image/jpeg"},
                      {"X-Content-Type-Options", "nosniff"},
                      {"Cache-Control", "private, max-age=600"}};
  response.sharedBody = std::move(*data);
  return response;
}

// The checks stand in the order in which a person would want to hear of them; the first failure answers.
HTTPRouteDecision UploadRouter::upload(const HTTPRequestHead &head, const std::string &remote) {
  if (!hasKey(head))
    return reject(403, "密钥不对，请重新扫码 / Invalid key, scan again");

  const UploadPolicy policy = providers_.policy();
  if (policy.folderLimit && !policy.autoPrune &&
      allocator_.mediaCount(providers_.destination().directory(clock_.now())) >= *policy.folderLimit)
    return reject(403,
                  fmt::format("文件夹已满（上限 {0} 张）/ Folder is full (limit {0})", *policy.folderLimit));

  if (!uploadThrottle_.allow(remote, clock_.uptime()))
    return respond(429, "上传太频繁，请稍后再试 / Too many uploads, slow down");

  const auto length = head.contentLength();
  if (head.isChunked() || !length)
    return reject(411, "Content-Length required");
  if (*length < 1)
    return reject(400, "空请求 / empty body");
  const std::int64_t maxBytes = providers_.maxBytes();
  if (maxBytes < *length)
    return reject(413, fmt::format("文件太大 / too large (limit {} bytes)", maxBytes));
  if (const auto available = availableBytes(); available && *available - kDiskReserve < *length)
    return respond(507, "Mac 磁盘空间不足，已停止接收 / Not enough disk space on the Mac");
  return receive(head, remote, *length);
}

HTTPRouteDecision UploadRouter::receive(const HTTPRequestHead &head, const std::string &remote,
                                        std::int64_t length) {
  SaveDestination destination = providers_.destination();
  auto part = providers_.canSave() ? incoming_.createPart(destination.folder)
                                   : std::unexpected(std::make_error_code(std::errc::no_such_device));
  if (!part) {
    log(fmt::format("cannot write to {}: {}", destination.folder.string(), part.error().message()));
    return respond(500, "无法写入保存目录，请检查 Mac 端设置 / cannot write to the save folder");
  }
  const auto encodedName = head.header("x-filename");
  AdmittedUpload admitted{.part = std::move(*part),
                          .destination = std::move(destination),
                          .expected = length,
                          .mediaType = head.contentType(),
                          .filename = encodedName ? percentDecoded(*encodedName) : std::nullopt,
                          .remote = remote,
                          .startedAt = clock_.now()};
  return HTTPReceive{length, std::make_unique<UploadSink>(std::move(admitted), allocator_, files_, activity_,
                                                          providers_.onUpload, providers_.pending)};
}

// Nothing when it cannot be read; then nothing is refused for it.
std::optional<std::int64_t> UploadRouter::availableBytes() {
  const auto available = files_.availableBytes(providers_.destination().folder);
  return available ? std::optional(*available) : std::nullopt;
}

} // namespace fennick
