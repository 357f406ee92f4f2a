#pragma once

#include <QObject>

// The numbers that the fields of all windows accept; QML reads them as `Limits.HighestPort`. Stored settings
// may be outside of these ranges.
namespace quarrow::InputLimits {

Q_NAMESPACE

enum Number : int {
  LowestPort = 1024, // lower ports need privileges
  HighestPort = 65'535,
  FewestPixels = 16,    // of the longer side of a picture
  MostPixels = 20'000,  // as decoders accept
  FewestKilobytes = 10, // of a picture; thousands of bytes
  MostKilobytes = 1'000'000,
  LowestQuality = 30, // in percent, as encoders use it
  HighestQuality = 100,
  LowestQualityFloor = 10,
  FewestDigits = 1, // of a number in a name
  MostDigits = 9,
  HighestStart = 999'999'999, // first number of names
  MostMegabytes = 1'000'000,  // of an upload; millions of bytes
  MostPhotos = 1'000'000,     // of a folder
};
Q_ENUM_NS(Number)

} // namespace quarrow::InputLimits
