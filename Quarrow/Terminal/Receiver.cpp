#include "Quarrow/Terminal/Receiver.h"

#include "FennickCore/Network/LANAddressResolver.h"
#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/Text.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "Quarrow/App/PhoneAddress.h"

#include <fmt/format.h>

#include <utility>

namespace quarrow {

using fennick::log;

namespace {

constexpr int kPortAttempts = 20;
constexpr fennick::Seconds kProgressInterval{0.25}; // quick enough to look alive, slow enough to read

} // namespace

Receiver::Receiver(Setup setup, Report &report, fennick::MainQueue &mainQueue, fennick::FileSystem &files,
                   const fennick::Clock &clock)
    : setup_(std::move(setup)), report_(report), mainQueue_(mainQueue), files_(files), clock_(clock),
      activity_([this] { mainQueue_.post([this] { beginProgress(); }); }),
      router_(providers(), fennick::resourceBundle(), files, clock, activity_),
      rateLimiter_(fennick::kServiceBans), server_(router_, fennick::kServiceLimits, rateLimiter_, clock) {}

fennick::UploadRouter::Providers Receiver::providers() {
  return {
      .key = [this] { return routerConfig_.key(); },
      .destination = [this] { return routerConfig_.destination(); },
      .maxBytes = [this] { return routerConfig_.maxBytes(); },
      .onUpload = [this](const auto &record) { mainQueue_.post([this, record] { handleUpload(record); }); },
      .policy = [this] { return routerConfig_.policy(); }};
}

bool Receiver::start() {
  applySaveFolder();
  updateRouterConfig();
  router_.adoptSaveFolder(saveFolder_);
  const std::uint16_t preferred = setup_.settings.preferredPort;
  log(fmt::format("starting server on {}", preferred));
  const auto port = server_.start(preferred, kPortAttempts);
  if (!port) {
    log(fmt::format("server failed {}", description(port.error())));
    report_.error("无法启动服务：" + description(port.error()));
    return false;
  }
  log(fmt::format("listening on {}", *port));
  reportListening(*port);
  return true;
}

void Receiver::stop() { server_.stop(); }

void Receiver::applySaveFolder() {
  saveFolder_ = fennick::FolderBookmark::defaultFolder();
  if (setup_.folder) {
    saveFolder_ = *setup_.folder;
  } else if (setup_.settings.saveFolderBookmark) {
    if (const auto chosen = fennick::FolderBookmark::resolve(*setup_.settings.saveFolderBookmark))
      saveFolder_ = chosen->url;
    else
      report_.error("之前选择的保存目录已不可用，已改回默认目录。");
  }
  if (const auto made = files_.createDirectories(saveFolder_); !made)
    report_.error("无法创建保存目录：" + made.error().message());
}

void Receiver::updateRouterConfig() {
  const auto &settings = setup_.settings;
  routerConfig_.update({.key = setup_.accessKey,
                        .destination = {.folder = saveFolder_,
                                        .dateSubfolders = settings.dateSubfolders,
                                        .naming = settings.naming,
                                        .subfolder = settings.sessionSubfolder},
                        .maxBytes = settings.maxUploadBytes,
                        .gallery = std::nullopt,
                        .policy = {.folderLimit = settings.folderLimit, .autoPrune = settings.autoPrune}});
}

void Receiver::reportListening(std::uint16_t port) {
  const auto address =
      preferredAddress(fennick::LANAddressResolver::snapshot(), setup_.settings.preferredInterface);
  const auto base = baseURL(address, port);
  Report::Listening state{.port = port,
                          .preferredPort = setup_.settings.preferredPort,
                          .accessKey = setup_.accessKey,
                          .phoneURL = std::nullopt,
                          .uploadURL = std::nullopt,
                          .saveFolder = saveFolder_};
  if (base) {
    state.phoneURL = phoneURL(*base, setup_.accessKey);
    state.uploadURL = shortcutUploadURL(*base, setup_.accessKey);
  }
  report_.listening(state);
}

void Receiver::handleUpload(const fennick::UploadRecord &record) {
  const std::string name = record.url.filename().string();
  report_.received({.name = name,
                    .path = record.url,
                    .bytes = record.bytes,
                    .note = fmt::format("{}：{}", name, fennick::fileSizeText(record.bytes))});
}

void Receiver::beginProgress() {
  if (progressRuns_ || !report_.showsProgress())
    return;
  progressRuns_ = true;
  reportProgress();
}

// Goes on by itself only while uploads are under way, so that an idle receiver sleeps.
void Receiver::reportProgress() {
  const auto activity = activity_.snapshot();
  const auto now = clock_.uptime();
  const double seconds = fennick::Seconds(now - progressAt_).count();
  const auto arrived = static_cast<double>(activity.totalBytes - progressBytes_);
  constexpr double kNewShare = 0.3; // of the latest interval in the shown speed, so that it does not jump
  if (seconds > 0 && seconds < 4 * kProgressInterval.count())
    bytesPerSecond_ += kNewShare * (arrived / seconds - bytesPerSecond_);
  else
    bytesPerSecond_ = 0; // a new burst
  progressAt_ = now;
  progressBytes_ = activity.totalBytes;
  report_.progress(activity, bytesPerSecond_);
  progressRuns_ = activity.uploads > 0;
  if (progressRuns_)
    mainQueue_.postAfter(kProgressInterval, [this] { reportProgress(); });
}

} // namespace quarrow
