#include "Quarrow/Desktop/HotKeyX11.h"

#include <QCoreApplication>
#include <QTimer>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace quarrow {

namespace {

// Keysyms that identify the modifiers.
constexpr xcb_keysym_t kAlt = 0xffe9;
constexpr xcb_keysym_t kSuper = 0xffeb;
constexpr xcb_keysym_t kNumLock = 0xff7f;

// A held key repeats within this many milliseconds; a later press is a new one, even if another client
// received the release.
constexpr std::uint32_t kRepeatDelay = 1000;

// Kinds of the keyboard extension's event.
constexpr std::uint8_t kNewKeyboard = 0;
constexpr std::uint8_t kMapChanged = 1;

struct Free {
  void operator()(void *memory) const { std::free(memory); } // NOLINT(cppcoreguidelines-no-malloc): xcb's
  void operator()(xcb_key_symbols_t *symbols) const { ::xcb_key_symbols_free(symbols); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

std::uint8_t firstKeyboardEvent(xcb_connection_t *connection) {
  constexpr std::string_view kName = "XKEYBOARD";
  const auto cookie = ::xcb_query_extension(connection, kName.size(), kName.data());
  const Owned<xcb_query_extension_reply_t> reply(::xcb_query_extension_reply(connection, cookie, nullptr));
  return reply && reply->present != 0 ? reply->first_event : std::uint8_t{0};
}

std::vector<xcb_window_t> rootsOf(xcb_connection_t *connection) {
  std::vector<xcb_window_t> roots;
  for (auto screen = ::xcb_setup_roots_iterator(::xcb_get_setup(connection)); screen.rem > 0;
       ::xcb_screen_next(&screen))
    roots.push_back(screen.data->root);
  return roots;
}

// The current keyboard mapping.
class Keyboard {
public:
  explicit Keyboard(xcb_connection_t *connection)
      : symbols_(::xcb_key_symbols_alloc(connection)),
        modifiers_(
            ::xcb_get_modifier_mapping_reply(connection, ::xcb_get_modifier_mapping(connection), nullptr)) {}

  // Returns every key that types the symbol, or else the one in its position on an ordinary keyboard.
  [[nodiscard]] std::vector<xcb_keycode_t> keysFor(const HotKeySymbol &symbol) const {
    std::vector<xcb_keycode_t> keys;
    const Owned<xcb_keycode_t> found(::xcb_key_symbols_get_keycode(symbols_.get(), symbol.keysym));
    for (const xcb_keycode_t *key = found.get(); key != nullptr && *key != XCB_NO_SYMBOL; ++key)
      keys.push_back(*key);
    if (keys.empty())
      keys.push_back(symbol.position);
    return keys;
  }

  [[nodiscard]] std::uint16_t maskOf(const HotKeyPreset &preset) const {
    const auto bit = [&](std::uint32_t modifier, std::uint16_t mask) {
      return (preset.modifiers & modifier) != 0 ? mask : std::uint16_t{0};
    };
    return bit(HotKeyPreset::kShift, XCB_MOD_MASK_SHIFT) | bit(HotKeyPreset::kControl, XCB_MOD_MASK_CONTROL) |
           bit(HotKeyPreset::kOption, modifierOf(kAlt, XCB_MOD_MASK_1)) |
           bit(HotKeyPreset::kCommand, modifierOf(kSuper, XCB_MOD_MASK_4));
  }

  [[nodiscard]] std::vector<std::uint16_t> lockStates() const {
    const std::uint16_t numLock = modifierOf(kNumLock, 0);
    std::vector<std::uint16_t> states{0, XCB_MOD_MASK_LOCK};
    if (numLock != 0)
      states.insert(states.end(), {numLock, static_cast<std::uint16_t>(numLock | XCB_MOD_MASK_LOCK)});
    return states;
  }

private:
  // Returns the modifier that the key with this symbol sets.
  [[nodiscard]] std::uint16_t modifierOf(xcb_keysym_t keysym, std::uint16_t otherwise) const {
    if (!modifiers_ || modifiers_->keycodes_per_modifier == 0)
      return otherwise;
    const std::span keys(::xcb_get_modifier_mapping_keycodes(modifiers_.get()),
                         std::size_t{modifiers_->keycodes_per_modifier} * 8);
    for (std::size_t i = 0; i < keys.size(); ++i)
      if (keys[i] != 0 && ::xcb_key_symbols_get_keysym(symbols_.get(), keys[i], 0) == keysym)
        return static_cast<std::uint16_t>(1U << (i / modifiers_->keycodes_per_modifier));
    return otherwise;
  }

  const Owned<xcb_key_symbols_t> symbols_;
  const Owned<xcb_get_modifier_mapping_reply_t> modifiers_;
};

} // namespace

HotKeyX11::HotKeyX11(xcb_connection_t *connection)
    : connection_(connection), keyboardEvent_(firstKeyboardEvent(connection)) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

HotKeyX11::~HotKeyX11() { release(); }

bool HotKeyX11::take(const HotKeyPreset &preset) {
  held_ = false;
  if (!grab(preset))
    return false;
  preset_ = preset;
  return true;
}

void HotKeyX11::release() {
  ungrab();
  preset_.reset();
}

bool HotKeyX11::grab(const HotKeyPreset &preset) {
  const Keyboard keyboard(connection_);
  for (const xcb_window_t root : rootsOf(connection_))
    for (const xcb_keycode_t key : keyboard.keysFor(hotKeySymbol(preset.keyCode)))
      for (const std::uint16_t locks : keyboard.lockStates())
        grabs_.push_back({root, key, static_cast<std::uint16_t>(keyboard.maskOf(preset) | locks)});

  std::vector<xcb_void_cookie_t> answers;
  answers.reserve(grabs_.size());
  for (const auto &[root, key, modifiers] : grabs_)
    answers.push_back(::xcb_grab_key_checked(connection_, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC,
                                             XCB_GRAB_MODE_ASYNC));
  bool granted = true;
  for (const auto answer : answers)
    if (const Owned<xcb_generic_error_t> error(::xcb_request_check(connection_, answer)); error)
      granted = false;
  if (!granted)
    ungrab();
  return granted;
}

void HotKeyX11::ungrab() {
  for (const auto &[root, key, modifiers] : std::exchange(grabs_, {}))
    ::xcb_ungrab_key(connection_, key, root, modifiers);
  ::xcb_flush(connection_);
}

bool HotKeyX11::nativeEventFilter(const QByteArray &type, void *message, qintptr *) {
  if (type != "xcb_generic_event_t")
    return false;
  const auto *event = static_cast<const xcb_generic_event_t *>(message);
  const std::uint8_t kind = event->response_type & 0x7F;
  const bool isKeyboards = keyboardEvent_ != 0 && kind == keyboardEvent_;
  if (kind == XCB_KEY_PRESS)
    keyPressed(*static_cast<const xcb_key_press_event_t *>(message));
  else if (kind == XCB_KEY_RELEASE)
    keyReleased(*static_cast<const xcb_key_release_event_t *>(message));
  else if (kind == XCB_MAPPING_NOTIFY ||
           (isKeyboards && (event->pad0 == kNewKeyboard || event->pad0 == kMapChanged)))
    keyboardChanged();
  return false;
}

void HotKeyX11::keyPressed(const xcb_key_press_event_t &event) {
  const auto isPressed = [&](const Grab &grab) {
    return grab.root == event.event && grab.key == event.detail && grab.modifiers == (event.state & 0xFF);
  };
  if (!std::ranges::any_of(grabs_, isPressed))
    return;
  const bool isRepeated = held_ && event.time - pressedAt_ < kRepeatDelay;
  held_ = true;
  pressedAt_ = event.time;
  if (!isRepeated)
    events().pressed();
}

void HotKeyX11::keyReleased(const xcb_key_press_event_t &event) {
  if (std::ranges::any_of(grabs_, [&](const Grab &grab) { return grab.key == event.detail; }))
    held_ = false;
}

// The server reports one change with several events.
void HotKeyX11::keyboardChanged() {
  if (preset_ && !std::exchange(changeIsKnown_, true))
    QTimer::singleShot(0, this, &HotKeyX11::takeAnew);
}

void HotKeyX11::takeAnew() {
  changeIsKnown_ = false;
  if (!preset_)
    return;
  ungrab();
  if (grab(*preset_))
    return;
  preset_.reset();
  events().refused();
}

} // namespace quarrow
