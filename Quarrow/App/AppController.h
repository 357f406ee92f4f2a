#pragma once

#include "FennickCore/HTTP/HTTPServer.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Clock.h"
#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/Lifetime.h"
#include "FennickCore/Platform/MainQueue.h"
#include "FennickCore/Platform/Preferences.h"
#include "FennickCore/Platform/SerialQueue.h"
#include "FennickCore/Platform/Trash.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/FolderWatcher.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "FennickCore/Upload/PendingPhotos.h"
#include "FennickCore/Upload/UploadRouter.h"
#include "Quarrow/App/Desktop.h"
#include "Quarrow/App/FolderCleaner.h"
#include "Quarrow/App/FolderLimit.h"
#include "Quarrow/App/LocalNetwork.h"
#include "Quarrow/App/PhotoImport.h"
#include "Quarrow/App/PhotoProcessing.h"
#include "Quarrow/App/PhotoSelection.h"
#include "Quarrow/App/RouterConfig.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/ThumbnailUpkeep.h"
#include "Quarrow/App/UploadProgress.h"

#include <QObject>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quarrow {

// A received file after its processing.
struct ReceivedFile {
  std::filesystem::path url; // where it is now
  std::int64_t bytes = 0;    // as it was received
  std::string note;          // the line that people read
};

// The one coordinator of the running program, with or without windows. It owns the settings, the state that
// is shown, the photo library and the server, and turns every change of settings, key, network or save folder
// and every received file into what follows from it. Main thread, except for the processing of pictures,
// which has a queue of its own ("fennick.imaging").
class AppController : public QObject {
  Q_OBJECT

public:
  // All outlive the controller.
  struct Services {
    fennick::Preferences &preferences;
    fennick::MainQueue &mainQueue;
    fennick::FileSystem &files;
    const fennick::Clock &clock;
    fennick::PictureDecoder &decoder;
    fennick::Trash &trash;
    Desktop &desktop;
    LocalNetwork &network;
  };
  struct Options {
    std::filesystem::path cacheDirectory; // for thumbnails
    std::vector<std::string> arguments{}; // "--show-settings", "--show-panel"; others are not ours
    std::optional<std::filesystem::path> saveFolder{}; // for this run, in place of the settings'
    // The save folder of those who have chosen none.
    std::filesystem::path defaultFolder = fennick::FolderBookmark::defaultFolder();
    bool hasPhotoWall = true; // without one nothing looks through the save folder
    // Changes settings for this run; they are never stored.
    std::function<void(fennick::AppSettings &)> overrides{};
  };

  AppController(Options options, const Services &services);
  ~AppController() override;
  AppController(const AppController &) = delete;
  AppController &operator=(const AppController &) = delete;

  // Begins the service. Once.
  void start();
  // Begins no further photo and waits for the current one, for as long as a session that ends leaves programs
  // alone: what is not done by then is left to the next run. To be called before the decoder is stopped.
  void finishPicture() { processing_->finishCurrent(fennick::Seconds(5)); }
  // Ends it: uploads under way are given up and their part files removed; photos that still wait are
  // processed by the next run. Called again it does nothing.
  void stop();

  [[nodiscard]] fennick::SettingsStore &settings() { return settings_; }
  [[nodiscard]] ServerModel &server() { return server_; }
  [[nodiscard]] fennick::PhotoLibrary &library() { return library_; }
  // The program's only ones, for the gallery as well as for the windows.
  [[nodiscard]] fennick::Thumbnails &thumbnails() { return thumbnails_; }
  [[nodiscard]] PhotoSelection &selection() { return selection_; }
  [[nodiscard]] UploadProgress &progress() { return progress_; }
  [[nodiscard]] PhotoImport &imports() { return *imports_; }

  // What a person should read before the key is reset (SettingsStore::resetAccessKey).
  [[nodiscard]] static QString resetKeyWarning() {
    return tr("重置后，之前扫过的二维码和快捷指令里填写的地址都会失效，手机需要重新扫码。");
  }

  // A second launch found us running; these are its arguments. Without one that names a window it opens the
  // main one.
  void handleArguments(const std::vector<std::string> &arguments);
  void showSettingsAction() { desktop_.show(Desktop::Window::settings); }
  void showHelpAction() { desktop_.show(Desktop::Window::help); }
  // The first-start windows were gone through; the next start opens the main window.
  void finishOnboarding();

  // False while the folder that the library shows is not there, or the drive that it lies on is unplugged.
  [[nodiscard]] bool hasLibraryFolder() const;
  // Where and under which names received files land.
  [[nodiscard]] fennick::SaveDestination makeDestination() const;
  // The folder that the gallery shows, or would show.
  [[nodiscard]] std::filesystem::path galleryURL() const;
  // From now on files are saved in `folder`, which exists. The model's error says why not.
  void chooseSaveFolder(const std::filesystem::path &folder);
  // Shows the error of something else that the person asked for.
  void reportProblem(const std::string &problem) { report(Matter::request, QString::fromStdString(problem)); }
  // Brings files of this computer into the save folder, like those of a phone but without the workflow's
  // actions: whoever did it knows of it. What could not be brought in becomes the model's error.
  void importFiles(std::vector<std::filesystem::path> files) { imports_->importFiles(std::move(files)); }
  void importPicture(std::string bytes, std::string name) {
    imports_->importPicture(std::move(bytes), std::move(name));
  }
  // Photos of the save folder were moved to the trash, by the user or to keep the folder limit: drops
  // everything that is remembered about them. All removals come through here.
  void forget(std::span<const std::filesystem::path> files);
  // Takes the error that is shown away; the person has read it.
  void dismissError();
  // Checks anew whether phones can reach the service, and what stands in their way.
  void runLocalNetworkCheck();

signals:
  // After everything else that follows from an upload.
  void received(const quarrow::ReceivedFile &file);
  // The server could not start; the model's error says why.
  void serverFailed();

private:
  struct Server;
  // What errors are about: a later success of the same thing takes them away.
  enum class Matter { server, chosenFolder, makingFolder, missingFolder, settings, hotKey, imports, request };

  void applySaveFolder();
  void updateRouterConfig();
  void startServer();
  void finishStart(Server &server);
  void retireServer();
  void runWorkflow(const std::filesystem::path &url, std::int64_t bytes);
  void pruneIfNeeded();
  void updateSharedInfo();
  void recountSoon();
  void registerHotKey(std::optional<std::int64_t> presetID);
  void settingsChanged(const fennick::AppSettings &settings);
  void accessKeyChanged(const std::string &accessKey);
  void networkChanged(std::vector<fennick::LANAddress> addresses);
  void openFirstWindow();
  void openAskedFor(fennick::Seconds panelDelay, const std::vector<std::string> &arguments);
  void report(Matter matter, const QString &error);
  void resolve(Matter matter);
  [[nodiscard]] bool stands(Matter matter) const;
  void saved(const std::error_code &result);
  void showLatestError();
  void watchSaveFolder();
  void checkSaveFolder();
  void finishUpload(const PhotoProcessing::Finished &finished);
  void finishImports(const QString &problem);
  [[nodiscard]] std::filesystem::path chosenFolder();
  [[nodiscard]] std::filesystem::path saveFolder() const; // that is used now
  [[nodiscard]] fennick::UploadRouter::Providers providers();
  [[nodiscard]] std::unique_ptr<PhotoImport> makeImports();
  [[nodiscard]] std::unique_ptr<PhotoProcessing> makeProcessing();

  const Options options_;
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
  fennick::PhotoLibrary library_;
  fennick::Thumbnails thumbnails_;
  ThumbnailUpkeep thumbnailUpkeep_;
  PhotoSelection selection_;
  UploadProgress progress_;
  RouterConfig routerConfig_;
  std::vector<std::pair<Matter, std::string>> errors_; // that stand, the latest last
  std::optional<std::string> demoKey_;                 // given to the router in place of the stored key
  std::optional<std::uint16_t> lastPort_;              // preferred when the server was last started
  fennick::AppSettings knownSettings_;                 // what followed from settings so far
  std::vector<fennick::Subscription> subscriptions_;
  std::filesystem::path shared_; // the folder that the gallery shows, or would show
  bool recounts_ = false;        // the pictures in it are to be counted soon
  std::filesystem::path drive_;  // that the save folder lies on
  std::unique_ptr<fennick::FolderWatcher> folderWatcher_;
  std::shared_ptr<Server> httpServer_;
  bool stopped_ = false;

  fennick::IncomingFolder incoming_{files_, [this](const auto &folder, const auto &hold) {
                                      processing_->takeOver(folder, hold);
                                    }}; // of all uploads, imports and processing
  FolderCleaner cleaner_{files_, incoming_};
  fennick::PendingPhotos pending_{files_};
  std::unique_ptr<fennick::SerialQueue> retirement_; // of servers that were replaced
  FolderLimit folderLimit_;
  const std::unique_ptr<PhotoProcessing> processing_;
  const std::unique_ptr<PhotoImport> imports_; // last: it hands what it saves to the processing
};

} // namespace quarrow
