#include "FennickCore/Imaging/Picture/MetadataIptc.h"

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr char kDataSetStart = 0x1C;
constexpr unsigned kApplicationRecord = 2;
constexpr std::array kPlaces{26U, 27U, 90U, 92U, 95U, 100U, 101U};

struct DataSet {
  unsigned record = 0;
  unsigned number = 0;
  std::string_view bytes; // including the header

  [[nodiscard]] bool namesPlace() const {
    return record == kApplicationRecord && std::ranges::find(kPlaces, number) != kPlaces.end();
  }
};

// Returns the data set at the beginning of `iptc`. A length with its highest bit set is the length of the
// following length field.
std::optional<DataSet> firstDataSet(std::string_view iptc) {
  const auto numbers = readNumber(iptc, 1, 2);
  auto length = readNumber(iptc, 3, 2);
  if (!numbers || !length || iptc[0] != kDataSetStart)
    return std::nullopt;
  std::size_t header = 5;
  if ((*length & 0x8000) != 0) {
    const std::size_t width = *length & 0x7FFF;
    length = width <= 4 ? readNumber(iptc, header, width) : std::nullopt;
    header += width;
  }
  const auto bytes = length ? slice(iptc, 0, header + *length) : std::nullopt;
  if (!bytes)
    return std::nullopt;
  return DataSet{static_cast<unsigned>(*numbers >> 8), static_cast<unsigned>(*numbers & 0xFF), *bytes};
}

std::vector<DataSet> dataSets(std::string_view iptc) {
  std::vector<DataSet> sets;
  while (const auto set = firstDataSet(iptc)) {
    sets.push_back(*set);
    iptc.remove_prefix(set->bytes.size());
  }
  return sets;
}

} // namespace

std::vector<PhotoshopResource> photoshopResources(std::string_view block) {
  std::vector<PhotoshopResource> resources;
  while (block.starts_with("8BIM"sv)) {
    const auto kind = readNumber(block, 4, 2);
    const auto nameBytes = readNumber(block, 6, 1);
    if (!kind || !nameBytes)
      break;
    const std::uint64_t lengthAt = 6 + (1 + *nameBytes + 1) / 2 * 2;
    const auto length = readNumber(block, lengthAt, 4);
    const auto data = length ? slice(block, lengthAt + 4, *length) : std::nullopt;
    if (!data)
      break;
    resources.push_back({static_cast<std::uint16_t>(*kind), *data});
    block.remove_prefix(std::min<std::size_t>(block.size(), lengthAt + 4 + (*length + 1) / 2 * 2));
  }
  return resources;
}

std::string iptcOfPhotoshop(std::string_view block) {
  std::string iptc;
  for (const PhotoshopResource &resource : photoshopResources(block))
    if (resource.kind == kIptcResource)
      iptc += resource.data;
  return iptc;
}

std::string photoshopOfIptc(std::string_view iptc) {
  return "8BIM" + numberText(kIptcResource, 2) + numberText(0, 2) + numberText(iptc.size(), 4) +
         std::string(iptc) + std::string(iptc.size() % 2, '\0');
}

bool iptcHasLocation(std::string_view iptc) {
  return std::ranges::any_of(dataSets(iptc), &DataSet::namesPlace);
}

std::string iptcWithoutLocation(std::string_view iptc) {
  std::string kept;
  for (const DataSet &set : dataSets(iptc))
    if (!set.namesPlace())
      kept += set.bytes;
  return kept;
}

} // namespace fennick::picture
