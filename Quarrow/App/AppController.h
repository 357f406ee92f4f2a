#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "FennickCore/Upload/PendingPhotos.h"
#include "FennickCore/Upload/UploadRouter.h"
#include "Quarrow/App/ArrivalActions.h"
#include "Quarrow/App/Desktop.h"
#include "Quarrow/App/ErrorBoard.h"
#include "Quarrow/App/FolderLimit.h"
#include "Quarrow/App/LocalNetwork.h"
#include "Quarrow/App/PhoneServer.h"
#include "Quarrow/App/PhotoImport.h"
#include "Quarrow/App/PhotoProcessing.h"
#include "Quarrow/App/PhotoSelection.h"
#include "Quarrow/App/ReachabilityCheck.h"
#include "Quarrow/App/RouterConfig.h"
#include "Quarrow/App/SaveFolder.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/ThumbnailUpkeep.h"
#include "Quarrow/App/ThumbnailWarmer.h"
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
    std::filesystem::path uploadRecord{}; // saved uploads, for the next run; empty: not recorded
    bool hasPhotoWall = true;             // without one nothing looks through the save folder
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
  [[nodiscard]] fennick::SaveDestination makeDestination() const { return saveFolder_.destination(); }
  // The folder that the gallery shows, or would show.
  [[nodiscard]] std::filesystem::path galleryURL() const;
  // From now on files are saved in `folder`, which exists. The model's error says why not.
  void chooseSaveFolder(const std::filesystem::path &folder) { saveFolder_.choose(folder); }
  // Shows the error of something else that the user asked for.
  void reportProblem(const std::string &problem) {
    errors_.report(ErrorSource::request, QString::fromStdString(problem));
  }
  // Brings files of this computer into the save folder, like those of a phone but without the workflow's
  // actions: whoever did it knows of it. What could not be brought in becomes the model's error.
  void importFiles(std::vector<std::filesystem::path> files) { imports_->importFiles(std::move(files)); }
  void importPicture(std::string bytes, std::string name) {
    imports_->importPicture(std::move(bytes), std::move(name));
  }
  // Photos of the save folder were moved to the trash, by the user or to keep the folder limit: drops
  // everything that is remembered about them. All removals come through here.
  void forget(std::span<const std::filesystem::path> files);
  // Removes the error that is shown, since the user has read it.
  void dismissError() { errors_.dismiss(); }
  // Checks anew whether phones can reach the service, and what stands in their way.
  void runLocalNetworkCheck() { check_.run(); }

signals:
  // After everything else that follows from an upload.
  void received(const quarrow::ReceivedFile &file);
  // The server could not start; the model's error says why.
  void serverFailed();

private:
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
  fennick::AppSettings knownSettings_; // the latest settings that were compared
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

} // namespace quarrow
