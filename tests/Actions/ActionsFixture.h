#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"
#include "Quarrow/Actions/PhotoActions.h"
#include "tests/App/Surroundings.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quarrow::test {

// Actions on photos in a real folder; the test controls time and threads.
class ActionsTest : public ::testing::Test, public IdleController<> {
protected:
  using Names = std::vector<std::string>;

  ActionsTest() { controller.server().setSaveFolder(disk / "photos"); }

  // Creates these files and waits until the wall shows them in this order.
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
    queue.runUntil([&] { return listed() == names; });
  }
  // Waits until the current input was evaluated.
  void awaitAnswers() {
    queue.advance(fennick::Seconds(0.2));
    bool answered = false; // comes after all earlier queries
    actions.jobs()->ask([] { return true; }, [&answered](bool) { answered = true; });
    queue.runUntil([&] { return answered; });
  }
  // Waits until all jobs are done.
  void awaitJobs() {
    queue.runUntil([this] { return !actions.jobs()->running(); });
  }

  PhotoActions actions{{.library = library(),
                        .selection = controller.selection(),
                        .server = controller.server(),
                        .commands = controller,
                        .tools = {.files = files, .decoder = decoder, .trash = trash},
                        .desktop = desktop,
                        .mainQueue = queue}};
};

} // namespace quarrow::test
