#pragma once

#include "Quarrow/SettingsForm/SettingsForm.h"
#include "tests/App/Surroundings.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

namespace quarrow::test {

// A form with a real save folder, "photos", and a coordinator that was never started.
class FormTest : public ::testing::Test, public IdleController<> {
protected:
  FormTest() { controller.server().setSaveFolder(disk.makeFolder("photos")); }

  [[nodiscard]] const fennick::AppSettings &settings() { return controller.settings().settings(); }
  [[nodiscard]] fennick::AppSettings stored() { return fennick::SettingsStore(preferences).settings(); }
  void change(const std::function<void(fennick::AppSettings &)> &change) {
    controller.settings().update(change);
  }
  void runUntil(const std::function<bool()> &condition) { queue.runUntil(condition); }
  void receive(const std::string &name) {
    disk.write("photos/" + name, "a photo of 24 bytes long");
    controller.library().setFolder(disk / "photos");
    controller.library().scan();
    runUntil([&] { return !controller.library().items().empty(); });
  }

  ImagingForm imaging{controller.settings(), library(), decoder, queue};
  WorkflowForm workflow{controller.settings(), library(), desktop, queue, disk / "sample"};
  SettingsForm form{{.settings = controller.settings(),
                     .library = library(),
                     .server = controller.server(),
                     .folders = controller,
                     .files = files,
                     .mainQueue = queue,
                     .clock = queue.clock(),
                     .imaging = imaging,
                     .workflow = workflow}};
};

} // namespace quarrow::test
