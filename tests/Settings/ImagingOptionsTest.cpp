#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/ImageLimits.h"

#include <gtest/gtest.h>

#include <limits>

namespace fennick {
namespace {

TEST(ImagingOptionsTest, QualityAndFloorAreClampedWhenUsedNotWhenStored) {
  const auto inUse = [](double quality, double floor) {
    const ImagingOptions options{.quality = quality, .qualityFloor = floor};
    return std::pair(options.qualityInUse(), options.floorInUse());
  };
  EXPECT_EQ(inUse(0.1, 0.05), std::pair(0.3, 0.1));
  EXPECT_EQ(inUse(1.4, 0.5), std::pair(1.0, 0.5));
  EXPECT_EQ(inUse(0.7, 0.9), std::pair(0.7, 0.7));
}

TEST(ImageLimitsTest, PicturesAreAcceptedUpToTheSideAndTheProduct) {
  constexpr auto kHuge = std::numeric_limits<std::int64_t>::max();
  for (const auto &[width, height] : {std::pair(1, 1), std::pair(20000, 5000), std::pair(10000, 10000)})
    EXPECT_TRUE(ImageLimits::check(width, height)) << width;
  for (const auto &[width, height] :
       std::initializer_list<std::pair<std::optional<std::int64_t>, std::optional<std::int64_t>>>{
           {10000, 10001}, {20001, 10}, {10, 0}, {-1, -1}, {kHuge, kHuge}, {{}, 10}, {10, {}}})
    EXPECT_FALSE(ImageLimits::check(width, height)) << width.value_or(0);
}

} // namespace
} // namespace fennick
