#include "Quarrow/App/PhotoImport.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Support/Text.h"

#include <QStringList>

#include <algorithm>
#include <limits>
#include <span>
#include <system_error>
#include <utility>

namespace quarrow {

using fennick::ImportFault;

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostNamed = 4; // file names in one message

// Returns whether `file` lies where the wall shows it: in `folder` or in a folder inside it that may contain
// photos.
bool isShownFrom(const fs::path &file, const fs::path &folder) {
  const auto [inFolder, below] = std::ranges::mismatch(folder, file);
  if (inFolder != folder.end() || below == file.end())
    return false;
  const auto levels = std::distance(below, file.end()) - 1;
  return levels <= fennick::kDeepestPhotoLevel &&
         std::all_of(below, std::next(below, levels),
                     [](const fs::path &level) { return fennick::isPhotoFolderName(level.native()); });
}

fs::path resolved(const fs::path &file) {
  std::error_code error;
  const fs::path path = fs::weakly_canonical(file, error);
  return error ? file : path;
}

std::vector<fs::path> mediaIn(const fs::path &folder) {
  const auto entries = fennick::readFolder(folder, fennick::Links::follow, fennick::countsAsMedia);
  std::vector<fs::path> files;
  if (entries)
    for (const auto &entry : *entries)
      files.push_back(folder / entry.name);
  std::ranges::sort(files);
  return files;
}

} // namespace

PhotoImport::PhotoImport(Services services)
    : mainQueue_(services.mainQueue), destination_(services.providers.destination),
      importer_(withStop(std::move(services.providers)), services.files, services.incoming, services.clock,
                services.activity) {}

PhotoImport::~PhotoImport() { end(); }

fennick::FileImporter::Providers PhotoImport::withStop(fennick::FileImporter::Providers providers) {
  providers.isStopped = [this] { return current_ <= stoppedUpTo_; };
  return providers;
}

void PhotoImport::importFiles(std::vector<fs::path> files) {
  start([this, asked = std::move(files)] { importAll(asked); });
}

void PhotoImport::importPicture(std::string bytes, std::string name) {
  start([this, picture = std::move(bytes), called = std::move(name)] {
    postToMain([this] { expect(1); });
    const auto result = importer_.importBytes(std::as_bytes(std::span(picture)), called);
    postToMain([this, called, result] { note(called, result); });
  });
}

void PhotoImport::start(std::function<void()> batch) {
  if (ended_)
    return;
  if (!queue_)
    queue_ = std::make_unique<fennick::SerialQueue>("fennick.import");
  ++batches_;
  queue_->post([this, number = ++lastBatch_, run = std::move(batch)] {
    current_ = number;
    run();
    postToMain([this] { endBatch(); });
  });
  emit changed();
}

void PhotoImport::stop() { stoppedUpTo_ = lastBatch_; }

void PhotoImport::end() {
  ended_ = true;
  stop();
  queue_.reset();
}

// Runs on the queue.
void PhotoImport::importAll(const std::vector<fs::path> &files) {
  const auto found = wanted(files);
  postToMain([this, count = found.size()] { expect(count); });
  for (const auto &file : found) {
    const auto result = importer_.importFile(file);
    postToMain([this, name = file.filename().string(), result] { note(name, result); });
  }
}

// Returns the files to import, in the order given. Runs on the queue.
std::vector<fs::path> PhotoImport::wanted(const std::vector<fs::path> &files) const {
  const fs::path saveFolder = resolved(destination_().folder);
  std::vector<fs::path> found;
  for (const auto &file : files) {
    const fs::path path = resolved(file);
    std::error_code ignored;
    const auto meant = fs::is_directory(path, ignored) ? mediaIn(path) : std::vector{path};
    std::ranges::copy_if(meant, std::back_inserter(found),
                         [&](const fs::path &each) { return !isShownFrom(each, saveFolder); });
  }
  return found;
}

void PhotoImport::postToMain(std::function<void()> task) {
  mainQueue_.post(lifetime_.guard(std::move(task)));
}

void PhotoImport::expect(std::size_t files) {
  constexpr std::size_t kMost = std::numeric_limits<int>::max() / 2;
  total_ += static_cast<int>(std::min(files, kMost));
  emit changed();
}

void PhotoImport::note(const std::string &name, const Result &result) {
  ++done_;
  if (!result && result.error() != ImportFault::stopped)
    failures_.push_back({.name = name, .fault = result.error()});
  emit changed();
}

void PhotoImport::endBatch() {
  if (--batches_ > 0)
    return;
  const QString said = problem();
  failures_.clear();
  done_ = total_ = 0;
  emit changed();
  emit finished(said);
}

QString PhotoImport::problem() const {
  if (failures_.empty())
    return {};
  const auto reason = [](ImportFault fault) {
    switch (fault) {
    case ImportFault::unreadable:
      return tr("无法读取");
    case ImportFault::notMedia:
      return tr("不是照片或视频");
    case ImportFault::noRoom:
      return tr("磁盘空间不足");
    default:
      return tr("无法写入保存目录");
    }
  };
  QStringList named;
  for (const auto &failure : std::span(failures_).first(std::min(failures_.size(), kMostNamed)))
    named.append(tr("%1（%2）")
                     .arg(QString::fromStdString(fennick::displayText(failure.name)), reason(failure.fault)));
  const QString list = named.join(tr("、"));
  if (failures_.size() <= kMostNamed)
    return tr("没有导入：%1").arg(list);
  return tr("%1 个文件没有导入：%2 等").arg(failures_.size()).arg(list);
}

} // namespace quarrow
