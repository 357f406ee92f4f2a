#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "FennickCore/Storage/NamingPolicy.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fennick {

// What happens on this computer after a file was received.
struct WorkflowOptions {
  bool copyToClipboard = false;
  std::optional<BookmarkData> openWithAppBookmark{}; // the application that opens received files
  std::optional<std::string> openWithAppName{};      // its name as people know it
  bool playSound = false;
  bool notify = false;

  bool operator==(const WorkflowOptions &) const = default;
};

// All settings of the user. The initial values apply to a new installation and to fields that a stored record
// lacks. A new field is also listed in SettingsFields.h; otherwise that does not compile.
struct AppSettings {
  std::uint16_t preferredPort = 8000;               // the server takes the next free one when it is in use
  std::optional<BookmarkData> saveFolderBookmark{}; // absent: FolderBookmark::defaultFolder()
  bool dateSubfolders = false;
  NamingPolicy naming{};                                 // by the moment of receipt
  std::int64_t maxUploadBytes = std::int64_t{300} << 20; // of one file
  std::optional<std::string> preferredInterface{}; // a LANAddress::interface; absent: chosen automatically
  ImagingOptions imaging{};
  WorkflowOptions workflow{};
  std::optional<std::int64_t> hotKeyPreset{}; // absent: no global shortcut
  std::optional<std::string>
      sessionSubfolder{}; // one folder name below the save folder; absent or empty: none
  bool galleryEnabled = false;
  std::optional<std::string>
      galleryFolder{}; // below the save folder; absent or empty: the folder of new uploads
  std::optional<std::int64_t> folderLimit{}; // most photos and videos in the folder; absent: no limit
  bool autoPrune = true;                     // make room by removing the oldest; only ever with a limit

  bool operator==(const AppSettings &) const = default;
};

} // namespace fennick
