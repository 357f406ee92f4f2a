#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What the imaging process finds out about a picture. Values; any thread.
namespace fennick {

// The picture formats that are told apart, always by content. From `dng` on they are camera raw formats;
// `raw` is one of a maker that is not told apart.
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

// "public.jpeg", "public.heic", …: the type's name in messages.
[[nodiscard]] std::string_view typeIdentifier(PictureType type);
// "jpeg", "png", "heic", "nef", "3fr", …
[[nodiscard]] std::string_view preferredExtension(PictureType type);

// Which of the eight ways a picture is stored turned or mirrored, as EXIF numbers them; 1 is upright.
inline constexpr std::int64_t kUpright = 1;

// Whether a new encoding, which has at most 16 bits a sample, no high dynamic range and no gamut beyond that
// of its colour profile, can show the same picture; and if not, why.
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
  std::optional<std::int64_t> height{}; // the same
  std::optional<std::int64_t>
      orientation{};        // as the file says it, which may be out of range; absent: not said
  bool hasLocation = false; // GPS or named places, anywhere in the file
  bool hasMetadata = false; // anything beyond pixels and their colours
  Fidelity fidelity = Fidelity::faithful;

  bool operator==(const PictureFacts &) const = default;
};

// No text of PictureDetails is longer, in bytes.
inline constexpr std::size_t kMostDetailText = 128;

// What a picture says of how it was taken, for people. Each text is one line of UTF-8, empty where nothing
// sensible is said.
struct PictureDetails {
  std::string camera{};   // "Apple iPhone 15 Pro"
  std::string lens{};     // "iPhone 15 Pro back triple camera 6.765mm f/1.78"
  std::string taken{};    // "2024-05-01 10:00:00", by the camera's clock
  std::string offset{};   // that clock's distance from UTC: "+08:00"
  std::string exposure{}; // "1/125 s · f/1.8 · ISO 100 · 26 mm"

  bool operator==(const PictureDetails &) const = default;
};

} // namespace fennick
