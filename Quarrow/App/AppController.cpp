#include "Quarrow/App/AppController.h"

#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/Text.h"
#include "FennickCore/Upload/Gallery.h"
#include "Quarrow/App/GalleryFolder.h"
#include "Quarrow/App/ReceivedNote.h"
#include "Quarrow/App/SaveFolderDrive.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <tuple>

namespace quarrow {

using fennick::fileSizeText;
using fennick::log;
using fennick::Seconds;

namespace fs = std::filesystem;

namespace {

constexpr int kPortAttempts = 20;
constexpr Seconds kProbeTimeout{3};
constexpr Seconds kPanelDelay{0.5}; // until the tray has found its place for the icon
constexpr Seconds kRecountDelay{1};
constexpr std::string_view kOnboardingDone = "onboardingDone";

using Outcome = fennick::LocalNetworkProbe::Outcome;

LocalNetworkStatus failedCheck(const QString &message) {
  return {.kind = LocalNetworkStatus::Kind::failed, .message = message};
}

LocalNetworkStatus statusOf(const Outcome &outcome) {
  switch (outcome.kind) {
  case Outcome::Kind::reachable:
    return {.kind = LocalNetworkStatus::Kind::ok};
  case Outcome::Kind::timeout:
    return failedCheck(AppController::tr("连接超时"));
  case Outcome::Kind::unreachable:
    break;
  }
  return failedCheck(QString::fromStdString(outcome.message));
}

fennick::BookmarkData bytesOf(const fs::path &path) {
  const auto bytes = std::as_bytes(std::span(path.native()));
  return {bytes.begin(), bytes.end()};
}

bool isDirectory(const fs::path &folder) {
  std::error_code ignored;
  return fs::is_directory(folder, ignored);
}

} // namespace

// A server with all that belongs to it. One that was replaced lives until its last request is over.
struct AppController::Server {
  Server(AppController &controller, std::uint16_t port)
      : preferredPort(port),
        router(controller.providers(), fennick::resourceBundle(), controller.files_, controller.incoming_,
               controller.clock_, controller.progress_.counter(), &controller.thumbnails_),
        http(router, fennick::kServiceLimits, limiter, controller.clock_) {}

  const std::uint16_t preferredPort;
  fennick::UploadRouter router;
  fennick::RateLimiter limiter{fennick::kServiceBans};
  fennick::HTTPServer http; // last: its connections use the others
};

AppController::AppController(Options options, const Services &services)
    : options_(std::move(options)), preferences_(services.preferences), mainQueue_(services.mainQueue),
      files_(services.files), clock_(services.clock), decoder_(services.decoder), trash_(services.trash),
      desktop_(services.desktop), network_(services.network), settings_(preferences_),
      library_(files_, decoder_, mainQueue_),
      thumbnails_(files_, options_.cacheDirectory / "thumbs", decoder_),
      thumbnailUpkeep_(thumbnails_, library_, mainQueue_), progress_(mainQueue_, clock_),
      folderLimit_(trash_, mainQueue_, [this](const auto &files) { forget(files); }),
      processing_(makeProcessing()), imports_(makeImports()) {
  if (options_.overrides)
    settings_.overrideForRun(options_.overrides);
}

AppController::~AppController() { stop(); }

void AppController::start() {
  desktop_.makeTrayItem();
  server_.setAccessKey(settings_.accessKey());
  server_.setPreferredInterface(settings_.settings().preferredInterface);
  applySaveFolder();
  updateRouterConfig();
  startServer();
  network_.watch([this](auto addresses) { networkChanged(std::move(addresses)); });
  knownSettings_ = settings_.settings();
  subscriptions_.push_back(settings_.observeSettings([this](const auto &settings) {
    if (settings != std::exchange(knownSettings_, settings))
      mainQueue_.post(lifetime_.guard([this, settings] { settingsChanged(settings); }));
  }));
  saved(settings_.lastSave());
  subscriptions_.push_back(settings_.observeSaves([this](const auto &result) { saved(result); }));
  registerHotKey(settings_.settings().hotKeyPreset);
  openFirstWindow();
  openAskedFor(kPanelDelay, options_.arguments);
  subscriptions_.push_back(settings_.observeAccessKey([this](const std::string &key) {
    mainQueue_.post(lifetime_.guard([this, key] { accessKeyChanged(key); }));
  }));
}

void AppController::stop() {
  if (std::exchange(stopped_, true))
    return;
  std::ignore = desktop_.registerHotKey(std::nullopt, {});
  network_.unwatch();
  network_.cancel();
  folderWatcher_.reset();
  cleaner_.stop();
  if (httpServer_)
    httpServer_->http.stop();
  httpServer_.reset();
  retirement_.reset();
  folderLimit_.stop();
  imports_->end();
  processing_->end(); // last: until here others hand it what they received
}

void AppController::openFirstWindow() {
  if (!preferences_.flag(kOnboardingDone))
    return desktop_.show(Desktop::Window::onboarding);
  if (desktop_.launchedAsLoginItem())
    return;
  desktop_.closePanel();
  desktop_.show(Desktop::Window::main);
}

void AppController::openAskedFor(Seconds panelDelay, const std::vector<std::string> &arguments) {
  const auto has = [&](const char *argument) {
    return std::ranges::find(arguments, argument) != arguments.end();
  };
  if (has("--show-settings")) {
    desktop_.closePanel();
    desktop_.show(Desktop::Window::settings);
  }
  if (has("--show-panel"))
    mainQueue_.postAfter(panelDelay, lifetime_.guard([this] { desktop_.showPanel(); }));
}

void AppController::handleArguments(const std::vector<std::string> &arguments) {
  const bool namesOne = std::ranges::any_of(
      arguments, [](const auto &each) { return each == "--show-settings" || each == "--show-panel"; });
  if (namesOne)
    return openAskedFor(Seconds(0), arguments);
  desktop_.closePanel();
  desktop_.show(preferences_.flag(kOnboardingDone) ? Desktop::Window::main : Desktop::Window::onboarding);
}

void AppController::finishOnboarding() { std::ignore = preferences_.setFlag(kOnboardingDone, true); }

void AppController::report(Matter matter, const QString &error) {
  std::erase_if(errors_, [&](const auto &each) { return each.first == matter; });
  errors_.emplace_back(matter, error.toStdString());
  showLatestError();
}

void AppController::resolve(Matter matter) {
  std::erase_if(errors_, [&](const auto &each) { return each.first == matter; });
  showLatestError();
}

bool AppController::stands(Matter matter) const {
  return std::ranges::any_of(errors_, [&](const auto &each) { return each.first == matter; });
}

void AppController::saved(const std::error_code &result) {
  if (result)
    report(Matter::settings, tr("无法保存设置，退出后会丢失：") + QString::fromStdString(result.message()));
  else
    resolve(Matter::settings);
}

void AppController::showLatestError() {
  server_.setError(errors_.empty() ? std::nullopt : std::optional(errors_.back().second));
}

void AppController::dismissError() {
  if (!errors_.empty())
    errors_.pop_back();
  showLatestError();
}

void AppController::startServer() {
  if (stopped_)
    return;
  retireServer();
  const std::uint16_t preferred = settings_.settings().preferredPort;
  httpServer_ = std::make_shared<Server>(*this, preferred);
  lastPort_ = preferred;
  server_.setPort(std::nullopt);
  network_.cancel(); // what is under way is about the old one
  server_.setLocalNetworkStatus({});
  server_.setFirewall(std::nullopt);
  mainQueue_.post(lifetime_.guard([this, server = std::weak_ptr(httpServer_)] {
    if (const auto still = server.lock(); still && still == httpServer_)
      finishStart(*still);
  }));
}

void AppController::finishStart(Server &server) {
  incoming_.adopt(saveFolder());
  log(fmt::format("starting server on {}", server.preferredPort));
  const auto port = server.http.start(server.preferredPort, kPortAttempts);
  if (!port) {
    log(fmt::format("server failed {}", description(port.error())));
    report(Matter::server, tr("无法启动服务：") + QString::fromStdString(description(port.error())));
    emit serverFailed();
    return;
  }
  log(fmt::format("listening on {}", *port));
  server_.setPort(*port);
  resolve(Matter::server);
  server_.refreshQR();
  runLocalNetworkCheck();
}

// Its port is free at once; a request that is busy with a picture may take a while to notice, so it is waited
// for elsewhere.
void AppController::retireServer() {
  if (!httpServer_)
    return;
  httpServer_->http.close();
  if (!retirement_)
    retirement_ = std::make_unique<fennick::SerialQueue>("fennick.http.end");
  retirement_->post([last = std::exchange(httpServer_, nullptr)] { last->http.stop(); });
}

fennick::UploadRouter::Providers AppController::providers() {
  return {.key = [this] { return routerConfig_.key(); },
          .destination = [this] { return routerConfig_.destination(); },
          .maxBytes = [this] { return routerConfig_.maxBytes(); },
          .onUpload = [this](const auto &record) { processing_->add(record); },
          .gallery = [this] { return routerConfig_.gallery(); },
          .policy = [this] { return routerConfig_.policy(); },
          .canSave = [this] { return routerConfig_.canSave(); },
          .pending = &pending_};
}

std::unique_ptr<PhotoProcessing> AppController::makeProcessing() {
  return std::make_unique<PhotoProcessing>(
      PhotoProcessing::Services{.decoder = decoder_,
                                .files = files_,
                                .trash = trash_,
                                .mainQueue = mainQueue_,
                                .pending = pending_},
      PhotoProcessing::Observer{.named = [this](const auto &file) { library_.placeFirst(file); },
                                .finished = [this](const auto &finished) { finishUpload(finished); },
                                .waiting = [this](int photos) { server_.setWaitingPhotos(photos); }});
}

std::unique_ptr<PhotoImport> AppController::makeImports() {
  auto imports = std::make_unique<PhotoImport>(PhotoImport::Services{
      .providers = {.destination = [this] { return routerConfig_.destination(); },
                    .canSave = [this] { return routerConfig_.canSave(); },
                    .onUpload = [this](const auto &record) { processing_->add(record); },
                    .pending = &pending_},
      .files = files_,
      .incoming = incoming_,
      .clock = clock_,
      .activity = progress_.counter(),
      .mainQueue = mainQueue_});
  connect(imports.get(), &PhotoImport::finished, this, &AppController::finishImports);
  return imports;
}

fs::path AppController::chosenFolder() {
  if (options_.saveFolder)
    return *options_.saveFolder;
  const auto bookmark = settings_.settings().saveFolderBookmark;
  if (!bookmark)
    return options_.defaultFolder;
  const auto resolved = fennick::FolderBookmark::resolve(*bookmark);
  if (resolved) {
    resolve(Matter::chosenFolder);
    return resolved->url;
  }
  // Once it has been served, its drive may come back.
  if (const auto &served = server_.saveFolder(); served && bookmark == bytesOf(*served))
    return *served;
  report(Matter::chosenFolder, tr("之前选择的保存目录已不可用，已改回默认目录。"));
  const auto forget = [](auto &settings) { settings.saveFolderBookmark.reset(); };
  if (settings_.stored().saveFolderBookmark == bookmark)
    settings_.update(forget);
  else
    settings_.overrideForRun(forget);
  return options_.defaultFolder;
}

void AppController::chooseSaveFolder(const fs::path &folder) {
  auto bookmark = fennick::FolderBookmark::make(folder);
  if (!bookmark)
    return report(Matter::chosenFolder,
                  tr("无法记住该目录：") + QString::fromStdString(bookmark.error().description()));
  settings_.update([&](auto &settings) { settings.saveFolderBookmark = std::move(*bookmark); });
}

void AppController::applySaveFolder() {
  const fs::path folder = chosenFolder();
  const bool isNew = server_.saveFolder() != folder;
  if (!isNew && isUnplugged(folder, drive_))
    return;
  if (const auto made = files_.createDirectories(folder); made)
    resolve(Matter::makingFolder);
  else
    report(Matter::makingFolder, tr("无法创建保存目录：") + QString::fromStdString(made.error().message()));
  drive_ = driveOf(folder);
  if (!isNew)
    return;
  server_.setSaveFolder(folder);
  pending_.setOptions(settings_.settings().imaging); // before photos are found that wait for them
  pending_.setFolder(folder);
  if (options_.hasPhotoWall)
    library_.setFolder(folder);
  watchSaveFolder();
}

// A drive may be unplugged and come back; a folder that could not be made is no news.
void AppController::watchSaveFolder() {
  resolve(Matter::missingFolder);
  cleaner_.clear(saveFolder());
  folderWatcher_ = std::make_unique<fennick::FolderWatcher>(
      saveFolder(), [this] { mainQueue_.post(lifetime_.guard([this] { checkSaveFolder(); })); });
}

void AppController::checkSaveFolder() {
  const fs::path folder = saveFolder();
  if (isUnplugged(folder, drive_))
    return report(Matter::missingFolder, tr("保存目录所在的磁盘不见了，照片暂时存不进来。请重新连接磁盘。"));
  drive_ = driveOf(folder);
  thumbnailUpkeep_.folderChanged(folder, drive_);
  processing_->look();
  if (isDirectory(folder)) {
    if (stands(Matter::missingFolder))
      cleaner_.clear(folder);
    resolve(Matter::missingFolder);
    resolve(Matter::makingFolder);
  } else if (!stands(Matter::makingFolder)) {
    report(Matter::missingFolder, tr("保存目录不见了，收到下一张照片时会重新创建。"));
  }
  if (galleryURL() != shared_)
    updateRouterConfig(); // the gallery's folder has come or gone
  else
    recountSoon();
}

bool AppController::hasLibraryFolder() const {
  const auto &folder = library_.folder();
  return folder && isDirectory(*folder) && !isUnplugged(*folder, drive_);
}

fs::path AppController::saveFolder() const { return server_.saveFolder().value_or(options_.defaultFolder); }

fennick::SaveDestination AppController::makeDestination() const {
  const auto &settings = settings_.settings();
  return {.folder = saveFolder(),
          .dateSubfolders = settings.dateSubfolders,
          .naming = settings.naming,
          .subfolder = settings.sessionSubfolder};
}

fs::path AppController::galleryURL() const {
  return quarrow::galleryURL(settings_.settings().galleryFolder, makeDestination(), clock_.now());
}

void AppController::updateRouterConfig() {
  const auto &settings = settings_.settings();
  routerConfig_.update({.key = demoKey_.value_or(settings_.accessKey()),
                        .destination = makeDestination(),
                        .maxBytes = settings.maxUploadBytes,
                        .gallery = settings.galleryEnabled ? std::optional(galleryURL()) : std::nullopt,
                        .policy = {.folderLimit = settings.folderLimit, .autoPrune = settings.autoPrune},
                        .drive = drive_});
  updateSharedInfo();
}

void AppController::updateSharedInfo() {
  shared_ = galleryURL();
  server_.setShared(shared_.filename().string(), fennick::galleryCount(shared_, &pending_));
}

// A burst of changes in the folder costs one count.
void AppController::recountSoon() {
  if (std::exchange(recounts_, true))
    return;
  mainQueue_.postAfter(kRecountDelay, lifetime_.guard([this] {
    recounts_ = false;
    updateSharedInfo();
  }));
}

void AppController::settingsChanged(const fennick::AppSettings &settings) {
  const auto before = server_.preferredAddress();
  server_.setPreferredInterface(settings.preferredInterface);
  registerHotKey(settings.hotKeyPreset);
  if (lastPort_ != settings.preferredPort)
    startServer();
  // Before photos of another folder are taken over, and phones may look at a gallery that was off.
  if (pending_.setOptions(settings.imaging))
    processing_->look();
  applySaveFolder();
  updateRouterConfig();
  server_.refreshQR();
  if (server_.preferredAddress() != before)
    runLocalNetworkCheck();
}

void AppController::accessKeyChanged(const std::string &accessKey) {
  server_.setAccessKey(accessKey);
  updateRouterConfig();
  server_.refreshQR();
}

void AppController::networkChanged(std::vector<fennick::LANAddress> addresses) {
  server_.setAddresses(std::move(addresses));
  server_.refreshQR();
  runLocalNetworkCheck();
}

void AppController::registerHotKey(std::optional<std::int64_t> presetID) {
  const auto refused = [this] { report(Matter::hotKey, tr("全局快捷键注册失败，可能被其他 App 占用")); };
  if (desktop_.registerHotKey(presetID, {.pressed = [this] { desktop_.showPanel(); }, .refused = refused}))
    resolve(Matter::hotKey);
  else
    refused();
}

void AppController::runLocalNetworkCheck() {
  network_.cancel();
  const auto address = server_.preferredAddress();
  const auto port = server_.port();
  if (!address)
    return server_.setLocalNetworkStatus(failedCheck(tr("没有可用的局域网地址")));
  if (!port)
    return;
  network_.findFirewall(address->interface, *port,
                        [this](auto finding) { server_.setFirewall(std::move(finding)); });
  server_.setLocalNetworkStatus({});
  network_.probe(address->address, *port, kProbeTimeout,
                 [this](const Outcome &outcome) { server_.setLocalNetworkStatus(statusOf(outcome)); });
}

void AppController::finishImports(const QString &problem) {
  if (problem.isEmpty())
    resolve(Matter::imports);
  else
    report(Matter::imports, problem);
}

void AppController::finishUpload(const PhotoProcessing::Finished &finished) {
  const fs::path &url = finished.result.finalURL;
  const fennick::UploadRecord &upload = finished.upload;
  const bool fromPhone = upload.source == fennick::UploadSource::phone;
  library_.noteAdded(url);
  if (fromPhone && !finished.resumed)
    desktop_.flashTrayItem();
  pruneIfNeeded();
  updateRouterConfig(); // with the shared folder: a new day may have a new one
  if (!fromPhone)
    return; // nobody waits for it
  if (!finished.resumed)
    runWorkflow(url, upload.bytes);
  const std::string note = receivedNote(upload, finished.result, finished.left);
  server_.setLastNote(note);
  emit received({.url = url, .bytes = upload.bytes, .note = note});
}

void AppController::pruneIfNeeded() {
  const auto &settings = settings_.settings();
  if (settings.autoPrune && settings.folderLimit.value_or(0) >= 1)
    folderLimit_.prune(makeDestination().directory(clock_.now()), *settings.folderLimit);
}

void AppController::forget(std::span<const fs::path> files) {
  library_.remove(files);
  selection_.remove(files);
}

void AppController::runWorkflow(const fs::path &url, std::int64_t bytes) {
  const auto &workflow = settings_.settings().workflow;
  if (workflow.copyToClipboard)
    desktop_.copyToClipboard(url);
  if (workflow.openWithAppBookmark)
    if (const auto application = fennick::FolderBookmark::resolve(*workflow.openWithAppBookmark))
      desktop_.openWith(application->url, url, [](const std::string &reason) {
        log(fmt::format("open with app failed {}", reason));
      });
  if (workflow.playSound)
    desktop_.playSound();
  if (workflow.notify)
    desktop_.notify(tr("收到照片").toStdString(),
                    fmt::format("{} · {}", url.filename().string(), fileSizeText(bytes)), url);
}

} // namespace quarrow
