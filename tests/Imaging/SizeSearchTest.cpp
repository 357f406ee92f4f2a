#include "FennickCore/Imaging/Picture/SizeSearch.h"

#include <gtest/gtest.h>

#include <vector>

namespace fennick::picture {
namespace {

TEST(SizeSearch, LowersQualityThenSizeAndStopsAtTheSmallestOrInTime) {
  using enum PictureType;
  struct Row {
    RenderRequest request;
    std::int64_t longEdge;
    double quality;
    bool withinMaxBytes;
    int encodes;
  };
  const RenderRequest jpegOf500{.output = jpeg, .maxBytes = 500};
  const auto within = [&](double seconds) {
    RenderRequest request = jpegOf500;
    request.searchTime = Seconds(seconds);
    return request;
  };
  const std::vector<Row> rows{
      {{.output = jpeg}, 1000, 0.85, true, 1},
      {{.output = jpeg, .maxBytes = 800}, 1000, 0.77, true, 2},
      {jpegOf500, 874, 0.53, true, 10},
      {{.output = jpeg, .maxBytes = 1}, 640, 0.53, false, 10},
      {{.output = png, .maxBytes = 700, .quality = 1}, 652, 1, true, 3},
      {within(1000), 874, 0.53, true, 10},
      // The fourth encoding would end at 40 seconds, or at 45 on a busy computer.
      {within(44), 1000, 0.69, false, 3},
      {within(0), 1000, 0.85, false, 1},
  };
  for (const auto &[request, longEdge, quality, withinMaxBytes, encodes] : rows) {
    SCOPED_TRACE(testing::Message() << request.maxBytes.value_or(0) << " bytes in "
                                    << request.searchTime.value_or(Seconds(0)).count() << " s");
    int made = 0;
    const auto encodeAt = [&](std::int64_t edge, double tried) { // takes ten seconds
      ++made;
      return std::string(static_cast<std::size_t>(static_cast<double>(edge) * tried), 'x');
    };
    const auto result = searchSize(1000, request, encodeAt, [&] { return Seconds(10 * made); });
    ASSERT_TRUE(result);
    EXPECT_EQ(result->longEdge, longEdge);
    EXPECT_NEAR(result->quality, quality, 1e-6);
    EXPECT_EQ(result->withinMaxBytes, withinMaxBytes);
    EXPECT_EQ(made, encodes);
  }
  EXPECT_FALSE(searchSize(
      1000, jpegOf500, [](std::int64_t, double) { return std::string(); }, [] { return Seconds(0); }));
}

} // namespace
} // namespace fennick::picture
