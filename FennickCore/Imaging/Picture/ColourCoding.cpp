#include "FennickCore/Imaging/Picture/ColourCoding.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/Heif.h"

#include <algorithm>
#include <array>
#include <string>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

std::optional<std::string_view> profileTag(std::string_view icc, std::string_view name) {
  constexpr std::uint64_t kMostTags = 100;
  const auto tags = std::min(readNumber(icc, 128, 4).value_or(0), kMostTags);
  for (std::uint64_t i = 0; i < tags; ++i)
    if (const auto at = 132 + 12 * i; slice(icc, at, 4) == name)
      return slice(icc, readNumber(icc, at + 4, 4).value_or(0), readNumber(icc, at + 8, 4).value_or(0));
  return std::nullopt;
}

// Profiles of ICC 4.4 state their coding by number. Older HDR profiles are recognised by their description,
// in ASCII or UTF-16.
std::optional<ColourCoding> codingOfProfile(std::string_view icc) {
  if (const auto numbers = profileTag(icc, "cicp"))
    if (const auto primaries = readNumber(*numbers, 8, 1), transfer = readNumber(*numbers, 9, 1);
        primaries && transfer)
      return ColourCoding{*primaries, *transfer};
  std::string description(profileTag(icc, "desc").value_or(""));
  std::erase(description, '\0');
  if (!description.contains("2100"))
    return std::nullopt;
  if (description.contains("PQ"))
    return ColourCoding{ColourCoding::kBT2020, ColourCoding::kPQ};
  if (description.contains("HLG"))
    return ColourCoding{ColourCoding::kBT2020, ColourCoding::kHLG};
  return std::nullopt;
}

// Reads cICP, or the chunks of older files, which apply without a profile: a linear gamma, a red beyond
// Display P3.
std::optional<ColourCoding> codingOfPng(std::string_view file) {
  constexpr std::uint64_t kLinearGamma = 90'000; // of 100,000; 45,455 is that of sRGB
  constexpr std::uint64_t kWideRed = 69'000;     // the x of BT.2020's red is 70,800, of Display P3's 68,000
  const auto chunks = pngChunks(file);
  const auto number = [&](std::string_view type, std::size_t at, std::size_t width) {
    const Chunk *chunk = findChunk(chunks, type);
    return chunk != nullptr ? readNumber(chunk->payload(file), at, width) : std::nullopt;
  };
  const auto primaries = number("cICP", 0, 1), transfer = number("cICP", 1, 1);
  if (primaries && transfer)
    return ColourCoding{*primaries, *transfer};
  if (findChunk(chunks, "iCCP") != nullptr || findChunk(chunks, "sRGB") != nullptr)
    return std::nullopt;
  ColourCoding coding;
  if (number("gAMA", 0, 4).value_or(0) >= kLinearGamma)
    coding.transfer = ColourCoding::kLinear;
  if (number("cHRM", 8, 4).value_or(0) >= kWideRed)
    coding.primaries = ColourCoding::kBT2020;
  return coding;
}

} // namespace

std::optional<ColourCoding> statedColours(Bytes file, PictureType type) {
  switch (type) {
  case PictureType::png:
    return codingOfPng(textOf(file));
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return heifColours(file);
  default:
    return std::nullopt;
  }
}

bool ColourCoding::isOrdinary() const {
  constexpr std::array<std::uint64_t, 7> kPrimaries{0, 1, 2, 5, 6, 7, kDisplayP3}; // BT.709, BT.601 and alike
  constexpr std::array<std::uint64_t, 9> kTransfers{0, 1, 2, 4, 6, 11, 13, 14, 15};
  return std::ranges::find(kPrimaries, primaries) != kPrimaries.end() &&
         std::ranges::find(kTransfers, transfer) != kTransfers.end();
}

std::optional<ColourCoding> unusualColours(Bytes file, PictureType type, std::string_view icc) {
  const auto profiled = codingOfProfile(icc);
  if (profiled && profiled->isHDR())
    return profiled;
  const auto stated = statedColours(file, type);
  // In PNG the numbers take precedence over the profile, in other formats the profile does.
  const bool profileCounts = !icc.empty() && type != PictureType::png;
  if (!stated || stated->isOrdinary() || (profileCounts && !stated->isHDR()))
    return std::nullopt;
  return stated;
}

} // namespace fennick::picture
