#pragma once

#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/App/AppController.h"
#include "Quarrow/App/PhotoImport.h"
#include "Quarrow/App/PhotoSelection.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/UploadProgress.h"
#include "tests/App/HandNetwork.h"
#include "tests/App/RecordingDesktop.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/KeepingTrash.h"
#include "tests/Support/ManualQueue.h"
#include "tests/Support/TemporaryFolder.h"

#include "FennickCore/Platform/Files/Preferences.h"

#include <string>
#include <vector>

namespace quarrow::test {

// Everything that a coordinator needs, under the control of the test: a real folder, a clock and a main queue
// that the test moves, and a recording desktop, network and decoder.
template <typename Decoder = fennick::test::FakeDecoder>
struct Surroundings {
  [[nodiscard]] AppController::Services services() {
    return {.preferences = preferences,
            .mainQueue = queue,
            .files = *fileSystem,
            .clock = queue.clock(),
            .decoder = decoder,
            .trash = trash,
            .desktop = desktop,
            .network = network};
  }

  fennick::test::TemporaryFolder disk;
  fennick::FilePreferences preferences{disk / "state/preferences.json"};
  fennick::test::FaultyFileSystem files;
  fennick::FileSystem *fileSystem = &files; // of the next controller
  fennick::test::ManualQueue queue;
  Decoder decoder;
  fennick::test::KeepingTrash trash{disk / "trash"};
  RecordingDesktop desktop;
  HandNetwork network;
};

// A coordinator that was never started. Its save folder is "photos".
template <typename Decoder = fennick::test::FakeDecoder>
struct IdleController : Surroundings<Decoder> {
  // The names in the library, in its order.
  [[nodiscard]] std::vector<std::string> listed() {
    std::vector<std::string> names;
    for (const auto &item : library().items())
      names.push_back(item.name);
    return names;
  }
  void select(const std::vector<std::string> &names) {
    PhotoSelection::Paths chosen;
    for (const auto &name : names)
      chosen.insert(this->disk / ("photos/" + name));
    controller.selection().set(std::move(chosen));
  }
  [[nodiscard]] std::vector<std::string> selected() {
    std::vector<std::string> names;
    for (const auto &file : controller.selection().files())
      names.push_back(file.filename().string());
    return names;
  }
  [[nodiscard]] fennick::PhotoLibrary &library() { return controller.library(); }

  AppController controller{{.cacheDirectory = this->disk / "cache", .saveFolder = this->disk / "photos"},
                           this->services()};
};

} // namespace quarrow::test
