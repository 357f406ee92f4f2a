#include "FennickCore/Storage/NameGenerator.h"

#include "FennickCore/Storage/SaveDestination.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace fennick {
namespace {

constexpr Instant kNoon{std::chrono::seconds(1'714'564'800)};

TEST(NameGeneratorTest, ContinuesSequenceNamesAfterTheHighestNumber) {
  using Names = std::vector<std::string>;
  const std::tuple<std::string, PrefixSequenceNaming, Names, std::optional<int>, std::string> table[] = {
      {"notes are no number", {}, {"IMG_7.jpg", "IMG_notes.jpg", "IMG_9.tar.gz"}, {}, "IMG_008.jpg"},
      {"every extension takes its number", {}, {"IMG_001.mov", "IMG_005"}, {}, "IMG_006.jpg"},
      {"other stems do not count", {}, {"IMG-900.jpg", "img_800.jpg", "XIMG_700.jpg"}, {}, "IMG_001.jpg"},
      {"deleted files cause no reuse", {}, {}, 41, "IMG_042.jpg"},
      {"the folder may be ahead of what was given out", {}, {"IMG_100.jpg"}, 41, "IMG_101.jpg"},
      {"a higher start is obeyed", {.start = 100}, {"IMG_007.jpg"}, 41, "IMG_100.jpg"},
      {"a negative start is none", {.start = -5}, {}, {}, "IMG_000.jpg"},
      {"a start past counting is held down", {.start = INT64_MAX}, {}, {}, "IMG_1000000000000000.jpg"},
      {"at least one digit", {.digits = 0}, {}, {}, "IMG_1.jpg"},
      {"at most nine digits", {.digits = 12}, {}, {}, "IMG_000000001.jpg"},
      {"padding does not hide a number", {}, {"IMG_0000012.jpg"}, {}, "IMG_013.jpg"},
      {"eighteen digits go on", {}, {"IMG_999999999999999999.jpg"}, {}, "IMG_1000000000000000000.jpg"},
      {"past 64 bits", {}, {"IMG_9223372036854775807", "IMG_99999999999999999999"}, {}, "IMG_001.jpg"},
      {"no prefix at all", {.prefix = "", .separator = ""}, {"7.jpg"}, {}, "008.jpg"},
      {"no slash stays", {.prefix = "../etc/", .separator = "/"}, {}, {}, "-.-etc--001.jpg"},
      {"a NUL does not cut the name", {.prefix = {'A', 0, 'B'}}, {}, {}, "AB_001.jpg"},
  };
  for (const auto &[rule, naming, names, last, next] : table) {
    TakenNames taken;
    for (const auto &name : names)
      taken.insert(name, FileKind::regular);
    EXPECT_EQ(NameGenerator::generate(naming, kNoon, "jpg", taken, last).name, next) << rule;
  }
}

TEST(SaveDestinationTest, ChangesTheDayAtLocalMidnight) {
  constexpr Instant kLastSecondOfApril{std::chrono::seconds(1'714'521'599)}; // 2024-04-30 23:59:59 UTC
  const SaveDestination trip{.folder = "/p", .dateSubfolders = true, .naming = {}, .subfolder = "trip"};
  using Strings = std::array<const char *, 3>;
  for (const auto &[zone, before, after] : {Strings{"CST-8", "/p/2024-05-01/trip", "/p/2024-05-01/trip"},
                                            Strings{"EST5", "/p/2024-04-30/trip", "/p/2024-04-30/trip"},
                                            Strings{"UTC0", "/p/2024-04-30/trip", "/p/2024-05-01/trip"}}) {
    ::setenv("TZ", zone, 1);
    EXPECT_EQ(trip.directory(kLastSecondOfApril), before) << zone;
    EXPECT_EQ(trip.directory(kLastSecondOfApril + std::chrono::seconds(1)), after) << zone;
  }
  EXPECT_EQ(localSecondText(kLastSecondOfApril + std::chrono::nanoseconds(999'999'999)), "20240430_235959");
  EXPECT_EQ(localSecondText(Instant(std::chrono::nanoseconds(-1))), "19691231_235959");
  ::unsetenv("TZ");
}

TEST(SaveDestinationTest, KeepsSessionNamesInsideTheSaveFolder) {
  SaveDestination destination{.folder = "/p", .dateSubfolders = false, .naming = {}, .subfolder = {}};
  for (const std::string &name : {std::string(), std::string("."), std::string(".."), std::string("../trip"),
                                  std::string("/etc"), std::string("a\0b", 3), std::string(256, 'x')}) {
    destination.subfolder = name;
    EXPECT_EQ(destination.directory(kNoon), "/p") << name;
  }
}

} // namespace
} // namespace fennick
