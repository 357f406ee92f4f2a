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
  std::size_t sizeWidth = 4; // bytes that the size is written in; 0: it reaches to the end of what holds it
};

// The boxes between two positions, of which 4096 are read; ends at the first that is not whole.
[[nodiscard]] std::vector<HeifBox> heifBoxes(std::string_view file, std::size_t from, std::size_t to);

// A number that says where data is, as it stands in the file.
struct HeifOffset {
  std::size_t at = 0;
  std::size_t width = 0; // 0: not written, and zero
  std::uint64_t value = 0;
};

struct HeifExtent {
  HeifOffset offset;        // counts from the item's base
  std::uint64_t length = 0; // 0: all there is
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
  std::uint16_t property = 0; // from 1, into the properties; 0: none
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
  // Nothing for a file without the boxes that a primary picture needs, and for one that is damaged in them.
  [[nodiscard]] static std::optional<HeifFile> parse(std::string_view file);

  [[nodiscard]] const HeifItem *item(std::uint32_t id) const;
  [[nodiscard]] const HeifAssociations *associations(std::uint32_t id) const;
  [[nodiscard]] const HeifBox *property(const HeifAssociation &association) const;
  // Returns the item's property of this kind, or null if it has none.
  [[nodiscard]] const HeifBox *propertyOf(std::uint32_t id, std::string_view type) const;
  // The item of a kind that describes the primary picture; else the first of that kind.
  [[nodiscard]] const HeifItem *describing(std::string_view type, std::string_view contentType) const;
  // The pieces that an item's data stands in; none when any of it is not in this file.
  [[nodiscard]] std::vector<HeifStretch> stretchesOf(const HeifItem &item, std::string_view file) const;

  std::uint32_t primary = 0;
  std::vector<HeifBox> holders; // meta, iprp: boxes that grow with what is put into them
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
