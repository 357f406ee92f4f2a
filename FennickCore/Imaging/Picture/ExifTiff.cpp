#include "FennickCore/Imaging/Picture/ExifTiff.h"

#include <algorithm>
#include <array>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::size_t kMostEntries = 4'096;
constexpr std::size_t kLongestChain = 16;
constexpr std::size_t kMostPointers = 4;
constexpr std::uint16_t kShort = 3;

// Bytes of one value, by type; 0: unknown type.
constexpr std::array<std::uint8_t, 19> kTypeBytes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};

std::size_t bytesOfType(std::uint64_t type) { return type < kTypeBytes.size() ? kTypeBytes[type] : 0; }

// SHORT, LONG, IFD, LONG8 and IFD8.
bool isUnsigned(std::uint16_t type) {
  return type == kShort || type == 4 || type == 13 || type == 16 || type == 18;
}

// Reads the entry; `data` contains all of it.
TiffEntry entryAt(const TiffLayout &layout, std::string_view data, std::size_t at) {
  TiffEntry entry;
  entry.at = at;
  entry.tag = static_cast<std::uint16_t>(readNumber(data, at, 2, layout.order).value_or(0));
  entry.type = static_cast<std::uint16_t>(readNumber(data, at + 2, 2, layout.order).value_or(0));
  entry.count = readNumber(data, at + 4, layout.pointerBytes(), layout.order).value_or(0);
  const std::size_t unit = bytesOfType(entry.type);
  if (unit == 0 || entry.count > data.size() / unit)
    return entry;
  const std::size_t inlineAt = at + 4 + layout.pointerBytes();
  const std::size_t bytes = unit * entry.count;
  entry.isInline = bytes <= layout.pointerBytes();
  const std::uint64_t valueAt =
      entry.isInline ? inlineAt : readNumber(data, inlineAt, layout.pointerBytes(), layout.order).value_or(0);
  if (slice(data, valueAt, bytes)) {
    entry.valueAt = valueAt;
    entry.valueBytes = bytes;
  }
  return entry;
}

} // namespace

const TiffEntry *TiffDirectory::find(std::uint16_t tag) const {
  const auto found = std::ranges::find(entries, tag, &TiffEntry::tag);
  return found == entries.end() ? nullptr : &*found;
}

std::optional<TiffLayout> TiffLayout::of(std::string_view data) {
  if (data.size() < 8)
    return std::nullopt;
  if (data.starts_with("II*\0"sv))
    return TiffLayout{ByteOrder::little, false};
  if (data.starts_with("MM\0*"sv))
    return TiffLayout{ByteOrder::big, false};
  if (data.starts_with("II+\0\x08\0\0\0"sv))
    return TiffLayout{ByteOrder::little, true};
  if (data.starts_with("MM\0+\0\x08\0\0"sv))
    return TiffLayout{ByteOrder::big, true};
  return std::nullopt;
}

std::optional<TiffDirectory> TiffLayout::directory(std::string_view data, std::uint64_t at) const {
  const auto count = readNumber(data, at, countBytes(), order);
  if (!count || at < headerBytes() || *count > kMostEntries)
    return std::nullopt;
  TiffDirectory directory;
  directory.at = static_cast<std::size_t>(at);
  std::size_t entry = directory.at + countBytes();
  const std::size_t there = std::min<std::size_t>(*count, (data.size() - entry) / entryBytes());
  directory.entries.reserve(there);
  for (std::size_t i = 0; i < there; ++i, entry += entryBytes())
    directory.entries.push_back(entryAt(*this, data, entry));
  if (there == *count)
    directory.next = readNumber(data, entry, pointerBytes(), order).value_or(0);
  return directory;
}

std::optional<TiffDirectory> TiffLayout::firstDirectory(std::string_view data) const {
  const auto at = readNumber(data, pointerAt(), pointerBytes(), order);
  return at ? directory(data, *at) : std::nullopt;
}

std::vector<TiffDirectory> TiffLayout::chain(std::string_view data) const {
  std::vector<TiffDirectory> found;
  for (auto next = firstDirectory(data); next && found.size() < kLongestChain;
       next = directory(data, found.back().next)) {
    if (std::ranges::find(found, next->at, &TiffDirectory::at) != found.end())
      break;
    found.push_back(std::move(*next));
  }
  return found;
}

std::vector<TiffDirectory> TiffLayout::pointedTo(std::string_view data, const TiffEntry &entry) const {
  std::vector<TiffDirectory> found;
  const std::size_t unit = bytesOfType(entry.type);
  if (!isUnsigned(entry.type) || entry.valueBytes == 0)
    return found;
  for (std::size_t i = 0; i < std::min<std::size_t>(entry.count, kMostPointers); ++i)
    if (const auto at = readNumber(data, entry.valueAt + i * unit, unit, order))
      if (auto target = directory(data, *at))
        found.push_back(std::move(*target));
  return found;
}

std::optional<std::uint64_t> TiffLayout::number(std::string_view data, const TiffEntry &entry) const {
  if (!isUnsigned(entry.type) || entry.valueBytes == 0)
    return std::nullopt;
  return readNumber(data, entry.valueAt, bytesOfType(entry.type), order);
}

std::vector<std::uint64_t> TiffLayout::numbers(std::string_view data, const TiffEntry &entry) const {
  std::vector<std::uint64_t> values;
  const std::size_t unit = bytesOfType(entry.type);
  if (!number(data, entry))
    return values;
  for (std::size_t i = 0; i < std::min<std::size_t>(entry.count, kMostEntries); ++i)
    values.push_back(readNumber(data, entry.valueAt + i * unit, unit, order).value_or(0));
  return values;
}

bool TiffLayout::setNumber(std::string &data, const TiffEntry &entry, std::uint64_t value) const {
  const std::size_t width = bytesOfType(entry.type);
  if (!number(data, entry) || (width < 8 && value >> 8 * width != 0))
    return false;
  writeNumber(data, entry.valueAt, value, width, order);
  return true;
}

void TiffLayout::removeEntries(std::string &data, const TiffDirectory &directory, std::uint16_t tag) const {
  std::string kept;
  for (const TiffEntry &entry : directory.entries)
    if (entry.tag != tag)
      kept += data.substr(entry.at, entryBytes());
  const std::size_t removed = directory.entries.size() - kept.size() / entryBytes();
  const std::size_t first = directory.at + countBytes();
  const std::size_t behind = first + directory.entries.size() * entryBytes();
  kept += data.substr(behind, pointerBytes());
  writeNumber(data, directory.at, directory.entries.size() - removed, countBytes(), order);
  data.replace(first, kept.size(), kept);
  zero(data, first + kept.size(), removed * entryBytes());
}

bool TiffLayout::appendShort(std::string &data, std::uint16_t tag, std::uint16_t value) const {
  const auto first = firstDirectory(data);
  if (!first || first->entries.size() == kMostEntries)
    return false;
  std::string entry = numberText(tag, 2, order) + numberText(kShort, 2, order) +
                      numberText(1, pointerBytes(), order) + numberText(value, 2, order);
  entry.resize(entryBytes());
  std::string directory = numberText(first->entries.size() + 1, countBytes(), order);
  const auto behind = std::ranges::find_if(first->entries, [&](const auto &e) { return e.tag > tag; });
  for (auto i = first->entries.begin(); i != first->entries.end(); ++i)
    directory += (i == behind ? entry : "") + data.substr(i->at, entryBytes());
  directory += (behind == first->entries.end() ? entry : "") + numberText(first->next, pointerBytes(), order);

  const std::uint64_t at = (data.size() + 7) / 8 * 8;
  if (!isBig && at + directory.size() > 0xFFFF'FFFF)
    return false;
  data.resize(at);
  data += directory;
  writeNumber(data, pointerAt(), at, pointerBytes(), order);
  return true;
}

} // namespace fennick::picture
