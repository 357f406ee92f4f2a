#include "FennickCore/Storage/ThumbnailService.h"

#include "FennickCore/Platform/AsideFile.h"
#include "FennickCore/Platform/Text.h"
#include "FennickCore/Storage/Leftovers.h"

#include <fmt/format.h>
#include <glib.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMemoryLimit = std::size_t{64} << 20;
constexpr std::size_t kEndedLimit = std::size_t{1} << 20; // some three thousand pictures
constexpr double kQuality = 0.72;
constexpr std::size_t kLongestName = 255; // bytes, of every Linux file system

// What a JPEG begins and ends with: a file that a crash cut short or filled with zeros is none.
bool isWholeJPEG(std::string_view data) {
  return data.size() > 4 && data.starts_with("\xFF\xD8") && data.ends_with("\xFF\xD9");
}

bool isKept(gunichar character) {
  return character == '-' || character == '.' || character == '_' || g_unichar_isalnum(character) != FALSE;
}

// Letters and digits of every script stay, all else becomes "_".
std::string plainText(const std::string &key) {
  std::string plain;
  const char *next = nullptr;
  for (const char *at = key.c_str(); *at != '\0'; at = next) {
    next = g_utf8_next_char(at);
    if (isKept(g_utf8_get_char(at)))
      plain.append(at, next);
    else
      plain += '_';
  }
  return plain;
}

std::string checksum(const std::string &text) {
  const std::unique_ptr<gchar, decltype(&g_free)> sum(
      ::g_compute_checksum_for_string(G_CHECKSUM_SHA256, text.data(), std::ssize(text)), &g_free);
  return sum.get();
}

} // namespace

// Ends a rendering for all who wait for it, however its maker leaves.
class ThumbnailService::Turn {
public:
  Turn(ThumbnailService &owner, const std::string &key, std::shared_ptr<Rendering> rendering)
      : owner_(owner), key_(key), rendering_(std::move(rendering)) {}
  Turn(const Turn &) = delete;
  Turn &operator=(const Turn &) = delete;
  ~Turn() {
    {
      const Locked locked(owner_.lock_);
      rendering_->isDone = true;
      owner_.underWay_.erase(key_);
    }
    owner_.changed_.notify_all();
  }

private:
  ThumbnailService &owner_;
  const std::string &key_;
  std::shared_ptr<Rendering> rendering_;
};

// One of the places for renders; waits until there is one.
class ThumbnailService::Place {
public:
  explicit Place(ThumbnailService &owner) : owner_(owner) {
    Locked locked(owner_.lock_);
    while (owner_.gate_ == 0)
      locked.wait(owner_.changed_);
    --owner_.gate_;
  }
  Place(const Place &) = delete;
  Place &operator=(const Place &) = delete;
  ~Place() {
    {
      const Locked locked(owner_.lock_);
      ++owner_.gate_;
    }
    owner_.changed_.notify_all();
  }

private:
  ThumbnailService &owner_;
};

ThumbnailService::ThumbnailService(FileSystem &files, fs::path cacheDir, std::int64_t maxPixel,
                                   int concurrency, PictureDecoder &decoder)
    : files_(files), cacheDir_(std::move(cacheDir)), maxPixel_(maxPixel), decoder_(decoder),
      memory_(kMemoryLimit), endedOver_(kEndedLimit), gate_(std::max(concurrency, 1)) {
  std::ignore = files_.createDirectories(cacheDir_);
  clearThumbnailLeftovers(cacheDir_, files_);
}

ThumbnailService::Data ThumbnailService::thumbnail(const fs::path &file) {
  const auto status = fileStatus(file);
  if (!status || status->kind != FileKind::regular)
    return nullptr;
  const std::string key = keyOf(file, *status);
  std::shared_ptr<Rendering> rendering;
  {
    Locked locked(lock_);
    if (auto data = memory_.get(key))
      return data->empty() ? nullptr : data;
    if (const auto found = underWay_.find(key); found != underWay_.end()) {
      rendering = found->second;
      while (!rendering->isDone)
        locked.wait(changed_);
      return rendering->data;
    }
    rendering = underWay_.emplace(key, std::make_shared<Rendering>()).first->second;
  }
  const Turn turn(*this, key, rendering);
  rendering->data = make(file, *status, key); // read by others once it is done
  return rendering->data;
}

ThumbnailService::Data ThumbnailService::make(const fs::path &file, const FileStatus &status,
                                              const std::string &key) {
  Data data;
  if (auto stored = readFile(diskFile(key)); stored && isWholeJPEG(*stored)) {
    data = std::make_shared<const std::string>(std::move(*stored));
  } else {
    auto rendered = render(file);
    if (!rendered && !isLasting(rendered.error().fault, key))
      return nullptr;
    // Changed while it was read: nobody knows which of both this shows, so it is kept under neither.
    data = std::make_shared<const std::string>(rendered ? std::move(*rendered) : std::string());
    if (fileStatus(file) != status)
      return rendered ? data : nullptr;
    if (rendered)
      store(key, *data);
  }
  const Locked locked(lock_);
  memory_.put(key, data); // empty: it cannot be shown, and is not tried again
  return data->empty() ? nullptr : data;
}

// Whether the same picture would fail again. One that keeps a decoder busy until it is ended must not do so
// each time somebody looks at the gallery; the first time the computer may have been short of memory.
bool ThumbnailService::isLasting(PictureFault fault, const std::string &key) {
  if (fault != PictureFault::crashed && fault != PictureFault::timedOut)
    return fault == PictureFault::notAPicture || fault == PictureFault::undecodable;
  const Locked locked(lock_);
  if (endedOver_.get(key))
    return true;
  endedOver_.put(key, std::make_shared<const std::string>());
  return false;
}

PictureResult<std::string> ThumbnailService::render(const fs::path &file) {
  const Place place(*this);
  return decoder_.thumbnail(file, maxPixel_, kQuality);
}

// What the disk refuses is made again in the next run.
void ThumbnailService::store(const std::string &key, const std::string &data) {
  const FolderUse use(cacheDir_);
  const fs::path aside = temporaryIn(cacheDir_, Temporary::thumbnail);
  if (writeAside(files_, aside, data, Durability::asTheSystemLikes) && !files_.replace(aside, diskFile(key)))
    std::ignore = files_.remove(aside);
}

void ThumbnailService::clear() {
  {
    const Locked locked(lock_);
    memory_.clear();
    endedOver_.clear();
  }
  if (const auto entries = files_.list(cacheDir_))
    for (const auto &entry : *entries)
      if (entry.kind == FileKind::regular)
        std::ignore = files_.remove(cacheDir_ / entry.name);
  std::ignore = files_.createDirectories(cacheDir_);
}

std::string ThumbnailService::keyOf(const fs::path &file, const FileStatus &status) const {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(status.modified.time_since_epoch()).count();
  return fmt::format("{}-{}-{}-{}", file.native(), status.bytes, seconds, maxPixel_);
}

// The key in plain characters; its checksum where that would be too long for a name or, for bytes that are no
// text, the same for several.
fs::path ThumbnailService::diskFile(const std::string &key) const {
  constexpr std::string_view kExtension = ".jpg";
  std::string name = isValidUTF8(key) ? plainText(key) : checksum(key);
  if (name.size() + kExtension.size() > kLongestName)
    name = checksum(key);
  return cacheDir_ / (name + std::string(kExtension));
}

} // namespace fennick
