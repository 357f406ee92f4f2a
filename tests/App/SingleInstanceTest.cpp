#include "Quarrow/App/SingleInstance.h"

#include "tests/Support/TemporaryFolder.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace quarrow {
namespace {

using fennick::InstanceGuard;

TEST(SingleInstanceTest, DeliversLaterLaunchesInOrder) {
  std::string name = "tests";
  char *arguments[] = {name.data(), nullptr};
  int count = 1;
  const QCoreApplication application(count, arguments);
  const fennick::test::TemporaryFolder folder;
  auto guard = InstanceGuard::claim(folder.path(), "tevrin");
  ASSERT_TRUE(guard && *guard);

  std::vector<InstanceGuard::Arguments> heard;
  const SingleInstance instance(std::move(**guard), [&](const InstanceGuard::Arguments &launch) {
    heard.push_back(launch);
    if (launch.empty())
      QCoreApplication::quit();
  });
  const std::vector<InstanceGuard::Arguments> launches{{"--show-settings"}, {"--show-panel", "照片"}, {}};
  std::jthread other([&] {
    for (const auto &launch : launches)
      EXPECT_TRUE(InstanceGuard::handOver(folder.path(), "tevrin", launch));
  });
  QCoreApplication::exec();
  EXPECT_EQ(heard, launches);
}

} // namespace
} // namespace quarrow
