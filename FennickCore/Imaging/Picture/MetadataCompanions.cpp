#include "FennickCore/Imaging/Picture/MetadataCompanions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::string_view kContainer = "http://ns.google.com/photos/1.0/container/";
constexpr std::array kGainMapNamespaces{"http://ns.adobe.com/hdr-gain-map/1.0/"sv,
                                        "http://ns.apple.com/HDRGainMap/1.0/"sv};
constexpr std::array kVideoWords{"MotionPhoto"sv, "MicroVideo"sv, "LivePhoto"sv};

// An entry of the container: the number in its key, and the last part of the key if it has one.
struct DirectoryKey {
  int item = 0; // 0: the directory itself
  std::string_view rest{};
};

std::optional<DirectoryKey> directoryKey(const Exiv2::Xmpdatum &datum, const std::string &tag) {
  constexpr auto kName = "Directory"sv;
  if (!tag.starts_with(kName) || Exiv2::XmpProperties::ns(datum.groupName()) != kContainer)
    return std::nullopt;
  DirectoryKey key{.rest = std::string_view(tag).substr(kName.size())};
  if (!key.rest.starts_with('['))
    return key;
  const auto *const end = key.rest.data() + key.rest.size();
  const auto [behind, error] = std::from_chars(key.rest.data() + 1, end, key.item);
  if (error != std::errc() || behind == end || *behind != ']')
    return std::nullopt;
  key.rest = std::string_view(behind + 1, end);
  return key;
}

// Returns the kind of each entry: "Primary", "GainMap", "MotionPhoto", ...
std::map<int, std::string> semantics(const Exiv2::XmpData &data) {
  std::map<int, std::string> found;
  for (const auto &datum : data) {
    const std::string tag = datum.tagName();
    const auto key = directoryKey(datum, tag);
    if (key && key->rest.ends_with(":Semantic"))
      found[key->item] = datum.toString();
  }
  return found;
}

bool claimsVideo(std::string_view tag) {
  return tag == "VideoLength"sv || std::ranges::any_of(kVideoWords, [&](std::string_view word) {
           return tag.find(word) != std::string_view::npos;
         });
}

bool claimsGainMap(const Exiv2::Xmpdatum &datum) {
  const std::string space = Exiv2::XmpProperties::ns(datum.groupName());
  return std::ranges::find(kGainMapNamespaces, std::string_view(space)) != kGainMapNamespaces.end();
}

bool isKept(const std::string &semantic, const CompanionLengths &lengths) {
  return semantic == "Primary" || (semantic == "GainMap" && lengths.gainMap > 0) ||
         (semantic == "MotionPhoto" && lengths.video > 0);
}

// Returns the remaining entries with their new numbers; empty if only the picture itself would remain.
std::map<int, int> numbering(const std::map<int, std::string> &all, const CompanionLengths &lengths) {
  std::map<int, int> numbers;
  for (const auto &[item, semantic] : all)
    if (isKept(semantic, lengths))
      numbers.emplace(item, static_cast<int>(numbers.size()) + 1);
  return numbers.size() > 1 ? numbers : std::map<int, int>();
}

// Returns the new value of a name that ends with `rest`, or nullopt to keep the present one.
std::optional<std::size_t> lengthFor(std::string_view rest, const std::string &semantic, bool precedesVideo,
                                     const CompanionLengths &lengths) {
  if (rest.ends_with(":Padding"))
    return precedesVideo ? lengths.gap : 0;
  if (!rest.ends_with(":Length") || semantic == "Primary")
    return std::nullopt;
  return semantic == "GainMap" ? lengths.gainMap : lengths.video;
}

// Returns the container's entries with new numbers, in the order of the packet; arrays may have no gaps.
Exiv2::XmpData renumbered(const Exiv2::XmpData &data, const CompanionLengths &lengths) {
  const auto all = semantics(data);
  const auto numbers = numbering(all, lengths);
  Exiv2::XmpData out;
  for (const auto &datum : data) {
    const std::string tag = datum.tagName();
    const auto key = directoryKey(datum, tag);
    if (!key) {
      out.add(datum);
      continue;
    }
    if (numbers.empty() || (key->item != 0 && !numbers.contains(key->item)))
      continue;
    if (key->item == 0) {
      out.add(datum);
      continue;
    }
    const int number = numbers.at(key->item);
    const auto next = std::ranges::find(numbers, number + 1, &std::pair<const int, int>::second);
    const bool precedesVideo = next != numbers.end() && all.at(next->first) == "MotionPhoto";
    out.add(Exiv2::XmpKey("Xmp." + datum.groupName() + ".Directory[" + std::to_string(number) + "]" +
                          std::string(key->rest)),
            &datum.value());
    if (const auto length = lengthFor(key->rest, all.at(key->item), precedesVideo, lengths))
      std::prev(out.end())->setValue(std::to_string(*length));
  }
  return out;
}

bool isSame(const Exiv2::XmpData &a, const Exiv2::XmpData &b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto &left, const auto &right) {
    return left.key() == right.key() && left.toString() == right.toString();
  });
}

} // namespace

bool stateCompanions(Exiv2::XmpData &data, const CompanionLengths &lengths) {
  Exiv2::XmpData stated = renumbered(data, lengths);
  for (auto datum = stated.begin(); datum != stated.end();) {
    const std::string tag = datum->tagName();
    const bool isStale =
        (lengths.video == 0 && claimsVideo(tag)) || (lengths.gainMap == 0 && claimsGainMap(*datum));
    if (!isStale && (tag == "MicroVideoOffset"sv || tag == "VideoLength"sv))
      datum->setValue(std::to_string(lengths.video));
    datum = isStale ? stated.erase(datum) : std::next(datum);
  }
  const bool changed = !isSame(data, stated);
  if (changed)
    data = std::move(stated);
  return changed;
}

} // namespace fennick::picture
