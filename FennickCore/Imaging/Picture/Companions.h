#pragma once

#include "FennickCore/Imaging/Picture/JpegCompanions.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <string>

namespace fennick::picture {

// The gain map and the video of one photo on their way into its new encoding. JPEG takes both along; anything
// else, and a photo that loses all its metadata, goes without. One thread at a time.
class Companions {
public:
  // `file` outlives this. `longEdge` is the photo's, as stored; `turn` its orientation, which the gain map
  // has as well.
  Companions(Bytes file, PictureType type, const RenderRequest &request, std::int64_t longEdge,
             std::int64_t turn);

  // What the photo had and its new encoding will not have.
  [[nodiscard]] bool losesVideo() const { return hadVideo_ && trailer_.bytes.empty(); }
  [[nodiscard]] bool losesGainMap() const { return hadGainMap_ && gainMapAt_.length == 0; }

  // How many can still be given up.
  [[nodiscard]] int count() const {
    return (trailer_.bytes.empty() ? 0 : 1) + (gainMapAt_.length > 0 ? 1 : 0);
  }
  // Gives up the video, else the gain map; false if neither is left.
  [[nodiscard]] bool dropOne();
  // The video with what must stay around it.
  [[nodiscard]] const std::string &trailer() const { return trailer_.bytes; }
  // Makes the gain map for the photo at `edge` pixels; one that cannot be decoded is given up.
  void resize(std::int64_t edge);
  // What the photo's XMP is to say.
  [[nodiscard]] CompanionLengths lengths() const;
  // The gain map's part of the file's size.
  [[nodiscard]] std::size_t gainMapBytes() const { return gainMap_.size(); }
  // `picture` with the gain map announced and appended; as it is without one.
  [[nodiscard]] std::string withGainMapBehind(std::string picture) const;

private:
  [[nodiscard]] std::string encodedGainMap(std::int64_t edge) const;

  Bytes file_;
  bool stripLocation_;
  std::int64_t longEdge_;
  std::int64_t turn_;
  bool hadVideo_ = false;
  bool hadGainMap_ = false;
  HeifStretch gainMapAt_; // without length: there is none
  VideoTrailer trailer_;
  std::string gainMap_;
  std::int64_t gainMapEdge_ = 0; // of the photo that gainMap_ is for
};

} // namespace fennick::picture
