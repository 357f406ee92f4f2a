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
constexpr std::array<TypeName, 9> kTypeNames{{{"public.jpeg", "jpeg"},
                                              {"public.png", "png"},
                                              {"public.heic", "heic"},
                                              {"public.heif", "heif"},
                                              {"org.webmproject.webp", "webp"},
                                              {"public.tiff", "tiff"},
                                              {"public.avif", "avif"},
                                              {"com.compuserve.gif", "gif"},
                                              {"com.adobe.raw-image", "dng"}}};

} // namespace

std::string_view typeIdentifier(PictureType type) {
  return kTypeNames.at(static_cast<std::size_t>(type)).identifier;
}

std::string_view preferredExtension(PictureType type) {
  return kTypeNames.at(static_cast<std::size_t>(type)).extension;
}

} // namespace fennick
