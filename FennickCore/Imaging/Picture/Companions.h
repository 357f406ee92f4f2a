#pragma once

#include "FennickCore/Imaging/Picture/JpegCompanions.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <string>

namespace fennick::picture {

// The gain map and the video of a photo for its new encoding. Only JPEG can contain them, and a photo that
// loses all its metadata loses them too. One thread at a time.
class Companions {
public:
  // `file` outlives the object. `longEdge` is the photo's as stored; `turn` its orientation, which is also
  // that of the gain map.
  Companions(Bytes file, PictureType type, const RenderRequest &request, std::int64_t longEdge,
             std::int64_t turn);

  // Whether the photo had a video or gain map that its new encoding will not have.
  [[nodiscard]] bool losesVideo() const { return hadVideo_ && trailer_.bytes.empty(); }
  [[nodiscard]] bool losesGainMap() const { return hadGainMap_ && gainMapAt_.length == 0; }

  // The number of companions that can still be dropped.
  [[nodiscard]] int count() const {
    return (trailer_.bytes.empty() ? 0 : 1) + (gainMapAt_.length > 0 ? 1 : 0);
  }
  // Drops the video, or else the gain map. Returns false if there is neither.
  [[nodiscard]] bool dropOne();
  // The video with the bytes that must surround it.
  [[nodiscard]] const std::string &trailer() const { return trailer_.bytes; }
  // Makes the gain map for the photo at `edge` pixels. A gain map that cannot be decoded is dropped.
  void resize(std::int64_t edge);
  // The lengths that the photo's XMP has to state.
  [[nodiscard]] CompanionLengths lengths() const;
  // The size of the gain map in the file.
  [[nodiscard]] std::size_t gainMapBytes() const { return gainMap_.size(); }
  // Returns `picture` with the gain map announced and appended, or unchanged if there is none.
  [[nodiscard]] std::string withGainMapBehind(std::string picture) const;

private:
  [[nodiscard]] std::string encodedGainMap(std::int64_t edge) const;

  Bytes file_;
  bool stripLocation_;
  std::int64_t longEdge_;
  std::int64_t turn_;
  bool hadVideo_ = false;
  bool hadGainMap_ = false;
  HeifStretch gainMapAt_; // empty: there is none
  VideoTrailer trailer_;
  std::string gainMap_;
  std::int64_t gainMapEdge_ = 0; // long edge of the photo for which gainMap_ was made
};

} // namespace fennick::picture
