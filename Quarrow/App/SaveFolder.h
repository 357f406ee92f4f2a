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

// Chooses the folder for photos, creates it and watches it. Reports if it cannot be created, is gone, or its
// drive was unplugged. Main thread.
class SaveFolder {
  Q_DECLARE_TR_FUNCTIONS(SaveFolder)

public:
  struct Options {
    std::optional<std::filesystem::path> forThisRun; // replaces the folder in the settings
    std::filesystem::path standard;                  // for users who have not chosen a folder
  };
  struct Observer {
    // Photos are saved in another folder from now on, which is not watched yet.
    std::function<void(const std::filesystem::path &folder)> replaced;
    // Something in the folder changed, or the folder was created or removed. Not called while its drive is
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

  // Applies the settings: chooses the folder, creates it if it is missing and begins to watch it.
  void apply();
  // Stores `folder`, which exists, as the save folder.
  void choose(const std::filesystem::path &folder);
  // Stops watching and clearing.
  void stop();

  [[nodiscard]] std::filesystem::path path() const;
  // The drive that the folder lies on; see SaveFolderDrive.h.
  [[nodiscard]] const std::filesystem::path &drive() const { return drive_; }
  // Where received files are saved, and how they are named.
  [[nodiscard]] fennick::SaveDestination destination() const;
  // Returns whether `folder` exists and its drive is not unplugged.
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
