#pragma once

#include "tests/Support/FaultyFileSystem.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fennick::test {

// Runs `round` with a file system that crashes at the first change, the second, and so on, until a round
// completes. Each round prepares a folder, acts through the given file system, and checks with another one
// what a new start makes of the folder.
template <typename Round>
void killAtEveryChange(Round round) {
  constexpr int kMostChanges = 1000; // more than any action makes
  for (int change = 1; change <= kMostChanges; ++change) {
    SCOPED_TRACE(fmt::format("killed at change {}", change));
    FaultyFileSystem files;
    files.dieAt(change);
    round(files);
    if (!files.died() || ::testing::Test::HasFatalFailure())
      return;
  }
  ADD_FAILURE() << "the action never completes";
}

} // namespace fennick::test
