#pragma once

#include "FennickCore/Settings/AppSettings.h"
#include "FennickCore/Support/Text.h"

namespace fennick::test {

inline BookmarkData bookmarkOf(std::string_view path) {
  const auto bytes = std::as_bytes(std::span(path));
  return {bytes.begin(), bytes.end()};
}

// A record in which every field differs from its initial value.
inline AppSettings fullSettings() {
  return {.preferredPort = 9000,
          .saveFolderBookmark = bookmarkOf("/srv/照片"),
          .dateSubfolders = true,
          .naming = PrefixSequenceNaming{.prefix = "展会", .separator = "-", .digits = 4, .start = 100},
          .maxUploadBytes = 5'000'000'000,
          .preferredInterface = "wlan0",
          .imaging = {.maxPixels = 2048,
                      .maxBytes = 1'500'000,
                      .format = OutputFormat::jpeg,
                      .quality = 0.7,
                      .qualityFloor = 0.25,
                      .stripLocation = true,
                      .stripAllMetadata = true,
                      .keepOriginal = true},
          .workflow = {.copyToClipboard = true,
                       .openWithAppBookmark = bookmarkOf("/usr/share/applications/viewer.desktop"),
                       .openWithAppName = "查看器",
                       .playSound = true,
                       .notify = true},
          .hotKeyPreset = 2,
          .sessionSubfolder = "婚礼",
          .galleryEnabled = true,
          .galleryFolder = "精选/第一天",
          .folderLimit = 500,
          .autoPrune = false};
}

} // namespace fennick::test
