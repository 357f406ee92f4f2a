#include "FennickCore/Imaging/Picture/EmbeddedVideo.h"

#include "FennickCore/Imaging/Picture/LocationScan.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr int kMostCandidates = 64;
constexpr std::size_t kHandlerKindAt = 8;

constexpr std::array kTopLevel{"ftyp"sv, "moov"sv, "mdat"sv, "free"sv, "skip"sv, "wide"sv,
                               "uuid"sv, "meta"sv, "udta"sv, "pdin"sv, "moof"sv, "mfra"sv,
                               "sidx"sv, "ssix"sv, "styp"sv, "prft"sv, "emsg"sv};
// The boxes that a player needs, for each level; all others are descriptions.
constexpr std::array kNeededInFile{"ftyp"sv, "moov"sv, "mdat"sv, "wide"sv, "pdin"sv};
constexpr std::array kNeededInMovie{"mvhd"sv, "trak"sv, "iods"sv};
constexpr std::array kNeededInTrack{"tkhd"sv, "edts"sv, "tref"sv, "trgr"sv, "mdia"sv, "tapt"sv};
constexpr std::array kNeededInMedia{"mdhd"sv, "hdlr"sv, "minf"sv, "elng"sv};
constexpr std::array kNeededInMediaInfo{"vmhd"sv, "smhd"sv, "nmhd"sv, "gmhd"sv, "hdlr"sv, "dinf"sv, "stbl"sv};

bool isOneOf(std::string_view type, std::span<const std::string_view> types) {
  return std::ranges::find(types, type) != types.end();
}

const HeifBox *boxOf(const std::vector<HeifBox> &boxes, std::string_view type) {
  const auto found = std::ranges::find(boxes, type, &HeifBox::type);
  return found == boxes.end() ? nullptr : &*found;
}

std::vector<HeifBox> within(std::string_view file, const HeifBox &box) {
  return heifBoxes(file, box.payloadAt, box.end);
}

std::string_view payloadOf(std::string_view file, const HeifBox &box) {
  return file.substr(box.payloadAt, box.end - box.payloadAt);
}

struct VideoContents {
  std::vector<HeifBox> descriptions;
  bool hasDoubtfulTrack = false;
};

// Phones store the time of a motion photo within the video in a track of its own.
bool isTimingTrack(std::string_view media) {
  return media.find("application/motionphoto"sv) != std::string_view::npos ||
         media.find("application/microvideo"sv) != std::string_view::npos;
}

void readLevel(const std::vector<HeifBox> &boxes, std::span<const std::string_view> needed,
               VideoContents &found) {
  for (const HeifBox &box : boxes)
    if (!isOneOf(box.type, needed))
      found.descriptions.push_back(box);
}

void readTrack(std::string_view file, const HeifBox &track, VideoContents &found) {
  const auto parts = within(file, track);
  readLevel(parts, kNeededInTrack, found);
  const HeifBox *media = boxOf(parts, "mdia");
  const auto mediaParts = media != nullptr ? within(file, *media) : std::vector<HeifBox>();
  readLevel(mediaParts, kNeededInMedia, found);
  const HeifBox *info = boxOf(mediaParts, "minf");
  if (info != nullptr)
    readLevel(within(file, *info), kNeededInMediaInfo, found);
  const HeifBox *handler = boxOf(mediaParts, "hdlr");
  const auto kind = handler != nullptr ? slice(payloadOf(file, *handler), kHandlerKindAt, 4).value_or("")
                                       : std::string_view();
  const bool isPlayed = kind == "vide"sv || kind == "soun"sv;
  if (!isPlayed && (info == nullptr || !isTimingTrack(payloadOf(file, *info))))
    found.hasDoubtfulTrack = true;
}

VideoContents contentsOf(std::string_view video) {
  VideoContents found;
  const auto boxes = heifBoxes(video, 0, video.size());
  readLevel(boxes, kNeededInFile, found);
  found.hasDoubtfulTrack =
      boxes.empty() || boxes.back().end != video.size() || boxOf(boxes, "moof") != nullptr;
  for (const HeifBox &box : boxes) {
    if (box.type != "moov"sv)
      continue;
    const auto parts = within(video, box);
    readLevel(parts, kNeededInMovie, found);
    for (const HeifBox &part : parts)
      if (part.type == "trak"sv)
        readTrack(video, part, found);
  }
  return found;
}

std::optional<HeifStretch> videoAt(std::string_view file, std::size_t at) {
  bool hasMovie = false, hasData = false;
  std::size_t end = at;
  for (const HeifBox &box : heifBoxes(file, at, file.size())) {
    if (!isOneOf(box.type, kTopLevel))
      break;
    hasMovie = hasMovie || box.type == "moov"sv;
    hasData = hasData || box.type == "mdat"sv;
    end = box.end;
  }
  return hasMovie && hasData ? std::optional(HeifStretch{at, end - at}) : std::nullopt;
}

} // namespace

std::optional<HeifStretch> findVideo(std::string_view file, std::size_t from) {
  int candidates = 0;
  for (auto at = file.find("ftyp"sv, from); at != std::string_view::npos && candidates < kMostCandidates;
       at = file.find("ftyp"sv, at + 1), ++candidates)
    if (at >= from + 4)
      if (const auto video = videoAt(file, at - 4))
        return video;
  return std::nullopt;
}

bool videoMayHaveLocation(std::string_view video) {
  const VideoContents contents = contentsOf(video);
  return contents.hasDoubtfulTrack || std::ranges::any_of(contents.descriptions, [&](const HeifBox &box) {
           return bytesMayHaveLocation(video.substr(box.at, box.end - box.at));
         });
}

std::optional<std::string> videoWithoutLocation(std::string_view video) {
  std::string cleaned(video);
  for (const HeifBox &box : contentsOf(video).descriptions) {
    cleaned.replace(box.at + 4, 4, "free");
    zero(cleaned, box.payloadAt, box.end - box.payloadAt);
  }
  return videoMayHaveLocation(cleaned) ? std::nullopt : std::optional(std::move(cleaned));
}

} // namespace fennick::picture
