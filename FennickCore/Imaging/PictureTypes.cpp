#include "FennickCore/Imaging/PictureTypes.h"

#include <array>
#include <cstddef>
#include <utility>

namespace fennick {

namespace {

struct TypeName {
  std::string_view identifier;
  std::string_view extension;
};

// In the order of the enumeration.
constexpr std::array<TypeName, static_cast<std::size_t>(kLastPictureType) + 1> kTypeNames{
    {{"public.jpeg", "jpeg"},
     {"public.png", "png"},
     {"public.heic", "heic"},
     {"public.heif", "heif"},
     {"org.webmproject.webp", "webp"},
     {"public.tiff", "tiff"},
     {"public.avif", "avif"},
     {"com.compuserve.gif", "gif"},
     {"com.adobe.raw-image", "dng"},
     {"com.sony.arw-raw-image", "arw"},
     {"com.canon.cr2-raw-image", "cr2"},
     {"com.kodak.raw-image", "dcr"},
     {"com.epson.raw-image", "erf"},
     {"com.hasselblad.3fr-raw-image", "3fr"},
     {"com.phaseone.raw-image", "iiq"},
     {"com.kodak.raw-image", "kdc"},
     {"com.mamiya.raw-image", "mef"},
     {"com.leafamerica.raw-image", "mos"},
     {"com.nikon.raw-image", "nef"},
     {"com.nikon.nrw-raw-image", "nrw"},
     {"com.pentax.raw-image", "pef"},
     {"com.samsung.raw-image", "srw"},
     {"public.camera-raw-image", "raw"}}};

} // namespace

std::string_view typeIdentifier(PictureType type) {
  return kTypeNames.at(static_cast<std::size_t>(type)).identifier;
}

std::string_view preferredExtension(PictureType type) {
  return kTypeNames.at(static_cast<std::size_t>(type)).extension;
}

} // namespace fennick
