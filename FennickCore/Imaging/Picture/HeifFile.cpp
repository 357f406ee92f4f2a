#include "FennickCore/Imaging/Picture/HeifFile.h"

#include <algorithm>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::size_t kMostBoxes = 4'096;
constexpr std::size_t kMostItems = 16'384;
constexpr std::size_t kMostExtents = 16'384; // for all items together

// Reads consecutive numbers; after one that lies outside the data all further ones are zero.
class Cursor {
public:
  Cursor(std::string_view file, const HeifBox &box) : data_(file.substr(0, box.end)), at_(box.payloadAt) {}

  std::uint64_t take(std::size_t width) {
    const auto value = width <= 8 && isWhole_ ? readNumber(data_, at_, width) : std::nullopt;
    isWhole_ = value.has_value();
    at_ += isWhole_ ? width : 0;
    return value.value_or(0);
  }
  template <typename Number>
  Number take() {
    return static_cast<Number>(take(sizeof(Number)));
  }
  std::string takeText(std::size_t length) {
    const auto text = slice(data_, at_, length);
    isWhole_ = isWhole_ && text;
    at_ += isWhole_ ? length : 0;
    return isWhole_ ? std::string(*text) : std::string();
  }
  // Reads up to a zero byte or the end.
  std::string takeLine() {
    const std::string_view rest = data_.substr(std::min(at_, data_.size()));
    const std::string_view line = rest.substr(0, rest.find('\0'));
    at_ = std::min(data_.size(), at_ + line.size() + 1);
    return std::string(line);
  }
  [[nodiscard]] std::size_t at() const { return at_; }
  [[nodiscard]] bool isWhole() const { return isWhole_; }

private:
  std::string_view data_;
  std::size_t at_;
  bool isWhole_ = true;
};

// The version and flags at the beginning of a full box.
struct FullBox {
  unsigned version;
  unsigned flags;
  explicit FullBox(Cursor &cursor)
      : version(static_cast<unsigned>(cursor.take(1))), flags(static_cast<unsigned>(cursor.take(3))) {}
};

const HeifBox *findBox(const std::vector<HeifBox> &boxes, std::string_view type) {
  const auto found = std::ranges::find(boxes, type, &HeifBox::type);
  return found == boxes.end() ? nullptr : &*found;
}

std::optional<HeifBox> boxAt(std::string_view file, std::size_t at, std::size_t to) {
  const std::string_view within = file.substr(0, to);
  auto size = readNumber(within, at, 4);
  const auto type = slice(within, at + 4, 4);
  if (!size || !type)
    return std::nullopt;
  HeifBox box{*type, at, at + 8, 0, 4};
  if (*size == 1) {
    size = readNumber(within, at + 8, 8);
    box.payloadAt = at + 16;
    box.sizeWidth = 8;
  } else if (*size == 0) {
    size = to - at;
    box.sizeWidth = 0;
  }
  if (!size || *size < box.payloadAt - at || *size > to - at)
    return std::nullopt;
  box.end = at + static_cast<std::size_t>(*size);
  return box;
}

// Each of these reads one box of the description and returns false if it is damaged.
bool readPrimary(std::string_view file, const HeifBox &box, HeifFile &found) {
  Cursor cursor(file, box);
  const FullBox full(cursor);
  found.primary = static_cast<std::uint32_t>(cursor.take(full.version == 0 ? 2 : 4));
  return cursor.isWhole();
}

HeifItem &itemOf(HeifFile &found, std::uint32_t id) {
  const auto known = std::ranges::find(found.items, id, &HeifItem::id);
  if (known != found.items.end())
    return *known;
  found.items.emplace_back().id = id;
  return found.items.back();
}

bool readItemInfo(std::string_view file, const HeifBox &box, HeifFile &found) {
  Cursor cursor(file, box);
  const FullBox full(cursor);
  (void)cursor.take(full.version == 0 ? 2 : 4);
  for (const HeifBox &entry : heifBoxes(file, cursor.at(), box.end)) {
    Cursor info(file, entry);
    const FullBox kind(info);
    if (entry.type != "infe"sv || kind.version < 2)
      continue;
    HeifItem &item = itemOf(found, static_cast<std::uint32_t>(info.take(kind.version == 2 ? 2 : 4)));
    (void)info.take(2);
    item.type = info.takeText(4);
    (void)info.takeLine();
    if (item.type == "mime"sv)
      item.contentType = info.takeLine();
    if (!info.isWhole())
      return false;
  }
  return cursor.isWhole();
}

HeifOffset takeOffset(Cursor &cursor, std::size_t width) {
  const std::size_t at = cursor.at();
  return {at, width, cursor.take(width)};
}

bool readLocations(std::string_view file, const HeifBox &box, HeifFile &found) {
  Cursor cursor(file, box);
  const FullBox full(cursor);
  const auto widths = cursor.take<std::uint16_t>();
  const std::size_t offsetWidth = widths >> 12, lengthWidth = widths >> 8 & 15, baseWidth = widths >> 4 & 15;
  const std::size_t indexWidth = full.version == 0 ? 0 : widths & 15;
  const std::uint64_t count = cursor.take(full.version < 2 ? 2 : 4);
  std::size_t extents = 0;
  for (std::uint64_t i = 0; i < count && cursor.isWhole(); ++i) {
    if (i == kMostItems)
      return false;
    HeifItem &item = itemOf(found, static_cast<std::uint32_t>(cursor.take(full.version < 2 ? 2 : 4)));
    item.construction = full.version == 0 ? 0 : static_cast<unsigned>(cursor.take(2) & 15);
    item.isElsewhere = cursor.take(2) != 0;
    item.base = takeOffset(cursor, baseWidth);
    item.extents.clear();
    for (auto left = cursor.take<std::uint16_t>(); left > 0 && cursor.isWhole(); --left) {
      if (++extents > kMostExtents)
        return false;
      (void)cursor.take(indexWidth);
      const HeifOffset offset = takeOffset(cursor, offsetWidth);
      item.extents.push_back({offset, cursor.take(lengthWidth)});
    }
  }
  return cursor.isWhole();
}

bool readReferences(std::string_view file, const HeifBox &box, HeifFile &found) {
  Cursor cursor(file, box);
  const std::size_t width = FullBox(cursor).version == 0 ? 2 : 4;
  for (const HeifBox &entry : heifBoxes(file, cursor.at(), box.end)) {
    Cursor list(file, entry);
    HeifReference reference{std::string(entry.type), static_cast<std::uint32_t>(list.take(width)), {}};
    for (auto left = list.take<std::uint16_t>(); left > 0 && list.isWhole(); --left)
      reference.to.push_back(static_cast<std::uint32_t>(list.take(width)));
    if (!list.isWhole())
      return false;
    found.references.push_back(std::move(reference));
  }
  return cursor.isWhole();
}

bool readAssociations(std::string_view file, const HeifBox &box, HeifFile &found) {
  Cursor cursor(file, box);
  const FullBox full(cursor);
  const bool isWide = (full.flags & 1) != 0;
  for (auto left = cursor.take<std::uint32_t>(); left > 0 && cursor.isWhole(); --left) {
    if (found.perItem.size() == kMostItems)
      return false;
    HeifAssociations item{static_cast<std::uint32_t>(cursor.take(full.version == 0 ? 2 : 4)), {}};
    for (auto count = cursor.take<std::uint8_t>(); count > 0 && cursor.isWhole(); --count) {
      const std::uint64_t value = cursor.take(isWide ? 2 : 1);
      const std::uint64_t mark = isWide ? 0x8000 : 0x80;
      item.list.push_back({(value & mark) != 0, static_cast<std::uint16_t>(value & (mark - 1))});
    }
    found.perItem.push_back(std::move(item));
  }
  return cursor.isWhole();
}

bool readProperties(std::string_view file, const HeifBox &box, HeifFile &found) {
  const auto boxes = heifBoxes(file, box.payloadAt, box.end);
  const HeifBox *list = findBox(boxes, "ipco");
  if (list == nullptr)
    return false;
  found.holders.push_back(box);
  found.propertyList = *list;
  found.properties = heifBoxes(file, list->payloadAt, list->end);
  for (const HeifBox &part : boxes) {
    if (part.type != "ipma"sv)
      continue;
    found.associationBox = part;
    ++found.associationBoxes;
    if (!readAssociations(file, part, found))
      return false;
  }
  return true;
}

// Reads the boxes of the description that exist.
bool readDescription(std::string_view file, const std::vector<HeifBox> &parts, HeifFile &found) {
  struct Reader {
    std::string_view type;
    bool (*read)(std::string_view, const HeifBox &, HeifFile &);
  };
  constexpr Reader kReaders[] = {{"pitm", readPrimary},
                                 {"iinf", readItemInfo},
                                 {"iloc", readLocations},
                                 {"iref", readReferences},
                                 {"iprp", readProperties}};
  return std::ranges::all_of(kReaders, [&](const Reader &reader) {
    const HeifBox *part = findBox(parts, reader.type);
    return !part || reader.read(file, *part, found);
  });
}

} // namespace

std::vector<HeifBox> heifBoxes(std::string_view file, std::size_t from, std::size_t to) {
  std::vector<HeifBox> boxes;
  while (from < to && boxes.size() < kMostBoxes) {
    const auto box = boxAt(file, from, to);
    if (!box)
      break;
    boxes.push_back(*box);
    from = box->end;
  }
  return boxes;
}

std::optional<HeifFile> HeifFile::parse(std::string_view file) {
  const auto boxes = heifBoxes(file, 0, file.size());
  const HeifBox *meta = findBox(boxes, "meta");
  if ((meta == nullptr) || meta->end - meta->payloadAt < 4)
    return std::nullopt;
  HeifFile found;
  found.hasMovie = findBox(boxes, "moov") != nullptr;
  found.holders.push_back(*meta);
  const auto parts = heifBoxes(file, meta->payloadAt + 4, meta->end);
  if (const HeifBox *data = findBox(parts, "idat"))
    found.itemData = *data;
  if ((findBox(parts, "pitm") == nullptr) || !readDescription(file, parts, found) ||
      (found.item(found.primary) == nullptr))
    return std::nullopt;
  return found;
}

const HeifItem *HeifFile::item(std::uint32_t id) const {
  const auto known = std::ranges::find(items, id, &HeifItem::id);
  return known == items.end() ? nullptr : &*known;
}

const HeifAssociations *HeifFile::associations(std::uint32_t id) const {
  const auto known = std::ranges::find(perItem, id, &HeifAssociations::item);
  return known == perItem.end() ? nullptr : &*known;
}

const HeifBox *HeifFile::property(const HeifAssociation &association) const {
  const std::size_t number = association.property;
  return number == 0 || number > properties.size() ? nullptr : &properties[number - 1];
}

const HeifBox *HeifFile::propertyOf(std::uint32_t id, std::string_view type) const {
  const HeifAssociations *own = associations(id);
  if (own == nullptr)
    return nullptr;
  for (const HeifAssociation &association : own->list)
    if (const HeifBox *box = property(association); (box != nullptr) && box->type == type)
      return box;
  return nullptr;
}

const HeifItem *HeifFile::describing(std::string_view type, std::string_view contentType) const {
  const HeifItem *first = nullptr;
  for (const HeifItem &candidate : items) {
    if (candidate.type != type || candidate.contentType != contentType)
      continue;
    const bool isOfPrimary = std::ranges::any_of(references, [&](const HeifReference &reference) {
      return reference.from == candidate.id && reference.type == "cdsc"sv &&
             std::ranges::find(reference.to, primary) != reference.to.end();
    });
    if (isOfPrimary)
      return &candidate;
    first = (first != nullptr) ? first : &candidate;
  }
  return first;
}

std::vector<HeifStretch> HeifFile::stretchesOf(const HeifItem &item, std::string_view file) const {
  if (item.construction > 1 || item.isElsewhere || (item.construction == 1 && !itemData))
    return {};
  const HeifBox whole{{}, 0, 0, file.size(), 0};
  const HeifBox holder = item.construction == 1 ? itemData.value_or(whole) : whole;
  const std::size_t start = holder.payloadAt, end = holder.end;
  std::vector<HeifStretch> stretches;
  for (const HeifExtent &extent : item.extents) {
    if (item.base.value > end - start || extent.offset.value > end - start - item.base.value)
      return {};
    const std::size_t at = start + static_cast<std::size_t>(item.base.value + extent.offset.value);
    const std::size_t length = extent.length == 0 ? end - at : static_cast<std::size_t>(extent.length);
    if (length > end - at)
      return {};
    stretches.push_back({at, length});
  }
  return stretches;
}

} // namespace fennick::picture
