#include "Quarrow/App/AppController.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Upload/Gallery.h"
#include "Quarrow/App/GalleryFolder.h"
#include "Quarrow/App/ReceivedNote.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <tuple>

namespace quarrow {

using fennick::Seconds;

namespace fs = std::filesystem;

namespace {

constexpr Seconds kPanelDelay{0.5}; // until the tray has found its place for the icon
constexpr Seconds kRecountDelay{1};
constexpr std::string_view kOnboardingDone = "onboardingDone";

} // namespace

AppController::AppController(Options options, const Services &services)
    : options_(std::move(options)), preferences_(services.preferences), mainQueue_(services.mainQueue),
      files_(services.files), clock_(services.clock), decoder_(services.decoder), trash_(services.trash),
      desktop_(services.desktop), network_(services.network), settings_(preferences_),
      library_(files_, decoder_, mainQueue_),
      thumbnails_(files_, options_.cacheDirectory / "thumbs", decoder_),
      thumbnailUpkeep_(thumbnails_, library_, mainQueue_), progress_(mainQueue_, clock_),
      saveFolder_({.settings = settings_,
                   .files = files_,
                   .incoming = incoming_,
                   .mainQueue = mainQueue_,
                   .server = server_,
                   .errors = errors_},
                  {.forThisRun = options_.saveFolder, .standard = options_.defaultFolder},
                  {.replaced = [this](const auto &folder) { saveFolderReplaced(folder); },
                   .changed = [this](const auto &folder) { saveFolderChanged(folder); }}),
      folderLimit_(trash_, mainQueue_, [this](const auto &files) { forget(files); }),
      processing_(makeProcessing()), imports_(makeImports()), phoneServer_(makeServer()) {
  if (options_.overrides)
    settings_.overrideForRun(options_.overrides);
}

AppController::~AppController() { stop(); }

void AppController::start() {
  desktop_.makeTrayItem();
  server_.setAccessKey(settings_.accessKey());
  server_.setPreferredInterface(settings_.settings().preferredInterface);
  saveFolder_.apply();
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
  saveFolder_.stop();
  phoneServer_->stop();
  thumbnailWarmer_.stop();
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

void AppController::saved(const std::error_code &result) {
  if (result)
    errors_.report(ErrorSource::settings,
                   tr("无法保存设置，退出后会丢失：") + QString::fromStdString(result.message()));
  else
    errors_.resolve(ErrorSource::settings);
}

void AppController::startServer() {
  if (stopped_)
    return;
  server_.setPort(std::nullopt);
  check_.reset(); // a check under way is about the old server
  phoneServer_->start(settings_.settings().preferredPort);
}

void AppController::serverListens(std::uint16_t port) {
  server_.setPort(port);
  errors_.resolve(ErrorSource::server);
  server_.refreshQR();
  check_.run();
}

void AppController::serverCannotListen(const fennick::HTTPServerError &error) {
  errors_.report(ErrorSource::server, tr("无法启动服务：") + QString::fromStdString(description(error)));
  emit serverFailed();
}

fennick::UploadRouter::Providers AppController::providers() {
  return {.key = [this] { return routerConfig_.key(); },
          .destination = [this] { return routerConfig_.destination(); },
          .maxBytes = [this] { return routerConfig_.maxBytes(); },
          .onUpload = [this](const auto &record) { processing_->add(record); },
          .gallery = [this] { return routerConfig_.gallery(); },
          .policy = [this] { return routerConfig_.policy(); },
          .canSave = [this] { return routerConfig_.canSave(); },
          .pending = &pending_,
          .outcomes = &outcomes_,
          .wasValidKey = [this](auto key) { return routerConfig_.wasKey(key); }};
}

std::unique_ptr<PhoneServer> AppController::makeServer() {
  return std::make_unique<PhoneServer>(
      PhoneServer::Services{.mainQueue = mainQueue_,
                            .files = files_,
                            .incoming = incoming_,
                            .clock = clock_,
                            .activity = progress_.counter(),
                            .thumbnails = thumbnails_},
      providers(),
      PhoneServer::Observer{.starting = [this] { incoming_.adopt(saveFolder_.path()); },
                            .listening = [this](auto port) { serverListens(port); },
                            .failed = [this](const auto &error) { serverCannotListen(error); }});
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

void AppController::saveFolderReplaced(const fs::path &folder) {
  pending_.setOptions(settings_.settings().imaging); // before photos are found that wait for them
  pending_.setFolder(folder);
  if (options_.hasPhotoWall)
    library_.setFolder(folder);
}

void AppController::saveFolderChanged(const fs::path &folder) {
  thumbnailUpkeep_.folderChanged(folder, saveFolder_.drive());
  processing_->look();
  if (galleryURL() != shared_)
    updateRouterConfig(); // the gallery's folder has come or gone
  else
    recountSoon();
}

bool AppController::hasLibraryFolder() const {
  const auto &folder = library_.folder();
  return folder && saveFolder_.isAvailable(*folder);
}

fs::path AppController::galleryURL() const {
  return quarrow::galleryURL(settings_.settings().galleryFolder, makeDestination(), clock_.now());
}

void AppController::updateRouterConfig() {
  const auto &settings = settings_.settings();
  const auto gallery = settings.galleryEnabled ? std::optional(galleryURL()) : std::nullopt;
  routerConfig_.update({.key = demoKey_.value_or(settings_.accessKey()),
                        .destination = makeDestination(),
                        .maxBytes = settings.maxUploadBytes,
                        .gallery = gallery,
                        .policy = {.folderLimit = settings.folderLimit, .autoPrune = settings.autoPrune},
                        .drive = saveFolder_.drive()});
  thumbnailWarmer_.follow(gallery);
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
  if (phoneServer_->preferredPort() != settings.preferredPort)
    startServer();
  // Before photos of another folder are taken over, and phones may look at a gallery that was off.
  if (pending_.setOptions(settings.imaging))
    processing_->look();
  saveFolder_.apply();
  updateRouterConfig();
  server_.refreshQR();
  if (server_.preferredAddress() != before)
    check_.run();
}

void AppController::accessKeyChanged(const std::string &accessKey) {
  server_.setAccessKey(accessKey);
  updateRouterConfig();
  phoneServer_->forgiveFailures(); // of phones that used the old key
  server_.refreshQR();
}

void AppController::networkChanged(std::vector<fennick::LANAddress> addresses) {
  server_.setAddresses(std::move(addresses));
  server_.refreshQR();
  check_.run();
}

void AppController::registerHotKey(std::optional<std::int64_t> presetID) {
  const auto refused = [this] {
    errors_.report(ErrorSource::hotKey, tr("全局快捷键注册失败，可能被其他 App 占用"));
  };
  if (desktop_.registerHotKey(presetID, {.pressed = [this] { desktop_.showPanel(); }, .refused = refused}))
    errors_.resolve(ErrorSource::hotKey);
  else
    refused();
}

void AppController::finishImports(const QString &problem) {
  if (problem.isEmpty())
    errors_.resolve(ErrorSource::imports);
  else
    errors_.report(ErrorSource::imports, problem);
}

void AppController::finishUpload(const PhotoProcessing::Finished &finished) {
  const fs::path &url = finished.result.finalURL;
  const fennick::UploadRecord &upload = finished.upload;
  const bool fromPhone = upload.source == fennick::UploadSource::phone;
  library_.noteAdded(url);
  if (settings_.settings().galleryEnabled || desktop_.isOpen(Desktop::Window::main))
    thumbnailWarmer_.add(url);
  if (fromPhone && !finished.resumed)
    desktop_.flashTrayItem();
  pruneIfNeeded();
  updateRouterConfig(); // with the shared folder: a new day may have a new one
  if (!fromPhone)
    return; // nobody waits for it
  if (!finished.resumed)
    arrivalActions_.run(settings_.settings().workflow, url, upload.bytes);
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

} // namespace quarrow
