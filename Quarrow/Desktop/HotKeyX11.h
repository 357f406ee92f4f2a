#pragma once

#include "Quarrow/Desktop/HotKeyBackend.h"

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QObject>

#include <cstdint>
#include <optional>
#include <vector>

struct xcb_connection_t;
struct xcb_key_press_event_t;

namespace quarrow {

// A key that the X server reports whichever program has focus. It is grabbed for all states of CapsLock and
// NumLock, and again when the keyboard layout changes. Presses arrive on the application's own connection, so
// that their timestamps let the panel take focus.
class HotKeyX11 final : public QObject, public HotKeyBackend, public QAbstractNativeEventFilter {
public:
  // The application's connection, which outlives the object.
  explicit HotKeyX11(xcb_connection_t *connection);
  ~HotKeyX11() override;
  HotKeyX11(const HotKeyX11 &) = delete;
  HotKeyX11 &operator=(const HotKeyX11 &) = delete;

  bool take(const HotKeyPreset &preset) override;
  void release() override;
  bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

private:
  struct Grab {
    std::uint32_t root;
    std::uint8_t key;
    std::uint16_t modifiers;
  };

  [[nodiscard]] bool grab(const HotKeyPreset &preset);
  void ungrab();
  void keyPressed(const xcb_key_press_event_t &event);
  void keyReleased(const xcb_key_press_event_t &event); // both events have the same type
  void keyboardChanged();
  void takeAnew();

  xcb_connection_t *const connection_;
  const std::uint8_t keyboardEvent_; // of the keyboard extension; 0: none
  std::optional<HotKeyPreset> preset_;
  std::vector<Grab> grabs_;
  bool held_ = false;           // the key was pressed and not let go
  std::uint32_t pressedAt_ = 0; // in the server's milliseconds
  bool changeIsKnown_ = false;  // the key is about to be taken anew
};

} // namespace quarrow
