#include "FennickCore/Storage/PictureSizes.h"

#include "FennickCore/Imaging/ImageLimits.h"

#include <utility>

namespace fennick {

namespace {

constexpr std::size_t kMostKnown = 2'000; // four times what the wall shows

// From this orientation on, width and height are exchanged.
constexpr std::int64_t kFirstTurned = 5;

PictureSize shown(const PictureFacts &facts) {
  PictureSize size{.width = facts.width,
                   .height = facts.height,
                   .isOversized = !ImageLimits::check(facts.width, facts.height)};
  if (facts.orientation.value_or(kUpright) >= kFirstTurned)
    std::swap(size.width, size.height);
  return size;
}

// Returns whether reading the same file again may succeed.
bool mayPass(PictureFault fault) {
  return fault == PictureFault::unreadable || fault == PictureFault::noDecoder || fault == PictureFault::busy;
}

// Returns whether the decoder ended. The cause may be the picture or a computer short of memory.
bool isDecodersEnd(PictureFault fault) {
  return fault == PictureFault::crashed || fault == PictureFault::timedOut;
}

} // namespace

PictureSize PictureSizes::of(const std::filesystem::path &file, const FileStatus &status) {
  const auto found = known_.find(file.native());
  const bool isKnown = found != known_.end() && found->second.bytes == status.bytes &&
                       found->second.modified == status.modified;
  if (isKnown && found->second.isFinal) {
    found->second.used = true;
    return found->second.size;
  }
  const auto facts = decoder_.headerFacts(file);
  busy_ |= !facts && facts.error().fault == PictureFault::busy;
  const PictureSize size = facts ? shown(*facts) : PictureSize{};
  if (facts || !mayPass(facts.error().fault))
    known_[file.native()] = {.bytes = status.bytes,
                             .modified = status.modified,
                             .size = size,
                             .isFinal = isKnown || facts || !isDecodersEnd(facts.error().fault)};
  return size;
}

void PictureSizes::tidy() {
  if (known_.size() <= kMostKnown)
    return;
  std::erase_if(known_, [](const auto &entry) { return !entry.second.used; });
  for (auto &[path, entry] : known_)
    entry.used = false;
}

} // namespace fennick
