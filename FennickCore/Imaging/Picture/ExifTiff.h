#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The directory structure of TIFF files and EXIF blocks, classic and BigTIFF. Pure values; any thread.
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

// One directory. If the data ends inside it, it contains the complete entries; a directory with more than
// 4096 entries is rejected.
struct TiffDirectory {
  std::size_t at = 0;
  std::vector<TiffEntry> entries;
  std::uint64_t next = 0; // position of the next directory; 0: none

  [[nodiscard]] const TiffEntry *find(std::uint16_t tag) const;
};

// The layout of a TIFF structure; positions count from its first byte.
struct TiffLayout {
  ByteOrder order = ByteOrder::little;
  bool isBig = false;

  // Determines the layout from the first bytes: "II*\0", "MM\0*" or those of BigTIFF. Returns nullopt for
  // anything else.
  [[nodiscard]] static std::optional<TiffLayout> of(std::string_view data);

  [[nodiscard]] std::size_t headerBytes() const { return isBig ? 16 : 8; }
  [[nodiscard]] std::size_t pointerAt() const { return isBig ? 8 : 4; }
  [[nodiscard]] std::size_t pointerBytes() const { return isBig ? 8 : 4; }
  [[nodiscard]] std::size_t countBytes() const { return isBig ? 8 : 2; }
  [[nodiscard]] std::size_t entryBytes() const { return isBig ? 20 : 12; }

  [[nodiscard]] std::optional<TiffDirectory> directory(std::string_view data, std::uint64_t at) const;
  [[nodiscard]] std::optional<TiffDirectory> firstDirectory(std::string_view data) const;
  // Returns the chain of directories from the first on, up to a cycle and at most 16.
  [[nodiscard]] std::vector<TiffDirectory> chain(std::string_view data) const;
  // Returns the directories that `entry` points to, at most 4.
  [[nodiscard]] std::vector<TiffDirectory> pointedTo(std::string_view data, const TiffEntry &entry) const;
  // Returns the first value of an entry of an unsigned integer type.
  [[nodiscard]] std::optional<std::uint64_t> number(std::string_view data, const TiffEntry &entry) const;
  // Returns up to 4096 values of such an entry.
  [[nodiscard]] std::vector<std::uint64_t> numbers(std::string_view data, const TiffEntry &entry) const;
  // Overwrites the first value of such an entry. Returns false and changes nothing for any other.
  [[nodiscard]] bool setNumber(std::string &data, const TiffEntry &entry, std::uint64_t value) const;

  // Removes every entry of `tag` from the directory in `data`; later entries move up. Values outside the
  // directory stay.
  void removeEntries(std::string &data, const TiffDirectory &directory, std::uint16_t tag) const;
  // Appends a copy of the first directory with an additional SHORT, and lets the header point to it. Nothing
  // else moves. Returns false and changes nothing if positions no longer fit.
  [[nodiscard]] bool appendShort(std::string &data, std::uint16_t tag, std::uint16_t value) const;
};

} // namespace fennick::picture
