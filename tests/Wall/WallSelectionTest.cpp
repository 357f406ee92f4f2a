#include "Quarrow/Wall/WallSelection.h"
#include "Quarrow/Wall/TypeAhead.h"
#include "tests/Support/FakeClock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quarrow::test {
namespace {

using Reach = WallSelection::Reach;
using Band = WallSelection::Band;

WallSelection::Files filesOf(const std::string &names) {
  WallSelection::Files files;
  for (const char each : names)
    files.emplace_back(std::string(1, each));
  return files;
}

class WallSelectionTest : public ::testing::Test {
protected:
  WallSelectionTest() { wall.setFiles(filesOf("abcdefgh")); }

  [[nodiscard]] std::string selected() const {
    std::string names;
    for (const auto &file : selection.files())
      names += file.string();
    return names;
  }

  PhotoSelection selection;
  WallSelection wall{selection};
};

TEST_F(WallSelectionTest, selectsLikeAFileManager) {
  struct Step {
    int place;
    Reach reach;
    const char *selected;
  };
  for (const auto &[place, reach, expected] :
       {Step{2, Reach::only, "c"}, Step{5, Reach::only, "f"}, Step{2, Reach::range, "cdef"},
        Step{6, Reach::range, "fg"}, Step{0, Reach::toggle, "afg"}, Step{6, Reach::toggle, "af"},
        Step{7, Reach::addRange, "afgh"}, Step{4, Reach::addRange, "aefgh"}, Step{8, Reach::only, "aefgh"},
        Step{-1, Reach::only, "aefgh"}, Step{1, Reach::only, "b"}}) {
    wall.pick(place, reach);
    EXPECT_EQ(selected(), expected) << place;
  }
  wall.moveTo(3);
  EXPECT_EQ(selected(), "b");
  wall.pick(3, Reach::range); // from the last click, not from the focused photo
  EXPECT_EQ(selected(), "bcd");
}

TEST_F(WallSelectionTest, addsTheRubberBandToThePreviousSelection) {
  for (const auto &[band, wide, narrow] :
       {std::tuple(Band::replace, "def", "d"), std::tuple(Band::add, "bcdef", "bcd"),
        std::tuple(Band::toggle, "bcef", "bc")}) {
    wall.pick(1, Reach::only);
    wall.pick(3, Reach::range);
    wall.beginBand(band);
    wall.coverWithBand({3, 4, 5});
    EXPECT_EQ(selected(), wide);
    wall.coverWithBand({3}); // it may shrink again
    EXPECT_EQ(selected(), narrow);
  }
}

TEST_F(WallSelectionTest, keepsTheSelectionWhenOtherPhotosChange) {
  wall.pick(2, Reach::only);
  wall.pick(5, Reach::toggle);
  wall.setFiles(filesOf("XfYcab"));
  EXPECT_EQ(selected(), "cf");
  EXPECT_EQ(wall.current(), 1);
  wall.pick(4, Reach::range); // the anchor was renamed as well
  EXPECT_EQ(selected(), "Yacf");
}

TEST_F(WallSelectionTest, movesFocusToTheNeighbourOfALostPhoto) {
  wall.pick(2, Reach::only);
  wall.setFiles(filesOf("abefgh"));
  EXPECT_EQ(wall.current(), 2);
  EXPECT_EQ(selected(), "e"); // so that the next one can be deleted as well
  wall.pick(5, Reach::toggle);
  wall.setFiles(filesOf("ab"));
  EXPECT_EQ(wall.current(), 1);
  EXPECT_EQ(selected(), ""); // several lost photos select no neighbour
  wall.setFiles({});
  EXPECT_EQ(wall.current(), -1);
}

} // namespace
} // namespace quarrow::test
