#pragma once

#include "FennickCore/Settings/AppSettings.h"

#include <concepts>
#include <string_view>
#include <type_traits>

// The one list of fields, used for reading, writing and the command line. Each function calls `visit(key,
// field)` for every field of its record in declared order; the bindings do not compile if a record has a
// field that is not listed. For this folder and its tests.
namespace fennick {

template <typename R, typename T>
concept RecordOf = std::same_as<std::remove_const_t<R>, T>;

void forEachField(RecordOf<ImagingOptions> auto &record, auto &&visit) {
  auto &[maxPixels, maxBytes, format, quality, qualityFloor, stripLocation, stripAllMetadata, keepOriginal] =
      record;
  visit("maxPixels", maxPixels);
  visit("maxBytes", maxBytes);
  visit("format", format);
  visit("quality", quality);
  visit("qualityFloor", qualityFloor);
  visit("stripLocation", stripLocation);
  visit("stripAllMetadata", stripAllMetadata);
  visit("keepOriginal", keepOriginal);
}

void forEachField(RecordOf<WorkflowOptions> auto &record, auto &&visit) {
  auto &[copyToClipboard, openWithAppBookmark, openWithAppName, playSound, notify] = record;
  visit("copyToClipboard", copyToClipboard);
  visit("openWithAppBookmark", openWithAppBookmark);
  visit("openWithAppName", openWithAppName);
  visit("playSound", playSound);
  visit("notify", notify);
}

void forEachField(RecordOf<PrefixSequenceNaming> auto &record, auto &&visit) {
  auto &[prefix, separator, digits, start] = record;
  visit("prefix", prefix);
  visit("separator", separator);
  visit("digits", digits);
  visit("start", start);
}

void forEachField(RecordOf<AppSettings> auto &record, auto &&visit) {
  auto &[preferredPort, saveFolderBookmark, dateSubfolders, naming, maxUploadBytes, preferredInterface,
         imaging, workflow, hotKeyPreset, sessionSubfolder, galleryEnabled, galleryFolder, folderLimit,
         autoPrune] = record;
  visit("preferredPort", preferredPort);
  visit("saveFolderBookmark", saveFolderBookmark);
  visit("dateSubfolders", dateSubfolders);
  visit("naming", naming);
  visit("maxUploadBytes", maxUploadBytes);
  visit("preferredInterface", preferredInterface);
  visit("imaging", imaging);
  visit("workflow", workflow);
  visit("hotKeyPreset", hotKeyPreset);
  visit("sessionSubfolder", sessionSubfolder);
  visit("galleryEnabled", galleryEnabled);
  visit("galleryFolder", galleryFolder);
  visit("folderLimit", folderLimit);
  visit("autoPrune", autoPrune);
}

// A record whose fields are listed above.
template <typename T>
concept SettingsRecord = RecordOf<T, ImagingOptions> || RecordOf<T, WorkflowOptions> ||
                         RecordOf<T, PrefixSequenceNaming> || RecordOf<T, AppSettings>;

} // namespace fennick
