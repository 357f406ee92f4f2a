#include "FennickCore/Imaging/Picture/Heif.h"

#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/HeifFile.h"
#include "FennickCore/Imaging/Picture/HeifOrientation.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <set>
#include <vector>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::size_t kMostBlockBytes = 16UZ * 1'024 * 1'024;
constexpr std::string_view kXMPContentType = "application/rdf+xml";

// A step and the position of the byte that states it.
struct StatedStep {
  TurnStep step;
  std::size_t at = 0;
};

std::optional<StatedStep> statedStep(std::string_view file, const HeifBox &property) {
  if (property.end <= property.payloadAt || (property.type != "irot"sv && property.type != "imir"sv))
    return std::nullopt;
  const auto value = static_cast<unsigned char>(file[property.payloadAt]);
  if (property.type == "irot"sv)
    return StatedStep{{TurnStep::Kind::rotate, value & 3U}, property.payloadAt};
  return StatedStep{{TurnStep::Kind::mirror, value & 1U}, property.payloadAt};
}

std::vector<StatedStep> stepsOf(std::string_view file, const HeifFile &heif, std::uint32_t item) {
  std::vector<StatedStep> steps;
  const HeifAssociations *own = heif.associations(item);
  for (const HeifAssociation &association : own ? own->list : std::vector<HeifAssociation>())
    if (const HeifBox *property = heif.property(association))
      if (const auto step = statedStep(file, *property))
        steps.push_back(*step);
  return steps;
}

Turning turningOf(const std::vector<StatedStep> &steps) {
  Turning turning;
  for (const StatedStep &stated : steps)
    turning = turning.then(stated.step);
  return turning;
}

// Items and the orientation that each is to have.
using Targets = std::map<std::uint32_t, Turning>;

// Returns the primary picture and those that show the same scene, all rotated by the same amount.
Targets targetsFor(std::string_view file, const HeifFile &heif, std::int64_t orientation) {
  std::set<std::uint32_t> items{heif.primary};
  for (const HeifReference &reference : heif.references)
    if ((reference.type == "thmb"sv || reference.type == "auxl"sv) &&
        std::ranges::find(reference.to, heif.primary) != reference.to.end())
      items.insert(reference.from);
  const Turning now = turningOf(stepsOf(file, heif, heif.primary));
  const Turning change = now.reversed().then(Turning::ofOrientation(orientation));
  Targets targets;
  for (const std::uint32_t item : items)
    targets.emplace(item, turningOf(stepsOf(file, heif, item)).then(change));
  return targets;
}

// Returns new values for the bytes that state an item's steps, or nullopt if those cannot express the target.
std::optional<std::vector<StatedStep>> restated(std::vector<StatedStep> steps, const Turning &target) {
  const auto count = [&steps](TurnStep::Kind kind) {
    return std::ranges::count(steps, kind, [](const StatedStep &stated) { return stated.step.kind; });
  };
  if (count(TurnStep::Kind::rotate) > 1 || count(TurnStep::Kind::mirror) > 1)
    return std::nullopt;
  for (unsigned values = 0; values < 8; ++values) {
    for (StatedStep &stated : steps)
      stated.step.value = stated.step.kind == TurnStep::Kind::rotate ? values & 3 : values >> 2;
    if (turningOf(steps) == target)
      return steps;
  }
  return std::nullopt;
}

// Returns whether items outside `targets` use the same properties.
bool sharesBeyond(std::string_view file, const HeifFile &heif, const Targets &targets) {
  std::set<std::size_t> ours;
  for (const auto &[item, target] : targets)
    for (const StatedStep &stated : stepsOf(file, heif, item))
      ours.insert(stated.at);
  return std::ranges::any_of(heif.perItem, [&](const HeifAssociations &other) {
    return !targets.contains(other.item) &&
           std::ranges::any_of(stepsOf(file, heif, other.item),
                               [&](const StatedStep &stated) { return ours.contains(stated.at); });
  });
}

// Returns the file with its existing properties changed, or nullopt if that is not sufficient.
std::optional<std::string> turnedInPlace(std::string_view file, const HeifFile &heif,
                                         const Targets &targets) {
  if (sharesBeyond(file, heif, targets))
    return std::nullopt;
  std::map<std::size_t, unsigned> values;
  for (const auto &[item, target] : targets) {
    const auto steps = restated(stepsOf(file, heif, item), target);
    if (!steps)
      return std::nullopt;
    for (const StatedStep &stated : *steps)
      if (values.emplace(stated.at, stated.step.value).first->second != stated.step.value)
        return std::nullopt;
  }
  std::string turned(file);
  for (const auto &[at, value] : values)
    turned[at] = static_cast<char>(value);
  return turned;
}

// Properties that are appended to those of the file, each once.
class NewProperties {
public:
  explicit NewProperties(std::size_t existing) : existing_(existing) {}

  HeifAssociation add(std::string_view type, unsigned value) {
    const std::string box = numberText(9, 4) + std::string(type) + static_cast<char>(value);
    const auto known = std::ranges::find(boxes_, box);
    const auto place = static_cast<std::size_t>(known - boxes_.begin());
    if (known == boxes_.end())
      boxes_.push_back(box);
    return {true, static_cast<std::uint16_t>(existing_ + place + 1)};
  }
  [[nodiscard]] std::size_t count() const { return existing_ + boxes_.size(); }
  [[nodiscard]] std::string bytes() const {
    std::string all;
    for (const std::string &box : boxes_)
      all += box;
    return all;
  }

private:
  std::size_t existing_;
  std::vector<std::string> boxes_;
};

// Replaces the steps of `item` by new ones after its other properties.
void reassociate(std::string_view file, const HeifFile &heif, std::vector<HeifAssociations> &all,
                 std::uint32_t item, const Turning &target, NewProperties &added) {
  auto own = std::ranges::find(all, item, &HeifAssociations::item);
  if (own == all.end())
    own = all.insert(std::ranges::upper_bound(all, item, {}, &HeifAssociations::item), {item, {}});
  std::erase_if(own->list, [&](const HeifAssociation &association) {
    const HeifBox *property = heif.property(association);
    return property && statedStep(file, *property);
  });
  const TurnRecipe recipe = recipeFor(target.orientation());
  own->list.push_back(added.add("irot", recipe.quarters)); // also for none, so that the file never shrinks
  if (recipe.isMirrored)
    own->list.push_back(added.add("imir", 1));
}

// Builds a new association box. Returns nullopt if it cannot hold so many associations.
std::optional<std::string> associationBox(std::string_view file, const HeifFile &heif,
                                          const std::vector<HeifAssociations> &all, std::size_t properties) {
  const HeifBox &old = heif.associationBox;
  const unsigned version = static_cast<unsigned char>(file[old.payloadAt]);
  const bool isWide = (static_cast<unsigned char>(file[old.payloadAt + 3]) & 1) != 0 || properties > 0x7F;
  if (properties > 0x7FFF)
    return std::nullopt;
  std::string payload = numberText(version, 1) + numberText(isWide ? 1 : 0, 3) + numberText(all.size(), 4);
  for (const HeifAssociations &item : all) {
    if (item.list.size() > 0xFF)
      return std::nullopt;
    payload += numberText(item.item, version == 0 ? 2 : 4) + numberText(item.list.size(), 1);
    for (const auto &[isEssential, property] : item.list)
      payload += isWide ? numberText(property | (isEssential ? 0x8000U : 0U), 2)
                        : numberText(property | (isEssential ? 0x80U : 0U), 1);
  }
  return numberText(payload.size() + 8, 4) + "ipma" + payload;
}

// Increases a number in the file. Returns false if its field is too narrow.
bool grow(std::string &file, const HeifOffset &number, std::uint64_t by) {
  const std::uint64_t value = number.value + by;
  if (by == 0)
    return true;
  if (number.width == 0 || value < by || (number.width < 8 && value >> 8 * number.width != 0))
    return false;
  writeNumber(file, number.at, value, number.width);
  return true;
}

bool growBox(std::string &file, const HeifBox &box, std::uint64_t by) {
  if (box.sizeWidth == 0)
    return true;
  return grow(file, {box.sizeWidth == 8 ? box.at + 8 : box.at, box.sizeWidth, box.end - box.at}, by);
}

// The bytes to insert: after the properties, and in place of the associations.
struct Insertion {
  HeifBox propertyList;
  HeifBox associationBox;
  std::string properties;
  std::string associations;

  // Returns by how much the byte at `at` moves. The associations may shrink, hence the sign.
  [[nodiscard]] std::int64_t shiftOf(std::uint64_t at) const {
    std::int64_t shift = at >= propertyList.end ? std::ssize(properties) : 0;
    if (at >= associationBox.end)
      shift += std::ssize(associations) - static_cast<std::int64_t>(associationBox.end - associationBox.at);
    return shift;
  }
};

// Adjusts positions that count from the start of the file, in the item's base if it has one.
bool moveItem(std::string &file, const HeifItem &item, const Insertion &insertion) {
  if (item.construction != 0 || item.isElsewhere || item.extents.empty())
    return true;
  const auto shiftOf = [&](const HeifExtent &extent) {
    return insertion.shiftOf(item.base.value + extent.offset.value);
  };
  const std::int64_t first = shiftOf(item.extents[0]);
  if (item.base.width != 0 && item.base.value != 0)
    return first >= 0 &&
           std::ranges::all_of(item.extents, [&](const auto &extent) { return shiftOf(extent) == first; }) &&
           grow(file, item.base, static_cast<std::uint64_t>(first));
  return std::ranges::all_of(item.extents, [&](const HeifExtent &extent) {
    const std::int64_t shift = shiftOf(extent);
    return shift >= 0 && grow(file, extent.offset, static_cast<std::uint64_t>(shift));
  });
}

std::optional<std::string> inserted(std::string_view file, const HeifFile &heif, const Insertion &insertion) {
  std::string out(file);
  const HeifBox &list = insertion.propertyList;
  const HeifBox &old = insertion.associationBox;
  const std::int64_t total = insertion.shiftOf(file.size());
  if (total < 0)
    return std::nullopt;
  for (const HeifBox &holder : heif.holders)
    if (!growBox(out, holder, static_cast<std::uint64_t>(total)))
      return std::nullopt;
  if (!growBox(out, list, insertion.properties.size()))
    return std::nullopt;
  for (const HeifItem &item : heif.items)
    if (!moveItem(out, item, insertion))
      return std::nullopt;
  const auto putProperties = [&] { out.insert(list.end, insertion.properties); };
  if (old.at < list.at)
    putProperties();
  out.replace(old.at, old.end - old.at, insertion.associations);
  if (old.at >= list.at)
    putProperties();
  return out;
}

// Returns the file with separate properties for the rotated pictures.
std::optional<std::string> turnedAnew(std::string_view file, const HeifFile &heif, const Targets &targets) {
  if (heif.associationBoxes != 1 || heif.hasMovie)
    return std::nullopt;
  auto associations = heif.perItem;
  NewProperties added(heif.properties.size());
  for (const auto &[item, target] : targets)
    reassociate(file, heif, associations, item, target, added);
  const auto box = associationBox(file, heif, associations, added.count());
  if (!box)
    return std::nullopt;
  return inserted(file, heif, {heif.propertyList, heif.associationBox, added.bytes(), *box});
}

// An EXIF item begins with the offset of its TIFF structure.
std::optional<std::uint64_t> exifStart(std::string_view item) {
  const auto before = readNumber(item, 0, 4);
  return before && slice(item, 4, *before) ? std::optional(4 + *before) : std::nullopt;
}

// Returns the content of the item's colour property of one of `kinds`; empty if there is none.
std::string_view colourProperty(std::string_view file, const HeifFile &heif, std::uint32_t item,
                                std::initializer_list<std::string_view> kinds) {
  const HeifAssociations *own = heif.associations(item);
  for (const HeifAssociation &association : own ? own->list : std::vector<HeifAssociation>()) {
    const HeifBox *box = heif.property(association);
    const auto kind =
        (box != nullptr) && box->type == "colr"sv ? slice(file, box->payloadAt, 4) : std::nullopt;
    if (kind && std::ranges::find(kinds, *kind) != kinds.end() && box->end >= box->payloadAt + 4)
      return file.substr(box->payloadAt + 4, box->end - box->payloadAt - 4);
  }
  return {};
}

// Returns the first tile of an item that consists of tiles, or the item itself.
std::uint32_t firstTile(const HeifFile &heif, std::uint32_t item) {
  for (const HeifReference &reference : heif.references)
    if (reference.from == item && reference.type == "dimg"sv && !reference.to.empty())
      return reference.to.front();
  return item;
}

// Changes the orientation in the file's EXIF and XMP in place.
void keepInStep(std::string &file, std::int64_t orientation) {
  const auto heif = HeifFile::parse(file);
  if (!heif)
    return;
  const auto placeOf = [&](const HeifItem *item) -> std::optional<HeifStretch> {
    const auto stretches = item ? heif->stretchesOf(*item, file) : std::vector<HeifStretch>();
    return stretches.size() == 1 ? std::optional(stretches[0]) : std::nullopt;
  };
  if (const auto place = placeOf(heif->describing("Exif", ""))) {
    const std::string item = file.substr(place->at, place->length);
    auto block = ExifBlock::parse(item.substr(exifStart(item).value_or(item.size())));
    const std::size_t bytes = block ? block->tiff().size() : 0;
    if (block && block->orientation() && block->setOrientation(static_cast<std::uint16_t>(orientation)))
      file.replace(place->at + place->length - bytes, bytes, block->tiff());
  }
  if (const auto place = placeOf(heif->describing("mime", kXMPContentType)))
    setXmpOrientation(file, place->at, place->length, orientation);
}

} // namespace

std::optional<std::int64_t> heifOrientation(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  const auto heif = HeifFile::parse(file);
  if (!heif)
    return std::nullopt;
  return turningOf(stepsOf(file, *heif, heif->primary)).orientation();
}

bool heifHasMovie(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  const auto boxes = heifBoxes(file, 0, file.size());
  return std::ranges::find(boxes, "moov"sv, &HeifBox::type) != boxes.end();
}

std::optional<ColourCoding> heifColours(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  const auto heif = HeifFile::parse(file);
  if (!heif)
    return std::nullopt;
  std::string_view numbers = colourProperty(file, *heif, heif->primary, {"nclx"});
  if (numbers.empty())
    numbers = colourProperty(file, *heif, firstTile(*heif, heif->primary), {"nclx"});
  const auto primaries = readNumber(numbers, 0, 2), transfer = readNumber(numbers, 2, 2);
  return primaries && transfer ? std::optional(ColourCoding{*primaries, *transfer}) : std::nullopt;
}

std::string heifItemData(std::string_view file, const HeifFile &heif, const HeifItem *item) {
  std::string data;
  for (const auto &[at, length] : item ? heif.stretchesOf(*item, file) : std::vector<HeifStretch>()) {
    if (length > kMostBlockBytes - data.size())
      return {};
    data += file.substr(at, length);
  }
  return data;
}

HeifBlocks heifBlocks(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  const auto heif = HeifFile::parse(file);
  if (!heif)
    return {};
  const std::string exif = heifItemData(file, *heif, heif->describing("Exif", ""));
  return {.exif = exif.substr(exifStart(exif).value_or(exif.size())),
          .xmp = heifItemData(file, *heif, heif->describing("mime", kXMPContentType)),
          .icc = std::string(colourProperty(file, *heif, heif->primary, {"prof", "rICC"}))};
}

std::expected<std::string, PictureFault> heifWithOrientation(Bytes bytes, std::int64_t orientation) {
  const std::string_view file = textOf(bytes);
  const auto heif = HeifFile::parse(file);
  if (!heif)
    return std::unexpected(PictureFault::undecodable);
  const Targets targets = targetsFor(file, *heif, orientation);
  auto turned = turnedInPlace(file, *heif, targets);
  if (!turned)
    turned = turnedAnew(file, *heif, targets);
  if (!turned)
    return std::unexpected(PictureFault::unsupported);
  keepInStep(*turned, orientation);
  return std::move(*turned);
}

} // namespace fennick::picture
