#include "Quarrow/Desktop/HotKeyManager.h"

#include "tests/Support/ManualQueue.h"

#include <gmock/gmock.h>

#include <set>
#include <utility>

namespace quarrow {
namespace {

using ::testing::ElementsAre;

// Grants every key except taken ones, and records requests.
class FakeBackend final : public HotKeyBackend {
public:
  bool take(const HotKeyPreset &preset) override {
    asked.push_back("take " + std::string(preset.title));
    return !taken.contains(preset.id);
  }
  void release() override { asked.emplace_back("release"); }
  std::vector<std::string> take() { return std::exchange(asked, {}); }
  using HotKeyBackend::events;

  std::set<std::int64_t> taken;
  std::vector<std::string> asked;
};

class HotKeyManagerTest : public ::testing::Test {
protected:
  bool choose(std::int64_t id) {
    return manager.replace(
        HotKeyManager::preset(id), [this, id] { heard.push_back("pressed " + std::to_string(id)); },
        [this, id] { heard.push_back("refused " + std::to_string(id)); });
  }
  std::vector<std::string> hear() {
    queue.run();
    return std::exchange(heard, {});
  }

  fennick::test::ManualQueue queue;
  std::unique_ptr<FakeBackend> owned = std::make_unique<FakeBackend>();
  FakeBackend &backend = *owned;
  HotKeyManager manager{queue, std::move(owned)};
  std::vector<std::string> heard;
};

TEST_F(HotKeyManagerTest, ReleasesTheOldKeyBeforeTakingANewOne) {
  EXPECT_TRUE(choose(4));
  EXPECT_TRUE(choose(4));
  EXPECT_THAT(backend.take(), ElementsAre("release", "take F19", "release", "take F19"));
  backend.events().pressed();
  EXPECT_THAT(hear(), ElementsAre("pressed 4"));
  EXPECT_TRUE(manager.replace(nullptr, {}));
  EXPECT_THAT(backend.take(), ElementsAre("release"));
  EXPECT_FALSE(HotKeyManager(queue, nullptr).replace(HotKeyManager::preset(4), {}));
  EXPECT_TRUE(HotKeyManager(queue, nullptr).replace(nullptr, {}));
}

TEST_F(HotKeyManagerTest, KeepsNothingOfARefusedKey) {
  backend.taken = {1};
  EXPECT_TRUE(choose(0));
  EXPECT_FALSE(choose(1));
  backend.events().pressed();
  EXPECT_THAT(hear(), ElementsAre());

  EXPECT_TRUE(choose(2));
  backend.events().refused(); // later
  backend.events().pressed();
  backend.events().refused();
  EXPECT_THAT(hear(), ElementsAre("refused 2"));
}

TEST_F(HotKeyManagerTest, DropsAWaitingPressWithItsAction) {
  EXPECT_TRUE(choose(0));
  backend.events().pressed();
  EXPECT_TRUE(choose(1));
  EXPECT_THAT(hear(), ElementsAre());
}

} // namespace
} // namespace quarrow
