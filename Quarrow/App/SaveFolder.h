#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/FolderWatcher.h"
#include "FennickCore/Storage/SaveDestination.h"
#include "FennickCore/Upload/IncomingFolder.h"
#include "Quarrow/App/ErrorBoard.h"
#include "Quarrow/App/FolderCleaner.h"
#include "Quarrow/App/ServerModel.h"

#include <QCoreApplication>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quarrow {

// Decides which folder photos are saved in, creates it and watches it. Reports when it cannot be created, is
// gone, or its drive was unplugged. Main thread.
class SaveFolder {
  Q_DECLARE_TR_FUNCTIONS(SaveFolder)

public:
  struct Options {
    std::optional<std::filesystem::path> forThisRun; // takes the place of the settings' folder
    std::filesystem::path standard;                  // for users who have not chosen a folder
  };
  struct Observer {
    // Photos are saved in another folder from now on; it is not watched yet.
    std::function<void(const std::filesystem::path &folder)> replaced;
    // Something in the folder changed, or the folder has come or gone. Not called while its drive is
    // unplugged.
    std::function<void(const std::filesystem::path &folder)> changed;
  };
  // All outlive the object.
  struct Services {
    fennick::SettingsStore &settings;
    fennick::FileSystem &files;
    fennick::IncomingFolder &incoming;
    fennick::MainQueue &mainQueue;
    ServerModel &server;
    ErrorBoard &errors;
  };

  SaveFolder(const Services &services, Options options, Observer observer);

  // Follows the settings: chooses the folder, creates it where it is missing and begins to watch it.
  void apply();
  // Stores `folder`, which exists, as the folder to save in.
  void choose(const std::filesystem::path &folder);
  // Stops watching and clearing away leftovers.
  void stop();

  [[nodiscard]] std::filesystem::path path() const;
  // The drive that the folder lies on; see SaveFolderDrive.h.
  [[nodiscard]] const std::filesystem::path &drive() const { return drive_; }
  // Where and under which names received files are saved.
  [[nodiscard]] fennick::SaveDestination destination() const;
  // Whether `folder` is there and its drive is not unplugged.
  [[nodiscard]] bool isAvailable(const std::filesystem::path &folder) const;

private:
  [[nodiscard]] std::filesystem::path chosen();
  void watch();
  void check();

  const Services services_;
  const Options options_;
  const Observer observer_;
  fennick::Lifetime lifetime_;
  FolderCleaner cleaner_;
  std::filesystem::path drive_;
  std::unique_ptr<fennick::FolderWatcher> watcher_;
};

} // namespace quarrow
