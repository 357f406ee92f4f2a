#include "FennickCore/Storage/ThumbnailService.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMemoryLimit = std::size_t{64} << 20;
constexpr std::size_t kEndedLimit = std::size_t{1} << 20; // about three thousand pictures
constexpr double kQuality = 0.72;
constexpr std::int64_t kGrowth = std::int64_t{16} << 20;

} // namespace

// Ends a rendering for all waiting callers, however its maker leaves.
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

// One of the slots for renders. The constructor waits for a free one.
class ThumbnailService::Place {
public:
  Place(ThumbnailService &owner, Asker asker) : owner_(owner), asker_(asker) {
    Locked locked(owner_.lock_);
    ++renders().waiting;
    while (!owner_.mayBegin(asker_))
      locked.wait(owner_.changed_);
    --renders().waiting;
    ++renders().underWay;
    owner_.changed_.notify_all(); // others may be waiting for this one to begin
  }
  Place(const Place &) = delete;
  Place &operator=(const Place &) = delete;
  ~Place() {
    {
      const Locked locked(owner_.lock_);
      --renders().underWay;
    }
    owner_.changed_.notify_all();
  }

private:
  [[nodiscard]] Renders &renders() REQUIRES(owner_.lock_) {
    return owner_.renders_.at(static_cast<std::size_t>(asker_));
  }

  ThumbnailService &owner_;
  const Asker asker_;
};

ThumbnailService::ThumbnailService(FileSystem &files, const fs::path &cacheDir, std::int64_t maxPixel,
                                   int concurrency, PictureDecoder &decoder, std::function<void()> grown)
    : store_(files, cacheDir, maxPixel), maxPixel_(maxPixel), concurrency_(std::max(concurrency, 1)),
      decoder_(decoder), grown_(std::move(grown)), memory_(kMemoryLimit), crashedKeys_(kEndedLimit) {}

bool ThumbnailService::mayBegin(Asker asker) const {
  const Renders &phones = renders_.at(static_cast<std::size_t>(Asker::phone));
  const Renders &windows = renders_.at(static_cast<std::size_t>(Asker::window));
  if (asker == Asker::nobody)
    return renders_.at(static_cast<std::size_t>(asker)).underWay == 0 &&
           phones.waiting + windows.waiting == 0 && phones.underWay + windows.underWay < concurrency_;
  const Renders &own = asker == Asker::phone ? phones : windows;
  const Renders &other = asker == Asker::phone ? windows : phones;
  const int underWay = own.underWay + other.underWay;
  if (own.underWay == 0)
    return underWay <= concurrency_;
  return underWay < concurrency_ && (other.waiting == 0 || own.underWay <= other.underWay);
}

ThumbnailService::Result ThumbnailService::thumbnail(const fs::path &file, Asker asker) {
  const auto status = fileStatus(file);
  if (!status || status->kind != FileKind::regular)
    return std::unexpected(Missing::noPicture);
  const std::string key = keyOf(file, *status);
  std::optional<Place>
      place; // a render without a caller takes its slot first, so that no caller waits for one
  if (asker == Asker::nobody) // that has not started
    place.emplace(*this, asker);
  std::shared_ptr<Rendering> rendering;
  {
    Locked locked(lock_);
    if (auto data = memory_.get(key))
      return data->empty() ? Result(std::unexpected(Missing::noPicture)) : Result(std::move(data));
    if (const auto found = underWay_.find(key); found != underWay_.end()) {
      rendering = found->second;
      while (!rendering->isDone)
        locked.wait(changed_);
      return rendering->result;
    }
    rendering = underWay_.emplace(key, std::make_shared<Rendering>()).first->second;
  }
  const Turn turn(*this, key, rendering);
  rendering->result = make(file, *status, key, asker); // other threads read it after it is done
  return rendering->result;
}

std::optional<ThumbnailService::Result> ThumbnailService::known(const fs::path &file) {
  const auto status = fileStatus(file);
  if (!status || status->kind != FileKind::regular)
    return std::unexpected(Missing::noPicture);
  const std::string key = keyOf(file, *status);
  {
    const Locked locked(lock_);
    if (auto data = memory_.get(key))
      return data->empty() ? Result(std::unexpected(Missing::noPicture)) : Result(std::move(data));
  }
  auto stored = store_.read(file, versionOf(*status));
  if (!stored)
    return std::nullopt;
  auto data = std::make_shared<const std::string>(std::move(*stored));
  const Locked locked(lock_);
  memory_.put(key, data);
  return Result(std::move(data));
}

ThumbnailService::Result ThumbnailService::make(const fs::path &file, const FileStatus &status,
                                                const std::string &key, Asker asker) {
  Data data;
  if (auto stored = store_.read(file, versionOf(status))) {
    data = std::make_shared<const std::string>(std::move(*stored));
  } else {
    auto rendered = render(file, asker);
    if (!rendered && !isLasting(rendered.error().fault, key))
      return std::unexpected(rendered.error().fault == PictureFault::busy ? Missing::busy
                                                                          : Missing::noPicture);
    // The file was changed while it was read. The thumbnail may show either version, so it is stored for
    // neither.
    data = std::make_shared<const std::string>(rendered ? std::move(*rendered) : std::string());
    if (fileStatus(file) != status)
      return rendered ? Result(data) : Result(std::unexpected(Missing::noPicture));
    if (rendered)
      store(file, status, *data);
  }
  const Locked locked(lock_);
  memory_.put(key, data); // empty: it cannot be shown and is not tried again
  return data->empty() ? Result(std::unexpected(Missing::noPicture)) : Result(data);
}

// Returns whether the same picture would fail again. A picture that occupies a decoder until its time-out
// must not do so each time the gallery is opened; the first time, a lack of memory may have been the cause.
bool ThumbnailService::isLasting(PictureFault fault, const std::string &key) {
  if (fault != PictureFault::crashed && fault != PictureFault::timedOut)
    return fault == PictureFault::notAPicture || fault == PictureFault::undecodable;
  const Locked locked(lock_);
  if (crashedKeys_.get(key))
    return true;
  crashedKeys_.put(key, std::make_shared<const std::string>());
  return false;
}

PictureResult<std::string> ThumbnailService::render(const fs::path &file, Asker asker) {
  std::optional<Place> place;
  if (asker != Asker::nobody)
    place.emplace(*this, asker);
  return decoder_.thumbnail(file, maxPixel_, kQuality);
}

// A thumbnail that the disk refuses is made again in the next run. Nothing is stored for a photo that was
// deleted meanwhile.
void ThumbnailService::store(const fs::path &file, const FileStatus &status, const std::string &data) {
  if (!store_.write(file, versionOf(status), data))
    return;
  if (!fileStatus(file))
    store_.remove(file, versionOf(status));
  {
    const Locked locked(lock_);
    newBytes_ += std::ssize(data);
    if (newBytes_ < kGrowth)
      return;
    newBytes_ = 0;
  }
  grown_();
}

void ThumbnailService::clear() {
  {
    const Locked locked(lock_);
    memory_.clear();
    crashedKeys_.clear();
  }
  store_.clear();
}

std::string ThumbnailService::keyOf(const fs::path &file, const FileStatus &status) const {
  const auto [bytes, modified] = versionOf(status);
  return fmt::format("{}-{}-{}-{}", file.native(), bytes, modified, maxPixel_);
}

} // namespace fennick
