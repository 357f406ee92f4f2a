#include "Quarrow/Wall/PhotoListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace quarrow::test {
namespace {

using Items = PhotoListModel::Items;

fennick::PhotoItem photo(const std::string &name, std::int64_t bytes = 1000) {
  return {.url = "/photos/" + name,
          .name = name,
          .bytes = bytes,
          .date = {},
          .pixelWidth = 40,
          .pixelHeight = 30,
          .isVideo = false,
          .isImage = true,
          .isOversized = false};
}

Items photos(const std::string &names) {
  Items items;
  for (const char each : names)
    items.push_back(photo(std::string(1, each)));
  return items;
}

class PhotoListModelTest : public ::testing::Test {
protected:
  PhotoListModelTest() { model.setItems(photos("abcdefgh")); }

  PhotoListModel model;
  QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
  QSignalSpy resets{&model, &QAbstractItemModel::modelReset};
  QSignalSpy inserts{&model, &QAbstractItemModel::rowsInserted};
  QSignalSpy removals{&model, &QAbstractItemModel::rowsRemoved};
  QSignalSpy moves{&model, &QAbstractItemModel::rowsMoved};
  QSignalSpy changes{&model, &QAbstractItemModel::dataChanged};
};

TEST_F(PhotoListModelTest, announcesOnlyTheAffectedRows) {
  struct Case {
    const char *names;
    int inserts, removals, moves, changes;
  };
  for (const auto &[names, inserted, removed, moved, changed] :
       {Case{"Xabcdefgh", 1, 0, 0, 0}, Case{"abch", 0, 1, 0, 0}, Case{"bcdefgha", 0, 0, 1, 0},
        Case{"habcdefg", 0, 0, 1, 0}, Case{"abfgcdeh", 0, 0, 2, 0}, Case{"abcXYdefgZh", 2, 0, 0, 0},
        Case{"Xbdcefgh", 1, 1, 1, 0}}) {
    model.setItems(photos("abcdefgh"));
    for (auto *spy : {&inserts, &removals, &moves, &changes})
      spy->clear();
    model.setItems(photos(names));
    EXPECT_EQ(model.items(), photos(names)) << names;
    EXPECT_EQ(inserts.size(), inserted) << names;
    EXPECT_EQ(removals.size(), removed) << names;
    EXPECT_EQ(moves.size(), moved) << names;
    EXPECT_EQ(changes.size(), changed) << names;
  }
  EXPECT_TRUE(resets.isEmpty());
}

TEST_F(PhotoListModelTest, reachesEveryListFromEveryOther) {
  std::mt19937 random(7); // NOLINT(bugprone-random-generator-seed): the same each time
  std::string names = "abcdefghijklmnopqrstuvwxyz";
  for (int round = 0; round < 300; ++round) {
    std::ranges::shuffle(names, random);
    const auto items = photos(names.substr(0, random() % (names.size() + 1)));
    model.setItems(items);
    ASSERT_EQ(model.items(), items) << names;
  }
}

TEST_F(PhotoListModelTest, givesAChangedFileAnotherThumbnail) {
  auto items = photos("abcdefgh");
  const auto address = [&] { return model.data(model.index(2), PhotoListModel::thumbnailRole).toString(); };
  const auto before = address();
  EXPECT_TRUE(before.startsWith("image://thumbs/"));
  items[2].bytes = 1001;
  model.setItems(items);
  EXPECT_EQ(changes.size(), 1);
  EXPECT_NE(address(), before);
  for (const auto &unseen : {&fennick::PhotoItem::isVideo, &fennick::PhotoItem::isOversized}) {
    items[2].*unseen = true;
    model.setItems(items);
    EXPECT_EQ(address(), "");
    items[2].*unseen = false;
  }
}

} // namespace
} // namespace quarrow::test
