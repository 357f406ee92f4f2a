#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"
#include "Quarrow/Actions/PhotoActions.h"
#include "tests/App/HandNetwork.h"
#include "tests/App/RecordingDesktop.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/KeepingTrash.h"
#include "tests/Support/ManualQueue.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quarrow::test {

// Photos on a wall, in a real folder, and what can be done to them; time and threads wait for the test.
class ActionsTest : public ::testing::Test {
protected:
  using Names = std::vector<std::string>;

  ActionsTest() { controller.server().setSaveFolder(disk / "photos"); }

  // The wall shows these, in this order.
  void hang(const Names &names) {
    int age = 0;
    for (const auto &name : names)
      ASSERT_TRUE(
          fennick::setModificationTime(disk.write("photos/" + name, "content of " + name),
                                       fennick::Instant(std::chrono::seconds(1'700'000'000 - age++))));
    controller.library().setFolder(disk / "photos");
    awaitWall(names);
  }
  void awaitWall(const Names &names) {
    queue.runUntil([&] { return wall() == names; });
  }
  [[nodiscard]] Names wall() {
    Names names;
    for (const auto &item : controller.library().items())
      names.push_back(item.name);
    return names;
  }
  void select(const Names &names) {
    PhotoSelection::Paths chosen;
    for (const auto &name : names)
      chosen.insert(disk / ("photos/" + name));
    controller.selection().set(std::move(chosen));
  }
  [[nodiscard]] Names selected() {
    Names names;
    for (const auto &file : controller.selection().files())
      names.push_back(file.filename().string());
    return names;
  }
  // Until what was entered has been looked at.
  void awaitAnswers() {
    queue.advance(fennick::Seconds(0.2));
    bool answered = false; // after everything that was asked before
    actions.jobs()->ask([] { return true; }, [&answered](bool) { answered = true; });
    queue.runUntil([&] { return answered; });
  }
  // Until everything that was asked for is done.
  void settle() {
    queue.runUntil([this] { return !actions.jobs()->running(); });
  }

  fennick::test::TemporaryFolder disk;
  fennick::FilePreferences preferences{disk / "preferences.json"};
  fennick::test::FaultyFileSystem files;
  fennick::test::ManualQueue queue;
  fennick::test::FakeDecoder decoder;
  fennick::test::KeepingTrash trash{disk / "trash"};
  RecordingDesktop desktop;
  HandNetwork network;
  AppController controller{{.cacheDirectory = disk / "cache", .saveFolder = disk / "photos"},
                           {.preferences = preferences,
                            .mainQueue = queue,
                            .files = files,
                            .clock = queue.clock(),
                            .decoder = decoder,
                            .trash = trash,
                            .desktop = desktop,
                            .network = network}};
  PhotoActions actions{
      controller,
      {.mainQueue = queue, .files = files, .decoder = decoder, .trash = trash, .desktop = desktop}};
};

} // namespace quarrow::test
