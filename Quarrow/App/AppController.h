#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "Quarrow/App/Commands.h"

#include <QObject>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace fennick {
class FileSystem;
class MainQueue;
class PhotoLibrary;
class PictureDecoder;
class Preferences;
class SettingsStore;
class Thumbnails;
class Trash;
struct AppSettings;
} // namespace fennick

namespace quarrow {

class Desktop;
class LocalNetwork;
class PhotoImport;
class PhotoSelection;
class ServerModel;
class UploadProgress;

// A received file after its processing.
struct ReceivedFile {
  std::filesystem::path url; // where it is now
  std::int64_t bytes = 0;    // as it was received
  std::string note;          // the line that users read
};

// The coordinator of the running program, with or without windows. It owns the settings, the state for the
// views, the photo library and the server, and carries out the consequences of every change of settings, key,
// network or save folder and of every received file. Main thread, except for the processing of pictures,
// which has a queue of its own ("fennick.imaging").
class AppController : public QObject, public PhotoCommands, public FoldersInUse, public AppCommands {
  Q_OBJECT

public:
  // All of them outlive the controller.
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
    std::vector<std::string> arguments{}; // "--show-settings", "--show-panel"; others are ignored
    std::optional<std::filesystem::path> saveFolder{}; // for this run, instead of the folder in the settings
    // The save folder if the user has chosen none.
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
  // Starts no further photo and waits for the current one, at most as long as a session that ends lets
  // programs run; the next run processes the rest. To be called before the decoder is stopped.
  void finishPicture();
  // Ends the service: uploads under way are aborted and their part files removed; the next run processes the
  // photos that still wait. Called again it does nothing.
  void stop();

  [[nodiscard]] fennick::SettingsStore &settings();
  [[nodiscard]] ServerModel &server();
  [[nodiscard]] fennick::PhotoLibrary &library();
  // Shared by the gallery and the windows.
  [[nodiscard]] fennick::Thumbnails &thumbnails();
  [[nodiscard]] PhotoSelection &selection();
  [[nodiscard]] UploadProgress &progress();
  [[nodiscard]] PhotoImport &imports();

  void reportProblem(const std::string &problem) override;
  [[nodiscard]] bool hasLibraryFolder() const override;
  void importFiles(std::vector<std::filesystem::path> files) override;
  void importPicture(std::string bytes, std::string name) override;
  void forget(std::span<const std::filesystem::path> files) override;
  [[nodiscard]] fennick::SaveDestination makeDestination() const override;
  [[nodiscard]] std::filesystem::path galleryURL() const override;
  void showSettingsAction() override;
  void showHelpAction() override;
  void handleArguments(const std::vector<std::string> &arguments) override;
  void finishOnboarding() override;
  void chooseSaveFolder(const std::filesystem::path &folder) override;
  void dismissError() override;
  void runLocalNetworkCheck() override;

signals:
  // Emitted after all other consequences of an upload.
  void received(const quarrow::ReceivedFile &file);
  // The server could not start; the model's error says why.
  void serverFailed();

private:
  class Parts;
  const std::unique_ptr<Parts> parts_;
};

} // namespace quarrow
