#include "FennickCore/Upload/UploadRouter.h"

#include "FennickCore/HTTP/Compression.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Support/Text.h"
#include "FennickCore/Upload/Gallery.h"
#include "FennickCore/Upload/UploadQuery.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace fennick {

namespace {

// 120 photos a minute are more than a user selects by hand and far fewer than would fill a disk unnoticed.
constexpr std::int64_t kMostUploads = 120;
constexpr Seconds kUploadWindow{60};

HTTPRouteDecision respond(std::int64_t status, std::string_view text) {
  return HTTPRespond{HTTPResponse::text(status, text)};
}

HTTPRouteDecision reject(std::int64_t status, std::string_view text) {
  return HTTPReject{HTTPResponse::text(status, text)};
}

bool isRoute(std::string_view path) {
  static constexpr std::array<std::string_view, 5> kRoutes{"/", "/upload", "/health", "/quota", "/gallery"};
  return std::ranges::find(kRoutes, path) != kRoutes.end();
}

bool isGalleryRoute(std::string_view path) {
  return path == "/gallery" || path.starts_with("/thumb/") || path.starts_with("/file/");
}

nlohmann::ordered_json listed(const GalleryEntry &entry) {
  return {{"name", entry.name}, {"bytes", entry.bytes}, {"time", entry.time}};
}

// Clients that request versions receive an object instead of the plain list.
HTTPResponse listAnswer(const std::filesystem::path &folder, GalleryFilter *filter,
                        const HTTPRequestHead &head) {
  const auto listing = galleryListing(folder, filter);
  auto list = nlohmann::ordered_json::array();
  const auto versions = head.query.find("versions");
  const bool wantsVersions = versions != head.query.end() && versions->second == "1";
  for (const auto &entry : listing.photos) {
    list.push_back(listed(entry));
    if (wantsVersions)
      list.back()["version"] = entry.version;
  }
  if (!wantsVersions)
    return HTTPResponse::json(list);
  return HTTPResponse::json({{"total", listing.total}, {"photos", std::move(list)}});
}

std::optional<HTTPResponse> download(const std::filesystem::path &file) {
  return HTTPResponse::file(file, galleryMediaType(file), file.filename().string());
}

} // namespace

UploadRouter::UploadRouter(Providers providers, std::filesystem::path bundle, FileSystem &files,
                           IncomingFolder &incoming, const Clock &clock, UploadActivity &activity,
                           Thumbnails *thumbnails)
    : providers_(std::move(providers)),
      keyCheck_({.current = providers_.key, .wasValid = providers_.wasValidKey}), page_(std::move(bundle)),
      files_(files), incoming_(incoming), clock_(clock), activity_(activity), allocator_(files),
      uploadThrottle_(kMostUploads, kUploadWindow), thumbnails_(thumbnails) {}

HTTPRouteDecision UploadRouter::route(const HTTPRequestHead &head, const std::string &remote) {
  const bool get = head.method == "GET";
  const bool getOrHead = get || head.method == "HEAD";
  const bool hasKey = keyCheck_.isCurrent(head);
  if (getOrHead && head.path == "/")
    return hasKey ? phonePage(head)
                  : wrongKey(head, remote, "请扫描 Mac 面板上的二维码进入 / Scan the QR code on your Mac");
  if (getOrHead && head.path == "/health")
    return respond(200, "ok");
  if (get && head.path == "/quota")
    return hasKey ? status(head) : wrongKey(head, remote, "invalid key");
  if (get && isGalleryRoute(head.path))
    return hasKey ? gallery(head) : wrongKey(head, remote, "invalid key");
  if (head.method == "POST" && head.path == "/upload")
    return hasKey ? upload(head, remote)
                  : wrongKey(head, remote, "密钥不对，请重新扫码 / Invalid key, scan again");
  if (isRoute(head.path))
    return respond(405, "method not allowed");
  return HTTPRespond{HTTPResponse::notFound()};
}

HTTPRouteDecision UploadRouter::wrongKey(const HTTPRequestHead &head, const std::string &remote,
                                         std::string_view text) {
  return HTTPReject{HTTPResponse::text(403, text), keyCheck_.failure(head, remote, clock_.uptime())};
}

HTTPRouteDecision UploadRouter::phonePage(const HTTPRequestHead &head) const {
  const std::string nonce = newNonce();
  auto page = HTTPResponse::page(page_.render(providers_.maxBytes(), nonce), nonce);
  return HTTPRespond{acceptsGzip(head) ? gzipped(std::move(page)) : std::move(page)};
}

HTTPRouteDecision UploadRouter::status(const HTTPRequestHead &head) {
  const auto asked = head.query.find("upload");
  const auto ids = asked == head.query.end() ? std::vector<std::string>() : UploadQuery::parse(asked->second);
  if (!ids)
    return respond(
        400, fmt::format("upload must be at most {} identities, separated by commas", UploadQuery::kMostIDs));
  nlohmann::ordered_json status{
      {"gallery", providers_.gallery().has_value()}, {"video", true}, {"diskLow", false}};
  const auto available = availableBytes();
  if (available)
    status["diskLow"] = *available < kDiskReserve;
  const UploadPolicy policy = providers_.policy();
  if (policy.folderLimit) {
    status["folderLimit"] = *policy.folderLimit;
    status["folderCount"] = allocator_.mediaCount(providers_.destination().directory(clock_.now()));
    status["autoPrune"] = policy.autoPrune;
  }
  if (asked != head.query.end()) {
    status["maxBytes"] = providers_.maxBytes();
    if (available)
      status["roomBytes"] = std::max<std::int64_t>(*available - kDiskReserve, 0);
    status["uploads"] = UploadQuery::answer(*ids, *providers_.outcomes);
  }
  return HTTPRespond{HTTPResponse::json(status)};
}

HTTPRouteDecision UploadRouter::gallery(const HTTPRequestHead &head) {
  const auto folder = providers_.gallery();
  if (!folder)
    return respond(403, "照片墙未开启 / gallery is off");
  if (head.path == "/gallery")
    return HTTPRespond{listAnswer(*folder, providers_.pending, head)};
  const auto file = galleryFile(head.path, *folder, providers_.pending);
  if (!file)
    return HTTPRespond{HTTPResponse::notFound()};
  if (head.path.starts_with("/thumb/"))
    return HTTPRespond{thumbnails_.answer(*file, head)};
  return HTTPRespond{download(*file).value_or(HTTPResponse::notFound())};
}

HTTPRouteDecision UploadRouter::upload(const HTTPRequestHead &head, const std::string &remote) {
  const auto id = head.header("x-upload-id");
  if (!id)
    return admit(head, remote, {});
  if (!isUploadID(*id))
    return respond(400, "x-upload-id must be 32 hexadecimal digits");
  auto attempt = providers_.outcomes->begin(*id);
  if (!attempt)
    return answerAgain(attempt.error());
  return admit(head, remote, std::move(*attempt));
}

// Answers a repeated upload that is saved or in progress.
HTTPRouteDecision UploadRouter::answerAgain(const UploadOutcomes::Outcome &outcome) {
  if (const auto *saved = std::get_if<UploadOutcomes::Saved>(&outcome))
    return respond(200, saved->name);
  return respond(409, "这个文件正在接收，请稍后再查 / This file is being received already; ask again later");
}

HTTPRouteDecision UploadRouter::admit(const HTTPRequestHead &head, const std::string &remote,
                                      UploadOutcomes::Attempt attempt) {
  auto refused = refusal(head, remote);
  if (!refused)
    return receive(head, remote, std::move(attempt));
  const auto *rejected = std::get_if<HTTPReject>(&*refused);
  attempt.answered(rejected != nullptr ? rejected->response : std::get<HTTPRespond>(*refused).response);
  return std::move(*refused);
}

// The checks are in the order of their importance for the user; the first failure determines the response.
std::optional<HTTPRouteDecision> UploadRouter::refusal(const HTTPRequestHead &head,
                                                       const std::string &remote) {
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
  return std::nullopt;
}

HTTPRouteDecision UploadRouter::receive(const HTTPRequestHead &head, const std::string &remote,
                                        UploadOutcomes::Attempt attempt) {
  SaveDestination destination = providers_.destination();
  auto part = providers_.canSave() ? incoming_.createPart(destination.folder)
                                   : std::unexpected(std::make_error_code(std::errc::no_such_device));
  if (!part) {
    log(fmt::format("cannot write to {}: {}", destination.folder.string(), part.error().message()));
    const auto answer =
        HTTPResponse::text(500, "无法写入保存目录，请检查 Mac 端设置 / cannot write to the save folder");
    attempt.answered(answer);
    return HTTPRespond{answer};
  }
  const std::int64_t length = head.contentLength().value_or(0);
  const auto encodedName = head.header("x-filename");
  AdmittedUpload admitted{.part = std::move(*part),
                          .destination = std::move(destination),
                          .expected = length,
                          .mediaType = head.contentType(),
                          .filename = encodedName ? percentDecoded(*encodedName) : std::nullopt,
                          .remote = remote,
                          .startedAt = clock_.now(),
                          .attempt = std::move(attempt)};
  return HTTPReceive{length, std::make_unique<UploadSink>(std::move(admitted), allocator_, files_, activity_,
                                                          providers_.onUpload, providers_.pending)};
}

// Returns nullopt if the number cannot be read; no upload is rejected then.
std::optional<std::int64_t> UploadRouter::availableBytes() {
  const auto available = files_.availableBytes(providers_.destination().folder);
  return available ? std::optional(*available) : std::nullopt;
}

} // namespace fennick
