#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What the imaging process determines about a picture. Values; any thread.
namespace fennick {

// The picture formats, always determined from content. From `dng` on they are camera raw formats; `raw` is
// one of a maker without a value of its own.
enum class PictureType : std::uint8_t {
  jpeg,
  png,
  heic,
  heif,
  webp,
  tiff,
  avif,
  gif,
  dng,
  arw,
  cr2,
  dcr,
  erf,
  hasselblad3fr,
  iiq,
  kdc,
  mef,
  mos,
  nef,
  nrw,
  pef,
  srw,
  raw
};
inline constexpr PictureType kLastPictureType = PictureType::raw;

[[nodiscard]] constexpr bool isRaw(PictureType type) { return type >= PictureType::dng; }

// Returns the type's name in messages: "public.jpeg", "public.heic", ….
[[nodiscard]] std::string_view typeIdentifier(PictureType type);
// Returns "jpeg", "png", "heic", "nef", "3fr", …
[[nodiscard]] std::string_view preferredExtension(PictureType type);

// EXIF orientations count from 1, upright, to 8.
inline constexpr std::int64_t kUpright = 1;

// Whether a new encoding, which has at most 16 bits a sample, no high dynamic range and no gamut beyond its
// colour profile, can show the same picture; otherwise the reason.
enum class Fidelity : std::uint8_t {
  faithful,
  dynamicRange, // PQ or HLG
  colours,      // BT.2020 or others without a colour profile
  samples,      // floating point, signed, 32 bits, or channels beyond colour and transparency
};
inline constexpr Fidelity kLastFidelity = Fidelity::samples;

struct PictureFacts {
  PictureType type = PictureType::jpeg;
  std::int64_t frames = 1;              // pictures in the file: animation frames, pages; 2 for a movie
  std::optional<std::int64_t> width{};  // in pixels as stored, before any turning; absent when unreadable
  std::optional<std::int64_t> height{}; // as stored
  std::optional<std::int64_t>
      orientation{};        // as the file says it, which may be out of range; absent: not said
  bool hasLocation = false; // GPS or named places, anywhere in the file
  bool hasMetadata = false; // anything beyond pixels and their colours
  Fidelity fidelity = Fidelity::faithful;

  bool operator==(const PictureFacts &) const = default;
};

// The longest text of PictureDetails in bytes.
inline constexpr std::size_t kMostDetailText = 128;

// How a picture was taken, for users. Each text is one line of UTF-8, empty if there is no plausible value.
struct PictureDetails {
  std::string camera{};   // "Apple iPhone 15 Pro"
  std::string lens{};     // "iPhone 15 Pro back triple camera 6.765mm f/1.78"
  std::string taken{};    // "2024-05-01 10:00:00", by the camera's clock
  std::string offset{};   // that clock's distance from UTC: "+08:00"
  std::string exposure{}; // "1/125 s · f/1.8 · ISO 100 · 26 mm"

  bool operator==(const PictureDetails &) const = default;
};

} // namespace fennick
