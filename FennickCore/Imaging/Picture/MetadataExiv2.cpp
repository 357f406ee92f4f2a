#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include "FennickCore/Imaging/Picture/Exiv2Versions.h"

#include <iconv.h>

namespace fennick::picture {

void prepareExiv2() {
  static const bool isReady = [] {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    enableHeif();
    // Old IPTC texts are in Latin 1. Keeping a converter open keeps its module loaded in the sandbox.
    [[maybe_unused]] static auto *const latin = iconv_open("UTF-8", "ISO-8859-1");
    return Exiv2::XmpParser::initialize();
  }();
  (void)isReady;
}

} // namespace fennick::picture
