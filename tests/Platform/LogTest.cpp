#include "FennickCore/Platform/Log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fennick {
namespace {

TEST(Log, ANameFromOutsideCannotForgeALine) {
  std::vector<std::string> lines;
  logTo([&](std::string_view line) { lines.emplace_back(line); });
  log("received \"照片\r\nfennick: forged\x1B[2J\x7F\t.jpg\"");
  logTo({});
  EXPECT_THAT(lines, testing::ElementsAre("fennick: received \"照片  fennick: forged [2J  .jpg\""));
}

} // namespace
} // namespace fennick
