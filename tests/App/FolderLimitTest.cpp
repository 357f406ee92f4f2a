#include "Quarrow/App/FolderLimit.h"

#include "tests/Support/ManualQueue.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <semaphore>

namespace quarrow {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::SizeIs;

// Removes each file once the test allows it.
class WaitingTrash final : public fennick::Trash {
public:
  fennick::IOResult<fennick::Trashed> moveToTrash(const fs::path &file) override {
    asked.release();
    allowed.acquire();
    fs::remove(file);
    return fennick::Trashed{};
  }
  std::counting_semaphore<> asked{0};
  std::counting_semaphore<> allowed{0};
};

TEST(FolderLimitTest, RunsInTheBackgroundAndOnceMoreForCallsMeanwhile) {
  fennick::test::TemporaryFolder disk;
  fennick::test::ManualQueue queue;
  WaitingTrash trash;
  std::vector<std::size_t> gone;
  FolderLimit limit(trash, queue, [&](const auto &files) { gone.push_back(files.size()); });
  for (int i = 0; i < 6; ++i)
    disk.write(fmt::format("{}.jpg", i));
  limit.prune(disk.path(), 5);
  trash.asked.acquire(); // in the middle of the first run
  for (const int most : {2, 3, 4})
    limit.prune(disk.path(), most);
  EXPECT_TRUE(gone.empty());
  trash.allowed.release(2);
  queue.runUntil([&] { return gone.size() == 2; });
  EXPECT_THAT(gone, ElementsAre(1, 1)); // the second run has the latest limit
  limit.stop();
  limit.prune(disk.path(), 1);
  EXPECT_THAT(disk.names(), SizeIs(4));
}

} // namespace
} // namespace quarrow
