#include "Quarrow/Desktop/HotKeyX11.h"

#include "Quarrow/Desktop/HotKeyManager.h"
#include "tests/Desktop/RunUntil.h"

#include <QGuiApplication>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace quarrow {
namespace {

// Another program that grabs keys.
class OtherClient {
public:
  OtherClient() : connection_(::xcb_connect(nullptr, nullptr)) {}
  ~OtherClient() { ::xcb_disconnect(connection_); }
  OtherClient(const OtherClient &) = delete;
  OtherClient &operator=(const OtherClient &) = delete;

  [[nodiscard]] bool grab(std::uint16_t modifiers, xcb_keycode_t key) const {
    const std::unique_ptr<xcb_generic_error_t, decltype(&std::free)> error(
        ::xcb_request_check(connection_, ::xcb_grab_key_checked(connection_, 0, root(), modifiers, key,
                                                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
        &std::free);
    return !error;
  }
  void ungrab(std::uint16_t modifiers, xcb_keycode_t key) const {
    std::free(
        ::xcb_request_check(connection_, ::xcb_ungrab_key_checked(connection_, key, root(), modifiers)));
  }
  [[nodiscard]] bool isTaken(std::uint16_t modifiers, xcb_keycode_t key) const {
    if (!grab(modifiers, key))
      return true;
    ungrab(modifiers, key);
    return false;
  }

  [[nodiscard]] xcb_window_t root() const {
    return ::xcb_setup_roots_iterator(::xcb_get_setup(connection_)).data->root;
  }

private:
  xcb_connection_t *const connection_;
};

class HotKeyX11Test : public ::testing::Test {
protected:
  static constexpr std::uint16_t kControlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;

  HotKeyX11Test() {
    backend.listen({.pressed = [this] { ++pressed; }, .refused = [this] { ++refused; }});
  }
  void TearDown() override { run("setxkbmap us"); }

  static void run(const std::string &command) { ASSERT_EQ(std::system(command.c_str()), 0) << command; }
  static void press(const std::string &keys) { run("xdotool key " + keys); }
  [[nodiscard]] bool take(std::int64_t id) { return backend.take(*HotKeyManager::preset(id)); }
  void awaitPresses(int count) {
    test::runUntil([&] { return pressed >= count; });
    EXPECT_EQ(pressed, count);
  }

  HotKeyX11 backend{qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection()};
  OtherClient other;
  int pressed = 0;
  int refused = 0;
};

TEST_F(HotKeyX11Test, ReportsEveryPresetWithAnyLockState) {
  const std::pair<std::int64_t, const char *> cases[] = {{0, "ctrl+alt+super+p"},
                                                         {1, "ctrl+alt+p"},
                                                         {2, "super+shift+2"},
                                                         {3, "ctrl+alt+space"},
                                                         {4, "197"}}; // no key types F19 in this layout
  int expected = 0;
  for (const auto &[id, keys] : cases) {
    ASSERT_TRUE(take(id)) << keys;
    for (const char *lock : {"Num_Lock", "Caps_Lock", "Num_Lock", "Caps_Lock"}) {
      press("ctrl+alt+shift+p ctrl+p p " + std::string(lock));
      press(keys);
      awaitPresses(++expected);
    }
    backend.release();
  }
}

TEST_F(HotKeyX11Test, RefusesAKeyOfAnotherProgramUntilItIsReleased) {
  constexpr xcb_keycode_t kP = 33;
  ASSERT_TRUE(other.grab(kControlAlt | XCB_MOD_MASK_LOCK, kP));
  EXPECT_FALSE(take(1));
  EXPECT_FALSE(other.isTaken(kControlAlt, kP));
  other.ungrab(kControlAlt | XCB_MOD_MASK_LOCK, kP);
  EXPECT_TRUE(take(1));
  EXPECT_TRUE(other.isTaken(kControlAlt, kP));
  backend.release();
  test::runUntil([&] { return !other.isTaken(kControlAlt, kP); });
}

TEST_F(HotKeyX11Test, ReportsAHeldKeyOnce) {
  ASSERT_TRUE(take(4));
  constexpr xcb_timestamp_t kWrapped = 0xFFFFFFF0;
  const std::tuple<std::uint8_t, xcb_timestamp_t, int> story[] = {
      {XCB_KEY_PRESS, kWrapped, 1}, {XCB_KEY_PRESS, 500, 1},
      {XCB_KEY_PRESS, 530, 1},      {XCB_KEY_RELEASE, 540, 1},
      {XCB_KEY_PRESS, 550, 2},      {XCB_KEY_PRESS, 2000, 3}, // the release went to another client
  };
  for (const auto &[kind, time, presses] : story) {
    xcb_key_press_event_t event{};
    event.response_type = kind;
    event.detail = 197;
    event.event = other.root();
    event.time = time;
    backend.nativeEventFilter("xcb_generic_event_t", &event, nullptr);
    EXPECT_EQ(pressed, presses) << time;
  }
}

TEST_F(HotKeyX11Test, FollowsTheKeyboardLayout) {
  constexpr xcb_keycode_t kDvorakP = 27;
  constexpr xcb_keycode_t kP = 33;
  ASSERT_TRUE(take(1));
  run("setxkbmap us -variant dvorak");
  test::runUntil([&] { return other.isTaken(kControlAlt, kDvorakP); });
  press("ctrl+alt+p");
  awaitPresses(1);

  ASSERT_TRUE(other.grab(kControlAlt, kP));
  run("setxkbmap us");
  test::runUntil([&] { return refused > 0; });
  EXPECT_FALSE(other.isTaken(kControlAlt, kDvorakP));
}

} // namespace
} // namespace quarrow
