#include "Quarrow/App/AppController.h"

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "FennickCore/Upload/Gallery.h"
#include "FennickCore/Upload/PendingPhotos.h"
#include "FennickCore/Upload/UploadRouter.h"
#include "Quarrow/App/ArrivalActions.h"
#include "Quarrow/App/Desktop.h"
#include "Quarrow/App/ErrorBoard.h"
#include "Quarrow/App/FolderLimit.h"
#include "Quarrow/App/GalleryFolder.h"
#include "Quarrow/App/LocalNetwork.h"
#include "Quarrow/App/PhoneServer.h"
#include "Quarrow/App/PhotoImport.h"
#include "Quarrow/App/PhotoProcessing.h"
#include "Quarrow/App/PhotoSelection.h"
#include "Quarrow/App/ReachabilityCheck.h"
#include "Quarrow/App/ReceivedNote.h"
#include "Quarrow/App/RouterConfig.h"
#include "Quarrow/App/SaveFolder.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/ThumbnailUpkeep.h"
#include "Quarrow/App/ThumbnailWarmer.h"
#include "Quarrow/App/UploadProgress.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <tuple>
#include <utility>

namespace quarrow {

using fennick::Seconds;

namespace fs = std::filesystem;

namespace {

constexpr Seconds kPanelDelay{0.5}; // until the tray has placed the icon
constexpr Seconds kRecountDelay{1};
constexpr Seconds kLogoutPatience{5}; // desktops grant programs at least this time at the end of a session
constexpr std::string_view kOnboardingDone = "onboardingDone";

} // namespace

// Everything that the controller owns, and the consequences of each change.
class AppController::Parts {
public:
  Parts(AppController &owner, Options options, const Services &services);

  void start();
  void stop();
  void handleArguments(const std::vector<std::string> &arguments);
  [[nodiscard]] bool hasLibraryFolder() const;
  [[nodiscard]] fs::path galleryURL() const;
  [[nodiscard]] fennick::SaveDestination makeDestination() const { return saveFolder_.destination(); }
  void forget(std::span<const fs::path> files);

  void startServer();
  void serverListens(std::uint16_t port);
  void serverCannotListen(const fennick::HTTPServerError &error);
  void saveFolderReplaced(const std::filesystem::path &folder);
  void saveFolderChanged(const std::filesystem::path &folder);
  void updateRouterConfig();
  void updateSharedInfo();
  void recountSoon();
  void pruneIfNeeded();
  void registerHotKey(std::optional<std::int64_t> presetID);
  void settingsChanged(const fennick::AppSettings &settings);
  void accessKeyChanged(const std::string &accessKey);
  void networkChanged(std::vector<fennick::LANAddress> addresses);
  void saved(const std::error_code &result);
  void openFirstWindow();
  void openAskedFor(fennick::Seconds panelDelay, const std::vector<std::string> &arguments);
  void finishUpload(const PhotoProcessing::Finished &finished);
  void finishImports(const QString &problem);
  [[nodiscard]] fennick::UploadRouter::Providers providers();
  [[nodiscard]] std::unique_ptr<PhoneServer> makeServer();
  [[nodiscard]] std::unique_ptr<PhotoImport> makeImports();
  [[nodiscard]] std::unique_ptr<PhotoProcessing> makeProcessing();

  const Options options_;
  AppController &owner_; // emits the signals
  fennick::Preferences &preferences_;
  fennick::MainQueue &mainQueue_;
  fennick::FileSystem &files_;
  const fennick::Clock &clock_;
  fennick::PictureDecoder &decoder_;
  fennick::Trash &trash_;
  Desktop &desktop_;
  LocalNetwork &network_;
  fennick::Lifetime lifetime_;

  fennick::SettingsStore settings_;
  ServerModel server_;
  ErrorBoard errors_{server_};
  ReachabilityCheck check_{server_, network_};
  ArrivalActions arrivalActions_{desktop_};
  fennick::PhotoLibrary library_;
  fennick::Thumbnails thumbnails_;
  ThumbnailUpkeep thumbnailUpkeep_;
  PhotoSelection selection_;
  UploadProgress progress_;
  RouterConfig routerConfig_;
  std::optional<std::string> demoKey_; // given to the router in place of the stored key
  fennick::AppSettings knownSettings_; // the latest settings that were handled
  std::vector<fennick::Subscription> subscriptions_;
  std::filesystem::path shared_; // the folder that the gallery shows, or would show
  bool recounts_ = false;        // the pictures in it are to be counted soon
  bool stopped_ = false;

  fennick::IncomingFolder incoming_{files_, [this](const auto &folder, const auto &hold) {
                                      processing_->takeOver(folder, hold);
                                    }}; // of all uploads, imports and processing
  SaveFolder saveFolder_;
  fennick::PendingPhotos pending_{files_};
  fennick::UploadOutcomes outcomes_{options_.uploadRecord};
  ThumbnailWarmer thumbnailWarmer_{thumbnails_, pending_};
  FolderLimit folderLimit_;
  const std::unique_ptr<PhotoProcessing> processing_;
  const std::unique_ptr<PhotoImport> imports_;     // hands what it saves to the processing
  const std::unique_ptr<PhoneServer> phoneServer_; // last: its connections use most of the above
};

AppController::Parts::Parts(AppController &owner, Options options, const Services &services)
    : options_(std::move(options)), owner_(owner), preferences_(services.preferences),
      mainQueue_(services.mainQueue), files_(services.files), clock_(services.clock),
      decoder_(services.decoder), trash_(services.trash), desktop_(services.desktop),
      network_(services.network), settings_(preferences_), library_(files_, decoder_, mainQueue_),
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

void AppController::Parts::start() {
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

void AppController::Parts::stop() {
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
  processing_->end(); // last: others hand over received photos until here
}

void AppController::Parts::openFirstWindow() {
  if (!preferences_.flag(kOnboardingDone))
    return desktop_.show(Desktop::Window::onboarding);
  if (desktop_.launchedAsLoginItem())
    return;
  desktop_.closePanel();
  desktop_.show(Desktop::Window::main);
}

void AppController::Parts::openAskedFor(Seconds panelDelay, const std::vector<std::string> &arguments) {
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

void AppController::Parts::handleArguments(const std::vector<std::string> &arguments) {
  const bool namesOne = std::ranges::any_of(
      arguments, [](const auto &each) { return each == "--show-settings" || each == "--show-panel"; });
  if (namesOne)
    return openAskedFor(Seconds(0), arguments);
  desktop_.closePanel();
  desktop_.show(preferences_.flag(kOnboardingDone) ? Desktop::Window::main : Desktop::Window::onboarding);
}

void AppController::Parts::saved(const std::error_code &result) {
  if (result)
    errors_.report(ErrorSource::settings, AppController::tr("无法保存设置，退出后会丢失：") +
                                              QString::fromStdString(result.message()));
  else
    errors_.resolve(ErrorSource::settings);
}

void AppController::Parts::startServer() {
  if (stopped_)
    return;
  server_.setPort(std::nullopt);
  check_.reset(); // a running check concerns the old server
  phoneServer_->start(settings_.settings().preferredPort);
}

void AppController::Parts::serverListens(std::uint16_t port) {
  server_.setPort(port);
  errors_.resolve(ErrorSource::server);
  server_.refreshQR();
  check_.run();
}

void AppController::Parts::serverCannotListen(const fennick::HTTPServerError &error) {
  errors_.report(ErrorSource::server,
                 AppController::tr("无法启动服务：") + QString::fromStdString(description(error)));
  emit owner_.serverFailed();
}

fennick::UploadRouter::Providers AppController::Parts::providers() {
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

std::unique_ptr<PhoneServer> AppController::Parts::makeServer() {
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

std::unique_ptr<PhotoProcessing> AppController::Parts::makeProcessing() {
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

std::unique_ptr<PhotoImport> AppController::Parts::makeImports() {
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
  QObject::connect(imports.get(), &PhotoImport::finished, &owner_,
                   [this](const QString &problem) { finishImports(problem); });
  return imports;
}

void AppController::Parts::saveFolderReplaced(const fs::path &folder) {
  pending_.setOptions(settings_.settings().imaging); // before photos are found that wait for them
  pending_.setFolder(folder);
  if (options_.hasPhotoWall)
    library_.setFolder(folder);
}

void AppController::Parts::saveFolderChanged(const fs::path &folder) {
  thumbnailUpkeep_.folderChanged(folder, saveFolder_.drive());
  processing_->look();
  if (galleryURL() != shared_)
    updateRouterConfig(); // the gallery's folder was created or removed
  else
    recountSoon();
}

bool AppController::Parts::hasLibraryFolder() const {
  const auto &folder = library_.folder();
  return folder && saveFolder_.isAvailable(*folder);
}

fs::path AppController::Parts::galleryURL() const {
  return quarrow::galleryURL(settings_.settings().galleryFolder, makeDestination(), clock_.now());
}

void AppController::Parts::updateRouterConfig() {
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

void AppController::Parts::updateSharedInfo() {
  shared_ = galleryURL();
  server_.setShared(shared_.filename().string(), fennick::galleryCount(shared_, &pending_));
}

// Counts once for a burst of changes in the folder.
void AppController::Parts::recountSoon() {
  if (std::exchange(recounts_, true))
    return;
  mainQueue_.postAfter(kRecountDelay, lifetime_.guard([this] {
    recounts_ = false;
    updateSharedInfo();
  }));
}

void AppController::Parts::settingsChanged(const fennick::AppSettings &settings) {
  const auto before = server_.preferredAddress();
  server_.setPreferredInterface(settings.preferredInterface);
  registerHotKey(settings.hotKeyPreset);
  if (phoneServer_->preferredPort() != settings.preferredPort)
    startServer();
  // Before photos of another folder are taken over, and before phones may see a gallery that was off.
  if (pending_.setOptions(settings.imaging))
    processing_->look();
  saveFolder_.apply();
  updateRouterConfig();
  server_.refreshQR();
  if (server_.preferredAddress() != before)
    check_.run();
}

void AppController::Parts::accessKeyChanged(const std::string &accessKey) {
  server_.setAccessKey(accessKey);
  updateRouterConfig();
  phoneServer_->forgiveFailures(); // of phones with the old key
  server_.refreshQR();
}

void AppController::Parts::networkChanged(std::vector<fennick::LANAddress> addresses) {
  server_.setAddresses(std::move(addresses));
  server_.refreshQR();
  check_.run();
}

void AppController::Parts::registerHotKey(std::optional<std::int64_t> presetID) {
  const auto refused = [this] {
    errors_.report(ErrorSource::hotKey, AppController::tr("全局快捷键注册失败，可能被其他 App 占用"));
  };
  if (desktop_.registerHotKey(presetID, {.pressed = [this] { desktop_.showPanel(); }, .refused = refused}))
    errors_.resolve(ErrorSource::hotKey);
  else
    refused();
}

void AppController::Parts::finishImports(const QString &problem) {
  if (problem.isEmpty())
    errors_.resolve(ErrorSource::imports);
  else
    errors_.report(ErrorSource::imports, problem);
}

void AppController::Parts::finishUpload(const PhotoProcessing::Finished &finished) {
  const fs::path &url = finished.result.finalURL;
  const fennick::UploadRecord &upload = finished.upload;
  const bool fromPhone = upload.source == fennick::UploadSource::phone;
  library_.noteAdded(url);
  if (settings_.settings().galleryEnabled || desktop_.isOpen(Desktop::Window::main))
    thumbnailWarmer_.add(url);
  if (fromPhone && !finished.resumed)
    desktop_.flashTrayItem();
  pruneIfNeeded();
  updateRouterConfig(); // includes the shared folder: a new day may have a new one
  if (!fromPhone)
    return; // imported by the user, who knows
  if (!finished.resumed)
    arrivalActions_.run(settings_.settings().workflow, url, upload.bytes);
  const std::string note = receivedNote(upload, finished.result, finished.left);
  server_.setLastNote(note);
  emit owner_.received({.url = url, .bytes = upload.bytes, .note = note});
}

void AppController::Parts::pruneIfNeeded() {
  const auto &settings = settings_.settings();
  if (settings.autoPrune && settings.folderLimit.value_or(0) >= 1)
    folderLimit_.prune(makeDestination().directory(clock_.now()), *settings.folderLimit);
}

void AppController::Parts::forget(std::span<const fs::path> files) {
  library_.remove(files);
  selection_.remove(files);
}

AppController::AppController(Options options, const Services &services)
    : parts_(std::make_unique<Parts>(*this, std::move(options), services)) {}

AppController::~AppController() { stop(); }

void AppController::start() { parts_->start(); }
void AppController::finishPicture() { parts_->processing_->finishCurrent(kLogoutPatience); }
void AppController::stop() { parts_->stop(); }

fennick::SettingsStore &AppController::settings() { return parts_->settings_; }
ServerModel &AppController::server() { return parts_->server_; }
fennick::PhotoLibrary &AppController::library() { return parts_->library_; }
fennick::Thumbnails &AppController::thumbnails() { return parts_->thumbnails_; }
PhotoSelection &AppController::selection() { return parts_->selection_; }
UploadProgress &AppController::progress() { return parts_->progress_; }
PhotoImport &AppController::imports() { return *parts_->imports_; }

void AppController::reportProblem(const std::string &problem) {
  parts_->errors_.report(ErrorSource::request, QString::fromStdString(problem));
}
bool AppController::hasLibraryFolder() const { return parts_->hasLibraryFolder(); }
void AppController::importFiles(std::vector<fs::path> files) {
  parts_->imports_->importFiles(std::move(files));
}
void AppController::importPicture(std::string bytes, std::string name) {
  parts_->imports_->importPicture(std::move(bytes), std::move(name));
}
void AppController::forget(std::span<const fs::path> files) { parts_->forget(files); }
fennick::SaveDestination AppController::makeDestination() const { return parts_->makeDestination(); }
fs::path AppController::galleryURL() const { return parts_->galleryURL(); }
void AppController::showSettingsAction() { parts_->desktop_.show(Desktop::Window::settings); }
void AppController::showHelpAction() { parts_->desktop_.show(Desktop::Window::help); }
void AppController::handleArguments(const std::vector<std::string> &arguments) {
  parts_->handleArguments(arguments);
}
void AppController::finishOnboarding() { std::ignore = parts_->preferences_.setFlag(kOnboardingDone, true); }
void AppController::chooseSaveFolder(const fs::path &folder) { parts_->saveFolder_.choose(folder); }
void AppController::dismissError() { parts_->errors_.dismiss(); }
void AppController::runLocalNetworkCheck() { parts_->check_.run(); }

} // namespace quarrow
