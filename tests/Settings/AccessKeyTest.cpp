#include "FennickCore/Settings/AccessKey.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <vector>

namespace fennick {
namespace {

constexpr std::uint64_t kGreatest = std::numeric_limits<std::uint64_t>::max();

// A source that gives these words and then nothing more.
class Words {
public:
  explicit Words(std::vector<std::uint64_t> words) : words_(std::move(words)) {}
  std::uint64_t operator()() { return words_.at(taken_++); }

private:
  std::vector<std::uint64_t> words_;
  std::size_t taken_ = 0;
};

TEST(AccessKeyTest, TheHighHalfOfTheProductChoosesAndWordsThatWouldFavourACharacterAreDrawnAgain) {
  // One 56th of the words for each character: the second begins at 2^64 / 56. 2^64 modulo 56 is 16: a product
  // whose low half is below that is rejected, as those of 0 and 2^61 are.
  EXPECT_EQ(AccessKey::generate(3, Words({kGreatest / 56, kGreatest / 56 + 1, kGreatest})), "ab9");
  EXPECT_EQ(AccessKey::generate(2, Words({0, std::uint64_t{1} << 61, kGreatest, 1})), "9a");
}

TEST(AccessKeyTest, EveryCharacterOfTheAlphabetOccursAboutAsOftenAsTheOthers) {
  // 56,000 draws: 1000 expected each, with a deviation of 31; 300 off has a chance below 10^-20.
  std::map<char, int> counts;
  for (const char c : AccessKey::generate(56'000))
    ++counts[c];
  for (const char c : AccessKey::kAlphabet)
    EXPECT_NEAR(counts[c], 1000, 300) << c;
  EXPECT_EQ(counts.size(), 56U);
  for (const char lookAlike : std::string_view("loIO01"))
    EXPECT_FALSE(counts.contains(lookAlike)) << lookAlike;
}

} // namespace
} // namespace fennick
