#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include <exiv2/exiv2.hpp>

namespace fennick::picture {

void prepareExiv2() {
  static const bool isReady = [] {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    Exiv2::enableBMFF();
    return Exiv2::XmpParser::initialize();
  }();
  (void)isReady;
}

} // namespace fennick::picture
