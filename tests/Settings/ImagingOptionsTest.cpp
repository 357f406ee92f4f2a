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
  const auto accepted = [](std::int64_t width, std::int64_t height) {
    const auto size = ImageLimits::check(width, height);
    return size && *size == PixelSize{width, height};
  };
  EXPECT_TRUE(accepted(1, 1));
  EXPECT_TRUE(accepted(20000, 5000));
  EXPECT_TRUE(accepted(10000, 10000));
  EXPECT_FALSE(accepted(10000, 10001));
  EXPECT_FALSE(accepted(20001, 10));
  EXPECT_FALSE(accepted(10, 0));
  EXPECT_FALSE(accepted(-1, -1));
  constexpr auto kHuge = std::numeric_limits<std::int64_t>::max();
  EXPECT_FALSE(accepted(kHuge, kHuge));
}

TEST(ImageLimitsTest, UnknownDimensionsAreOversized) {
  EXPECT_FALSE(ImageLimits::check(std::nullopt, 10));
  EXPECT_FALSE(ImageLimits::check(10, std::nullopt));
}

} // namespace
} // namespace fennick
