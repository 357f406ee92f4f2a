#include "FennickCore/Storage/NameGenerator.h"

#include "FennickCore/Storage/SaveDestination.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fennick {
namespace {

constexpr Instant kNoon{std::chrono::seconds(1'714'564'800)};

TakenNames folderWith(const std::vector<std::string> &names) {
  TakenNames taken;
  for (const auto &name : names)
    taken.insert(name, FileKind::regular);
  return taken;
}

struct Numbering {
  std::string rule;
  PrefixSequenceNaming naming;
  std::vector<std::string> taken;
  std::optional<std::int64_t> last;
  std::string next;
};

TEST(NameGeneratorTest, SequenceNamesGoOnFromTheHighestNumber) {
  const PrefixSequenceNaming usual;
  const auto digits = [](std::int64_t count) { return PrefixSequenceNaming{.digits = count}; };
  const auto startingAt = [](std::int64_t start) { return PrefixSequenceNaming{.start = start}; };
  const auto named = [](std::string prefix, std::string separator = "_") {
    return PrefixSequenceNaming{.prefix = std::move(prefix), .separator = std::move(separator)};
  };
  const std::vector<Numbering> table{
      {"an empty folder begins at the start", usual, {}, {}, "IMG_001.jpg"},
      {"notes are no number",
       usual,
       {"IMG_007.jpg", "IMG_notes.jpg", "IMG_9.tar.gz", "IMG_.jpg"},
       {},
       "IMG_008.jpg"},
      {"gaps stay empty", usual, {"IMG_001.jpg", "IMG_005.jpg"}, {}, "IMG_006.jpg"},
      {"every extension takes its number", usual, {"IMG_004.mov", "IMG_005"}, {}, "IMG_006.jpg"},
      {"other stems do not count", usual, {"IMG-900.jpg", "img_800.jpg", "XIMG_700.jpg"}, {}, "IMG_001.jpg"},
      {"deleted files cause no reuse", usual, {}, 41, "IMG_042.jpg"},
      {"the folder may be ahead of what was given out", usual, {"IMG_100.jpg"}, 41, "IMG_101.jpg"},
      {"a higher start is obeyed", startingAt(100), {"IMG_007.jpg"}, 41, "IMG_100.jpg"},
      {"a start that was passed is not", startingAt(5), {"IMG_007.jpg"}, {}, "IMG_008.jpg"},
      {"a negative start is none", startingAt(-5), {}, {}, "IMG_000.jpg"},
      {"a start past counting is held down", startingAt(INT64_MAX), {}, {}, "IMG_1000000000000000.jpg"},
      {"at least one digit", digits(0), {}, {}, "IMG_1.jpg"},
      {"at most nine digits", digits(12), {}, {}, "IMG_000000001.jpg"},
      {"numbers longer than the width stay whole", usual, {"IMG_999.jpg"}, {}, "IMG_1000.jpg"},
      {"padding does not hide a number", usual, {"IMG_0000012.jpg"}, {}, "IMG_013.jpg"},
      {"numbers near the end of 64 bits are nobody's sequence",
       usual,
       {"IMG_9223372036854775807.jpg", "IMG_99999999999999999999999.jpg", "IMG_-9223372036854775808.jpg"},
       {},
       "IMG_001.jpg"},
      {"no prefix at all", named("", ""), {"7.jpg"}, {}, "008.jpg"},
      {"a slash leads into no other folder", named("../../etc/", "/"), {}, {}, "-.-..-etc--001.jpg"},
      {"a NUL does not cut the name", named(std::string("A\0B", 3)), {}, {}, "AB_001.jpg"},
  };
  for (const auto &[rule, naming, taken, last, next] : table)
    EXPECT_EQ(NameGenerator::generate(naming, kNoon, "jpg", folderWith(taken), last).name, next) << rule;
}

TEST(NameGeneratorTest, TheHighestEighteenDigitNumberIsFollowedUpward) {
  TakenNames taken = folderWith({"IMG_999999999999999999.jpg"});
  for (const char *next : {"IMG_1000000000000000000.jpg", "IMG_1000000000000000001.jpg"}) {
    EXPECT_EQ(NameGenerator::generate(PrefixSequenceNaming{}, kNoon, "jpg", taken, {}).name, next);
    taken.insert(next, FileKind::regular);
  }
}

TEST(NameGeneratorTest, PhotosOfOneSecondAreCountedFromTwo) {
  const std::string second = localSecondText(kNoon);
  TakenNames taken = folderWith({second + "_3.jpg", second + "_1.jpg"});
  for (const char *ending : {".jpg", "_2.jpg", "_4.jpg", "_5.jpg"}) {
    const auto result = NameGenerator::generate(TimestampNaming{}, kNoon, "jpg", taken, {});
    EXPECT_EQ(result.name, second + ending);
    EXPECT_EQ(result.sequence, std::nullopt);
    taken.insert(result.name, FileKind::regular);
  }
  EXPECT_EQ(NameGenerator::generate(TimestampNaming{}, kNoon, "png", taken, {}).name, second + ".png");
}

} // namespace
} // namespace fennick
