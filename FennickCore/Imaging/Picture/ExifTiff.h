#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The directory structure that TIFF files and EXIF blocks share, classic and BigTIFF. Pure values; any
// thread.
namespace fennick::picture {

struct TiffEntry {
  std::uint16_t tag = 0;
  std::uint16_t type = 0;
  std::uint64_t count = 0;
  std::size_t at = 0;         // of the entry itself
  std::size_t valueAt = 0;    // of its value, inside the entry or elsewhere; 0 when that is outside the data
  std::size_t valueBytes = 0; // 0 likewise
  bool isInline = true;
};

// One directory. One that is cut off by the end of the data holds the entries that are there; more than 4096
// are none.
struct TiffDirectory {
  std::size_t at = 0;
  std::vector<TiffEntry> entries;
  std::uint64_t next = 0; // position of the next directory; 0: none

  [[nodiscard]] const TiffEntry *find(std::uint16_t tag) const;
};

// How a TIFF structure is laid out; positions count from its first byte.
struct TiffLayout {
  ByteOrder order = ByteOrder::little;
  bool isBig = false;

  // From the first bytes: "II*\0", "MM\0*" or BigTIFF's; nothing for anything else.
  [[nodiscard]] static std::optional<TiffLayout> of(std::string_view data);

  [[nodiscard]] std::size_t headerBytes() const { return isBig ? 16 : 8; }
  [[nodiscard]] std::size_t pointerAt() const { return isBig ? 8 : 4; }
  [[nodiscard]] std::size_t pointerBytes() const { return isBig ? 8 : 4; }
  [[nodiscard]] std::size_t countBytes() const { return isBig ? 8 : 2; }
  [[nodiscard]] std::size_t entryBytes() const { return isBig ? 20 : 12; }

  [[nodiscard]] std::optional<TiffDirectory> directory(std::string_view data, std::uint64_t at) const;
  [[nodiscard]] std::optional<TiffDirectory> firstDirectory(std::string_view data) const;
  // The chain of directories from the first on; ends at a circle and after 16.
  [[nodiscard]] std::vector<TiffDirectory> chain(std::string_view data) const;
  // The directories that `entry` points to: one offset or several, of which 4 are read.
  [[nodiscard]] std::vector<TiffDirectory> pointedTo(std::string_view data, const TiffEntry &entry) const;
  // The first value of an entry of an unsigned whole type.
  [[nodiscard]] std::optional<std::uint64_t> number(std::string_view data, const TiffEntry &entry) const;
  // Up to 4096 values of such an entry.
  [[nodiscard]] std::vector<std::uint64_t> numbers(std::string_view data, const TiffEntry &entry) const;
  // Overwrites the first value of such an entry; false, with nothing written, for any other.
  [[nodiscard]] bool setNumber(std::string &data, const TiffEntry &entry, std::uint64_t value) const;

  // Takes every entry of `tag` out of the directory as it stands in `data`; those behind move up. Values
  // that are elsewhere stay.
  void removeEntries(std::string &data, const TiffDirectory &directory, std::uint16_t tag) const;
  // Appends a copy of the first directory with a SHORT added in its place, and points the header there.
  // Nothing else moves. False, with nothing written, where positions no longer fit.
  [[nodiscard]] bool appendShort(std::string &data, std::uint16_t tag, std::uint16_t value) const;
};

} // namespace fennick::picture
