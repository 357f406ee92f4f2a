#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The boxes of a HEIC, HEIF or AVIF file that describe its pictures. Positions count from the start of the
// file. Pure values; any thread.
namespace fennick::picture {

struct HeifBox {
  std::string_view type; // borrowed from the file
  std::size_t at = 0;
  std::size_t payloadAt = 0;
  std::size_t end = 0;
  std::size_t sizeWidth = 4; // bytes of the size field; 0: it extends to the end of its parent
};

// Returns the boxes between two positions, at most 4096, up to the first incomplete one.
[[nodiscard]] std::vector<HeifBox> heifBoxes(std::string_view file, std::size_t from, std::size_t to);

// A number in the file that locates data.
struct HeifOffset {
  std::size_t at = 0;
  std::size_t width = 0; // 0: not stored, value zero
  std::uint64_t value = 0;
};

struct HeifExtent {
  HeifOffset offset;        // counts from the item's base
  std::uint64_t length = 0; // 0: all of it
};

struct HeifItem {
  std::uint32_t id = 0;
  std::string type;          // "hvc1", "grid", "Exif", "mime", …
  std::string contentType;   // of a "mime" item
  unsigned construction = 0; // 0: data in the file, 1: in the item data box, 2: in other items
  bool isElsewhere = false;  // in another file
  HeifOffset base;
  std::vector<HeifExtent> extents;
};

struct HeifAssociation {
  bool isEssential = false;
  std::uint16_t property = 0; // index into the properties, from 1; 0: none
};

struct HeifAssociations {
  std::uint32_t item = 0;
  std::vector<HeifAssociation> list;
};

struct HeifReference {
  std::string type; // "thmb", "auxl", "cdsc", …
  std::uint32_t from = 0;
  std::vector<std::uint32_t> to;
};

struct HeifStretch {
  std::size_t at = 0;
  std::size_t length = 0;
};

struct HeifFile {
  // Returns nullopt if boxes that a primary picture needs are missing or damaged.
  [[nodiscard]] static std::optional<HeifFile> parse(std::string_view file);

  [[nodiscard]] const HeifItem *item(std::uint32_t id) const;
  [[nodiscard]] const HeifAssociations *associations(std::uint32_t id) const;
  [[nodiscard]] const HeifBox *property(const HeifAssociation &association) const;
  // Returns the item's property of this kind, or null if it has none.
  [[nodiscard]] const HeifBox *propertyOf(std::uint32_t id, std::string_view type) const;
  // Returns the item of a kind that describes the primary picture, or else the first of that kind.
  [[nodiscard]] const HeifItem *describing(std::string_view type, std::string_view contentType) const;
  // Returns the ranges of an item's data; empty if any of it is not in this file.
  [[nodiscard]] std::vector<HeifStretch> stretchesOf(const HeifItem &item, std::string_view file) const;

  std::uint32_t primary = 0;
  std::vector<HeifBox> holders; // meta, iprp: boxes that grow with what is inserted
  HeifBox propertyList;         // ipco
  HeifBox associationBox;       // ipma
  std::size_t associationBoxes = 0;
  std::optional<HeifBox> itemData; // idat
  bool hasMovie = false;           // a sequence, whose positions are kept elsewhere too
  std::vector<HeifBox> properties;
  std::vector<HeifAssociations> perItem;
  std::vector<HeifItem> items;
  std::vector<HeifReference> references;
};

} // namespace fennick::picture
