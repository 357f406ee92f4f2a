#include "FennickCore/Storage/PhotoOrder.h"

#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Operation = test::FaultyFileSystem::Operation;

class PhotoOrderTest : public ::testing::Test {
protected:
  void save(const std::vector<std::string> &names) { PhotoOrder::save(names, disk.path(), files); }
  std::vector<std::string> load() { return PhotoOrder::load(disk.path()); }

  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  const std::string kFile = ".fennick-order.json";
};

TEST_F(PhotoOrderTest, StoresTheOrderAsNames) {
  save({"b.jpg", "a\n\"b\\.jpg", "海.jpg", "\xFF.jpg"});
  EXPECT_EQ(disk.read(kFile), R"({"order":["b.jpg","a\n\"b\\.jpg","海.jpg"]})");
  EXPECT_THAT(load(), ElementsAre("b.jpg", "a\n\"b\\.jpg", "海.jpg"));
  save({});
  EXPECT_THAT(disk.names(), IsEmpty());
  save({}); // nothing to remove
}

TEST_F(PhotoOrderTest, IgnoresFilesThatAreNotAnOrder) {
  for (const char *content :
       {"", "{", "[]", "[\"a.jpg\"]", R"({"order":"x"})", R"({"order":{}})", R"({"order":["a.jpg",1]})",
        R"({"Order":["a.jpg"]})", "{\"order\":[\"\xFF\"]}"}) {
    disk.write(kFile, content);
    EXPECT_THAT(load(), IsEmpty()) << content;
  }
  disk.write(kFile, std::string(100'000, '[')); // deeper than the stack allows
  EXPECT_THAT(load(), IsEmpty());
  fs::remove(disk / kFile);
  EXPECT_THAT(load(), IsEmpty());
  ASSERT_EQ(::mkfifo((disk / kFile).c_str(), 0600), 0);
  EXPECT_THAT(load(), IsEmpty());
}

TEST_F(PhotoOrderTest, DoesNotFollowLinks) {
  const auto outside = disk.write("outside", R"({"order":["a.jpg"]})");
  fs::create_symlink(outside, disk / kFile);
  EXPECT_THAT(load(), IsEmpty());
  save({"b.jpg"});
  EXPECT_THAT(load(), ElementsAre("b.jpg"));
  EXPECT_EQ(disk.read("outside"), R"({"order":["a.jpg"]})");
}

TEST_F(PhotoOrderTest, AppliesEditsAndKeepsTheOtherNames) {
  using Names = PhotoOrder::Names;
  for (const char *name : {"a", "b", "new", "newer"})
    disk.write(name);
  const auto withNew = [&](const Names &order) {
    return PhotoOrder::withNew(order, {"new", "gone", "newer"}, disk.path());
  };
  EXPECT_THAT(withNew({}), IsEmpty());
  EXPECT_THAT(withNew({"b", "new", "trashed", "a"}), ElementsAre("newer", "new", "b", "trashed", "a"));
  Names many(2000, "trashed");
  many.emplace_back("a");
  EXPECT_THAT(withNew(many), ElementsAre("newer", "new", "a"));

  EXPECT_THAT(PhotoOrder::withRestored({"a", "b"}, "b", "b"), ElementsAre("a", "b"));
  EXPECT_THAT(PhotoOrder::withRestored({"a", "b"}, "a", "a_2"), ElementsAre("a", "a_2", "b"));
  EXPECT_THAT(PhotoOrder::withRestored({"a", "b"}, "c", "c"), ElementsAre("c", "a", "b"));
  EXPECT_THAT(PhotoOrder::withRestored({}, "c", "c"), IsEmpty());

  const auto undone = [&](const Names &order, const Names &before, const Names &after) {
    return PhotoOrder::undone(order, {.folder = disk.path(), .before = before, .after = after});
  };
  EXPECT_THAT(undone({"new", "b", "a"}, {"a", "trashed"}, {"b", "a"}), ElementsAre("new", "a", "trashed"));
  EXPECT_THAT(undone({"new", "b", "a"}, {}, {"b", "a"}), IsEmpty());
}

} // namespace
} // namespace fennick
