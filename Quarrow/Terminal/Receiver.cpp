#include "Quarrow/Terminal/Receiver.h"

#include "FennickCore/Network/LANAddressResolver.h"
#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/Text.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "FennickCore/Storage/FolderPruner.h"
#include "Quarrow/App/GalleryFolder.h"
#include "Quarrow/App/PhoneAddress.h"
#include "Quarrow/App/ReceivedNote.h"

#include <fmt/format.h>

#include <utility>

namespace quarrow {

using fennick::log;

namespace {

constexpr int kPortAttempts = 20;
constexpr fennick::Seconds kProcessingTimeout{90};
constexpr fennick::Seconds kProgressInterval{0.25}; // quick enough to look alive, slow enough to read

} // namespace

Receiver::Receiver(Setup setup, Report &report, const Services &services)
    : setup_(std::move(setup)), report_(report), mainQueue_(services.mainQueue), files_(services.files),
      clock_(services.clock), decoder_(services.decoder), trash_(services.trash),
      activity_([this] { mainQueue_.post([this] { beginProgress(); }); }),
      router_(providers(), fennick::resourceBundle(), files_, clock_, activity_,
              fennick::UploadRouter::Thumbnails{.cacheDir = setup_.cacheDirectory / "thumbs",
                                                .decoder = decoder_}),
      rateLimiter_(fennick::kServiceBans), server_(router_, fennick::kServiceLimits, rateLimiter_, clock_) {}

fennick::UploadRouter::Providers Receiver::providers() {
  return {.key = [this] { return routerConfig_.key(); },
          .destination = [this] { return routerConfig_.destination(); },
          .maxBytes = [this] { return routerConfig_.maxBytes(); },
          .onUpload = [this](const auto &record) { handleUpload(record); },
          .gallery = [this] { return routerConfig_.gallery(); },
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

void Receiver::stop() {
  server_.stop();
  processingQueue_.reset();
}

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
  RouterConfig::Values values{
      .key = setup_.accessKey,
      .destination = {.folder = saveFolder_,
                      .dateSubfolders = settings.dateSubfolders,
                      .naming = settings.naming,
                      .subfolder = settings.sessionSubfolder},
      .maxBytes = settings.maxUploadBytes,
      .gallery = std::nullopt,
      .policy = {.folderLimit = settings.folderLimit, .autoPrune = settings.autoPrune}};
  if (settings.galleryEnabled)
    values.gallery = galleryURL(settings.galleryFolder, values.destination, clock_.now());
  routerConfig_.update(std::move(values));
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

// On the upload's thread.
void Receiver::handleUpload(const fennick::UploadRecord &record) {
  processingQueue_->post([this, record] {
    const fennick::ProcessResult result = fennick::ImagePipeline::process(
        record.url, setup_.settings.imaging, kProcessingTimeout, {.decoder = decoder_, .files = files_});
    mainQueue_.post([this, record, result] { finishUpload(record, result); });
  });
}

void Receiver::finishUpload(const fennick::UploadRecord &record, const fennick::ProcessResult &result) {
  pruneIfNeeded();
  updateRouterConfig(); // a new day or session has its own folder for the gallery to show
  report_.received({.name = result.finalURL.filename().string(),
                    .path = result.finalURL,
                    .bytes = record.bytes,
                    .note = receivedNote(record, result)});
}

void Receiver::pruneIfNeeded() {
  const auto policy = routerConfig_.policy();
  if (!policy.folderLimit || *policy.folderLimit < 1 || !policy.autoPrune)
    return;
  const auto folder = routerConfig_.destination().directory(clock_.now());
  for (const auto &file : fennick::FolderPruner::prune(folder, *policy.folderLimit, trash_))
    log(fmt::format("moved {} to the trash, the folder is limited to {}", file.filename().string(),
                    *policy.folderLimit));
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
