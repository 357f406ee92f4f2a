#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Small picture files with real structure but without real pixels.
namespace fennick::picture::test {

struct TiffValue {
  std::uint16_t tag = 0;
  std::uint16_t type = 0;
  std::uint64_t count = 0;
  std::string bytes; // as they stand in the file
};

// Writes directories from the innermost to the first.
class TiffWriter {
public:
  explicit TiffWriter(ByteOrder byteOrder, bool isBigTiff = false);
  [[nodiscard]] TiffValue shortValue(std::uint16_t tag, std::uint16_t value) const;
  [[nodiscard]] TiffValue longValue(std::uint16_t tag, std::uint64_t value) const;
  [[nodiscard]] static TiffValue text(std::uint16_t tag, const std::string &value, std::uint16_t type = 2);
  std::size_t blob(const std::string &bytes);
  std::size_t directory(const std::vector<TiffValue> &values, std::uint64_t next = 0);
  [[nodiscard]] std::string finish(std::uint64_t first);

private:
  ByteOrder order_;
  bool isBig_;
  std::string data_;
};

inline const std::string kLatitude(24, '\x2B'); // the bytes of a position
inline const std::string kPreview = "\xFF\xD8preview\xFF\xD9";
inline const std::string kMakerNote = "SomeMaker: \x01\x02 stays where it is";

struct SampleExif {
  ByteOrder order = ByteOrder::little;
  std::optional<std::uint16_t> orientation = 6;
  bool hasGPS = true;
  bool hasPreview = true;
  std::string makerNote = kMakerNote;
};
// With a maker's note, pixel dimensions 4000 × 3000 and a description; a TIFF structure.
std::string sampleExif(const SampleExif &sample = {});

// A JPEG with only `segments` and a scan.
std::string sampleJpeg(const std::string &segments = "");
inline const std::string kJpegScan{"\xFF\xDA\x00\x02"
                                   "scan\xFF\x00\xFF\xD0more\xFF\xD9",
                                   18};
std::string samplePng(const std::string &chunks = "");
std::string sampleWebp(); // lossless, 300 × 200, without an extended header
std::string sampleTiff(bool isBigTiff, std::optional<std::uint16_t> orientation, bool isDNG = false);

// A small even green picture of 16 x 12 in the first directory, the large one in a sub-directory.
struct SampleRaw {
  std::string make = "NIKON CORPORATION";
  std::string model = "NIKON D90";
  std::string preview{};              // a JPEG in a sub-directory; empty: none
  std::uint16_t photometric = 0x8023; // of the large picture: sensor data
  std::uint16_t orientation = 1;
};
std::string sampleRaw(const SampleRaw &sample);

inline constexpr std::uint32_t kPrimary = 1, kThumbnail = 2, kExifItem = 3, kOther = 4;
struct SampleHeif {
  std::optional<unsigned> quarters = 3; // the primary picture's rotation; absent: it has no such property
  bool isSharedWithOther = false;       // another picture turns by the same property
  unsigned offsetBytes = 4;
};
// Items with the data "primary", "thumbnail", an EXIF block that says orientation 6, and "other".
std::string sampleHeif(const SampleHeif &sample = {});
std::string box(const std::string &type, const std::string &payload);

struct SampleVideo {
  std::string userData{};       // boxes
  std::string handler = "vide"; // of the only track
};
std::string sampleVideo(const SampleVideo &sample = {});

// An XMP packet with the given attributes of its description.
std::string sampleXmp(const std::string &attributes);
// A packet that declares companions of these lengths, like a phone's.
std::string companionXmp(std::size_t gainMapBytes, std::size_t videoBytes);
std::string packedXmp(const std::string &packet); // as a PNG's compressed text
std::string iptcSet(unsigned number, const std::string &value);

} // namespace fennick::picture::test
