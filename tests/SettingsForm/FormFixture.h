#pragma once

#include "Quarrow/SettingsForm/SettingsForm.h"
#include "tests/App/HandNetwork.h"
#include "tests/App/RecordingDesktop.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/ManualQueue.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

namespace quarrow::test {

// A form over a real coordinator and a real save folder, "photos", that nobody has started to serve.
class FormTest : public ::testing::Test {
protected:
  FormTest() { controller.server().setSaveFolder(disk.makeFolder("photos")); }

  [[nodiscard]] const fennick::AppSettings &settings() { return controller.settings().settings(); }
  // What a program finds that starts next.
  [[nodiscard]] fennick::AppSettings stored() { return fennick::SettingsStore(preferences).settings(); }
  void change(const std::function<void(fennick::AppSettings &)> &change) {
    controller.settings().update(change);
  }
  // Until the window would show this.
  void runUntil(const std::function<bool()> &condition) { queue.runUntil(condition); }
  // A photo arrives, and the library knows it.
  void receive(const std::string &name) {
    disk.write("photos/" + name, "a photo of 24 bytes long");
    controller.library().setFolder(disk / "photos");
    controller.library().scan();
    runUntil([&] { return !controller.library().items().empty(); });
  }

  fennick::test::TemporaryFolder disk;
  fennick::FilePreferences preferences{disk / "preferences.json"};
  fennick::test::FaultyFileSystem files;
  fennick::test::ManualQueue queue;
  fennick::test::FakeDecoder decoder;
  class NoTrash final : public fennick::Trash {
    fennick::IOResult<fennick::Trashed> moveToTrash(const std::filesystem::path &) override {
      return fennick::Trashed{};
    }
  } trash;
  RecordingDesktop desktop;
  HandNetwork network;
  AppController controller{{.cacheDirectory = disk / "cache"},
                           {.preferences = preferences,
                            .mainQueue = queue,
                            .files = files,
                            .clock = queue.clock(),
                            .decoder = decoder,
                            .trash = trash,
                            .desktop = desktop,
                            .network = network}};
  SettingsForm form{controller,
                    {.mainQueue = queue,
                     .files = files,
                     .clock = queue.clock(),
                     .decoder = decoder,
                     .desktop = desktop,
                     .sampleFolder = disk / "sample"}};
  ImagingForm &imaging = *form.imaging();
  WorkflowForm &workflow = *form.workflow();
};

} // namespace quarrow::test
