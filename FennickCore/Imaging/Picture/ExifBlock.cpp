#include "FennickCore/Imaging/Picture/ExifBlock.h"

#include "FennickCore/Imaging/Picture/Containers.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::uint16_t kImageWidth = 0x0100;
constexpr std::uint16_t kImageLength = 0x0101;
constexpr std::uint16_t kStripOffsets = 0x0111;
constexpr std::uint16_t kOrientation = 0x0112;
constexpr std::uint16_t kStripBytes = 0x0117;
constexpr std::uint16_t kThumbnailAt = 0x0201;
constexpr std::uint16_t kThumbnailBytes = 0x0202;
constexpr std::uint16_t kSubDirectories = 0x014A;
constexpr std::uint16_t kExifDirectory = 0x8769;
constexpr std::uint16_t kGPSDirectory = 0x8825;
constexpr std::uint16_t kMakerNote = 0x927C;
constexpr std::uint16_t kPixelXDimension = 0xA002;
constexpr std::uint16_t kPixelYDimension = 0xA003;

// Copies of other blocks in the first directory: XMP, IPTC, Photoshop's.
constexpr std::array<std::uint16_t, 3> kEmbeddedBlocks{0x02BC, 0x83BB, 0x8649};

// Place names in makers' notes.
constexpr std::array<std::uint16_t, 1> kNikonPlaces{0x0039};
constexpr std::array<std::uint16_t, 6> kPanasonicPlaces{0x0067, 0x0069, 0x006B, 0x006D, 0x006F, 0x0080};

// Tags of the storage of pixels and of pointers to other directories, in ascending order.
constexpr std::array<std::uint16_t, 37> kStructural{
    0x00FE, 0x00FF, 0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x0107, 0x010A, 0x0111, 0x0115, 0x0116, 0x0117,
    0x011C, 0x0120, 0x0121, 0x0124, 0x0125, 0x013D, 0x0140, 0x0142, 0x0143, 0x0144, 0x0145, 0x014A, 0x0152,
    0x0153, 0x015B, 0x0200, 0x0201, 0x0202, 0x0211, 0x0212, 0x0213, 0x8769, 0x8773, 0x8825};

// Overwrites the values of `tags` in a directory, whose positions count from `base`, with zeros; the entries
// stay.
void zeroValues(std::string &data, std::size_t base, const TiffDirectory &directory,
                std::span<const std::uint16_t> tags) {
  for (const std::uint16_t tag : tags)
    if (const TiffEntry *entry = directory.find(tag))
      zero(data, base + entry->valueAt, entry->valueBytes);
}

} // namespace

bool isStructuralTag(std::uint16_t tag) { return std::ranges::binary_search(kStructural, tag); }

std::optional<ExifBlock> ExifBlock::parse(std::string_view block) {
  while (block.starts_with(kExifPrefix))
    block.remove_prefix(kExifPrefix.size());
  const auto layout = TiffLayout::of(block);
  if (!layout || !layout->firstDirectory(block))
    return std::nullopt;
  return ExifBlock(std::string(block), *layout);
}

std::string ExifBlock::minimal(std::uint16_t orientation) {
  return std::string("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01"sv) + numberText(orientation, 2) +
         std::string(6, '\0');
}

std::optional<std::int64_t> ExifBlock::orientation() const {
  const auto first = layout_.firstDirectory(data_);
  const TiffEntry *entry = first ? first->find(kOrientation) : nullptr;
  const auto value = (entry != nullptr) ? layout_.number(data_, *entry) : std::nullopt;
  return value ? std::optional(static_cast<std::int64_t>(*value)) : std::nullopt;
}

bool ExifBlock::setOrientation(std::uint16_t orientation) {
  const std::string before = data_;
  if (!stateOrientation(orientation) || this->orientation() != orientation)
    data_ = before;
  return this->orientation() == orientation;
}

// The preview's own orientation is changed if it was the same as the picture's.
bool ExifBlock::stateOrientation(std::uint16_t orientation) {
  const auto before = this->orientation();
  const auto chain = layout_.chain(data_);
  const TiffEntry *entry = chain.empty() ? nullptr : chain[0].find(kOrientation);
  if (entry == nullptr)
    return layout_.appendShort(data_, kOrientation, orientation);
  const TiffEntry *preview = chain.size() > 1 ? chain[1].find(kOrientation) : nullptr;
  if (before && (preview != nullptr) &&
      layout_.number(data_, *preview) == static_cast<std::uint64_t>(*before))
    (void)layout_.setNumber(data_, *preview, orientation);
  return layout_.setNumber(data_, *entry, orientation);
}

void ExifBlock::setPixelDimensions(std::uint32_t width, std::uint32_t height) {
  const auto set = [&](const TiffDirectory &directory, std::uint16_t tag, std::uint32_t value) {
    if (const TiffEntry *entry = directory.find(tag))
      (void)layout_.setNumber(data_, *entry, value);
  };
  const auto first = layout_.firstDirectory(data_);
  if (!first)
    return;
  set(*first, kImageWidth, width);
  set(*first, kImageLength, height);
  const TiffEntry *exif = first->find(kExifDirectory);
  for (const auto &directory : exif ? layout_.pointedTo(data_, *exif) : std::vector<TiffDirectory>()) {
    set(directory, kPixelXDimension, width);
    set(directory, kPixelYDimension, height);
  }
}

bool ExifBlock::hasGPS() const { return pointAnywhere(kGPSDirectory); }

bool ExifBlock::hasExif() const { return pointAnywhere(kExifDirectory); }

bool ExifBlock::hasTIFF() const {
  const auto first = layout_.firstDirectory(data_);
  return first && std::ranges::any_of(first->entries,
                                      [](const TiffEntry &entry) { return !isStructuralTag(entry.tag); });
}

bool ExifBlock::hasThumbnail() const { return layout_.chain(data_).size() > 1; }

void ExifBlock::removeGPS() {
  removeMakersPlaces();
  for (const TiffDirectory &owner : directories()) {
    for (const std::uint16_t tag : kEmbeddedBlocks)
      removeEmbedded(owner.at, tag);
    removeGPSOf(owner.at);
  }
}

void ExifBlock::removeThumbnail() {
  const auto chain = layout_.chain(data_);
  if (chain.empty() || chain[0].next == 0)
    return;
  const std::size_t pointer =
      chain[0].at + layout_.countBytes() + chain[0].entries.size() * layout_.entryBytes();
  writeNumber(data_, pointer, 0, layout_.pointerBytes(), layout_.order);
  for (const TiffDirectory &directory : std::span(chain).subspan(1)) {
    zeroData(directory, kThumbnailAt, kThumbnailBytes);
    zeroData(directory, kStripOffsets, kStripBytes);
    zeroWithValues(directory);
  }
  dropEmptyEnd();
}

std::vector<TiffDirectory> ExifBlock::directories() const {
  auto found = layout_.chain(data_);
  const std::size_t chained = found.size();
  for (std::size_t i = 0; i < chained; ++i)
    for (const std::uint16_t tag : {kExifDirectory, kSubDirectories})
      if (const TiffEntry *entry = found[i].find(tag))
        for (auto &directory : layout_.pointedTo(data_, *entry))
          found.push_back(std::move(directory));
  return found;
}

bool ExifBlock::pointAnywhere(std::uint16_t tag) const {
  return std::ranges::any_of(directories(), [tag](const auto &d) { return d.find(tag) != nullptr; });
}

std::set<std::uint64_t> ExifBlock::placesInUse() const {
  std::set<std::uint64_t> places;
  for (const TiffDirectory &directory : directories()) {
    places.insert(directory.at);
    for (const TiffEntry &entry : directory.entries)
      places.insert(entry.valueAt);
  }
  return places;
}

// Overwrites the directory and its values outside it with zeros, except values shared with directories in
// use. The directory itself is no longer in use.
void ExifBlock::zeroWithValues(const TiffDirectory &directory) {
  const auto used = placesInUse();
  for (const TiffEntry &entry : directory.entries)
    if (!entry.isInline && !used.contains(entry.valueAt))
      zeroStretch(entry.valueAt, entry.valueBytes);
  zeroStretch(directory.at, layout_.countBytes() + directory.entries.size() * layout_.entryBytes() +
                                layout_.pointerBytes());
}

// Never overwrites the header, whatever a hostile block points to.
void ExifBlock::zeroStretch(std::uint64_t at, std::uint64_t length) {
  if (at >= layout_.headerBytes())
    zero(data_, at, length);
}

// Overwrites the data whose positions and lengths two entries of a directory state. A length that is too
// large ends where something in use begins.
void ExifBlock::zeroData(const TiffDirectory &directory, std::uint16_t places, std::uint16_t lengths) {
  const TiffEntry *at = directory.find(places);
  const TiffEntry *bytes = directory.find(lengths);
  if ((at == nullptr) || (bytes == nullptr))
    return;
  const auto used = placesInUse();
  const auto starts = layout_.numbers(data_, *at);
  const auto sizes = layout_.numbers(data_, *bytes);
  std::uint64_t left = data_.size(); // limits the work for overlapping ranges
  for (std::size_t i = 0; i < std::min(starts.size(), sizes.size()); ++i) {
    const auto next = used.upper_bound(starts[i]);
    const std::uint64_t room = next == used.end() ? left : std::min(left, *next - starts[i]);
    const std::uint64_t length = std::min(sizes[i], room);
    zeroStretch(starts[i], length);
    left -= length;
  }
}

void ExifBlock::removeEmbedded(std::size_t owner, std::uint16_t tag) {
  const auto directory = layout_.directory(data_, owner);
  if (!directory || (directory->find(tag) == nullptr))
    return;
  for (const TiffEntry &entry : directory->entries)
    if (entry.tag == tag)
      zeroStretch(entry.valueAt, entry.isInline ? 0 : entry.valueBytes);
  if (const auto left = layout_.directory(data_, owner))
    layout_.removeEntries(data_, *left, tag);
}

void ExifBlock::removeGPSOf(std::size_t owner) {
  const auto directory = layout_.directory(data_, owner);
  const TiffEntry *entry = directory ? directory->find(kGPSDirectory) : nullptr;
  if (!directory || entry == nullptr)
    return;
  const auto unlinked = layout_.pointedTo(data_, *entry);
  layout_.removeEntries(data_, *directory, kGPSDirectory);
  for (const TiffDirectory &gps : unlinked)
    zeroWithValues(gps);
}

// Nikon's notes have a TIFF structure of their own; Panasonic's use the block's positions.
void ExifBlock::removeMakersPlaces() {
  for (const TiffDirectory &directory : directories()) {
    const TiffEntry *note = directory.find(kMakerNote);
    if ((note == nullptr) || note->isInline)
      continue;
    const auto text = std::string_view(data_).substr(note->valueAt, note->valueBytes);
    if (text.starts_with("Panasonic\0\0\0"sv)) {
      if (const auto entries = layout_.directory(data_, note->valueAt + 12))
        zeroValues(data_, 0, *entries, kPanasonicPlaces);
    } else if (text.starts_with("Nikon\0\x02"sv)) {
      const auto inner = text.substr(std::min<std::size_t>(10, text.size()));
      const auto layout = TiffLayout::of(inner);
      if (!layout)
        continue;
      if (const auto entries = layout->firstDirectory(inner))
        zeroValues(data_, note->valueAt + 10, *entries, kNikonPlaces);
    }
  }
}

// Keeps a few zeros, since an unread directory may end with some.
void ExifBlock::dropEmptyEnd() {
  constexpr std::size_t kSpare = 16;
  std::size_t end = data_.find_last_not_of('\0') + 1 + kSpare;
  for (const TiffDirectory &directory : directories())
    for (const TiffEntry &entry : directory.entries)
      end = std::max(end, entry.valueAt + entry.valueBytes);
  data_.resize(std::min(end, data_.size()));
}

} // namespace fennick::picture
