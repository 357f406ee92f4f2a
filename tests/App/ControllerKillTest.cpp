#include "tests/App/ControllerFixture.h"
#include "tests/Support/KillAtEveryChange.h"

#include <algorithm>

namespace quarrow::test {
namespace {

using Operation = fennick::test::FaultyFileSystem::Operation;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ControllerKillTest : public ControllerTest {
protected:
  ControllerKillTest() {
    options.hasPhotoWall = false;
    store.update([](auto &settings) {
      settings.naming = fennick::PrefixSequenceNaming{};
      settings.galleryEnabled = true;
      settings.imaging.stripLocation = true;
    });
    decoder.setFacts(
        fennick::PictureFacts{.width = 40, .height = 30, .orientation = {}, .hasLocation = true});
    decoder.setRendering(fennick::Rendering{.bytes = "no location", .longEdge = 40, .quality = 0.85});
  }

  [[nodiscard]] std::vector<std::string> photos() const {
    auto names = disk.names(folder);
    std::erase(names, ".fennick-incoming");
    return names;
  }
  // No photo that phones can get now contains a location.
  void expectNothingLeaks() {
    const auto key = controller->settings().accessKey();
    EXPECT_THAT(ask("/gallery?k=" + key), StartsWith("HTTP/1.1 200"));
    for (const auto &name : photos())
      EXPECT_THAT(ask(fmt::format("/file/{}?k={}", name, key)), Not(HasSubstr(std::string(kJPEG)))) << name;
  }
  [[nodiscard]] bool anyWaits() const {
    if (!std::filesystem::exists(disk / (folder + "/.fennick-incoming")))
      return false;
    return std::ranges::any_of(disk.names(folder + "/.fennick-incoming"), [&](const auto &name) {
      return name.ends_with(".pending") &&
             !fennick::readFile(disk / folder / ".fennick-incoming" / name).value_or("kept").contains("kept");
    });
  }

  void setServing(bool serving) {
    const fennick::Locked locked(servingLock);
    serves = serving;
  }

  std::string folder;
  // Locked while the controller is created or destroyed, so that phones are not served.
  fennick::Mutex servingLock;
  bool serves GUARDED_BY(servingLock) = false;
};

TEST_F(ControllerKillTest, NeitherLosesAPhotoNorShowsItsLocationAfterACrash) {
  int round = 0;
  fennick::test::killAtEveryChange([&](fennick::test::FaultyFileSystem &dying) {
    folder = fmt::format("photos{}", ++round);
    options.saveFolder = disk.makeFolder(folder);
    for (const auto operation : {Operation::syncDirectory, Operation::remove, Operation::replace})
      dying.before(operation, [&] {
        const fennick::Locked locked(servingLock);
        if (serves)
          expectNothingLeaks();
      });
    received.clear();
    fileSystem = &dying;
    start();
    setServing(true);
    const bool isAccepted = upload().starts_with("HTTP/1.1 200");
    if (isAccepted)
      runUntilReceived(1);
    expectNothingLeaks();
    setServing(false);
    controller.reset(); // the dead disk ignores further changes

    fileSystem = &files;
    start();
    expectNothingLeaks();
    queue.runUntil([&] { return !anyWaits(); });
    expectNothingLeaks();
    const auto found = photos();
    EXPECT_LE(found.size(), 1U);
    EXPECT_TRUE(!isAccepted || found.size() == 1) << "an accepted photo is lost";
    for (const auto &name : found)
      EXPECT_EQ(disk.read(folder + "/" + name), "no location");
    controller.reset();
  });
}

} // namespace
} // namespace quarrow::test
