#include "Quarrow/App/SaveFolder.h"

#include "FennickCore/Settings/FolderBookmark.h"
#include "Quarrow/App/SaveFolderDrive.h"

#include <span>
#include <system_error>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;

namespace {

fennick::BookmarkData bytesOf(const fs::path &path) {
  const auto bytes = std::as_bytes(std::span(path.native()));
  return {bytes.begin(), bytes.end()};
}

bool isDirectory(const fs::path &folder) {
  std::error_code ignored;
  return fs::is_directory(folder, ignored);
}

} // namespace

SaveFolder::SaveFolder(const Services &services, Options options, Observer observer)
    : services_(services), options_(std::move(options)), observer_(std::move(observer)),
      cleaner_(services.files, services.incoming) {}

fs::path SaveFolder::path() const { return services_.server.saveFolder().value_or(options_.standard); }

fs::path SaveFolder::chosen() {
  if (options_.forThisRun)
    return *options_.forThisRun;
  auto &settings = services_.settings;
  const auto bookmark = settings.settings().saveFolderBookmark;
  if (!bookmark)
    return options_.standard;
  const auto resolved = fennick::FolderBookmark::resolve(*bookmark);
  if (resolved) {
    services_.errors.resolve(ErrorSource::chosenFolder);
    return resolved->url;
  }
  // A folder that was used in this run may be on a drive that comes back.
  if (const auto &used = services_.server.saveFolder(); used && bookmark == bytesOf(*used))
    return *used;
  services_.errors.report(ErrorSource::chosenFolder, tr("之前选择的保存目录已不可用，已改回默认目录。"));
  const auto forget = [](auto &changed) { changed.saveFolderBookmark.reset(); };
  if (settings.stored().saveFolderBookmark == bookmark)
    settings.update(forget);
  else
    settings.overrideForRun(forget);
  return options_.standard;
}

void SaveFolder::choose(const fs::path &folder) {
  auto bookmark = fennick::FolderBookmark::make(folder);
  if (!bookmark)
    return services_.errors.report(ErrorSource::chosenFolder,
                                   tr("无法记住该目录：") +
                                       QString::fromStdString(bookmark.error().description()));
  services_.settings.update([&](auto &settings) { settings.saveFolderBookmark = std::move(*bookmark); });
}

void SaveFolder::apply() {
  const fs::path folder = chosen();
  const bool isNew = services_.server.saveFolder() != folder;
  if (!isNew && isUnplugged(folder, drive_))
    return;
  if (const auto made = services_.files.createDirectories(folder); made)
    services_.errors.resolve(ErrorSource::makingFolder);
  else
    services_.errors.report(ErrorSource::makingFolder,
                            tr("无法创建保存目录：") + QString::fromStdString(made.error().message()));
  drive_ = driveOf(folder);
  if (!isNew)
    return;
  services_.server.setSaveFolder(folder);
  observer_.replaced(folder);
  watch();
}

void SaveFolder::watch() {
  services_.errors.resolve(ErrorSource::missingFolder);
  cleaner_.clear(path());
  watcher_ = std::make_unique<fennick::FolderWatcher>(
      path(), [this] { services_.mainQueue.post(lifetime_.guard([this] { check(); })); });
}

// A folder that could not be created is reported as such, not as missing.
void SaveFolder::check() {
  auto &errors = services_.errors;
  const fs::path folder = path();
  if (isUnplugged(folder, drive_))
    return errors.report(ErrorSource::missingFolder,
                         tr("保存目录所在的磁盘不见了，照片暂时存不进来。请重新连接磁盘。"));
  drive_ = driveOf(folder);
  if (isDirectory(folder)) {
    if (errors.has(ErrorSource::missingFolder))
      cleaner_.clear(folder);
    errors.resolve(ErrorSource::missingFolder);
    errors.resolve(ErrorSource::makingFolder);
  } else if (!errors.has(ErrorSource::makingFolder)) {
    errors.report(ErrorSource::missingFolder, tr("保存目录不见了，收到下一张照片时会重新创建。"));
  }
  observer_.changed(folder);
}

void SaveFolder::stop() {
  watcher_.reset();
  cleaner_.stop();
}

fennick::SaveDestination SaveFolder::destination() const {
  const auto &settings = services_.settings.settings();
  return {.folder = path(),
          .dateSubfolders = settings.dateSubfolders,
          .naming = settings.naming,
          .subfolder = settings.sessionSubfolder};
}

bool SaveFolder::isAvailable(const fs::path &folder) const {
  return isDirectory(folder) && !isUnplugged(folder, drive_);
}

} // namespace quarrow
