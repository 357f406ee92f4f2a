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

// A key that the X server reports to us, whichever program has focus. It is taken for every way in which
// CapsLock and NumLock may stand, and taken anew when the keyboard's layout changes. The presses come through
// the application's own connection, so that the panel which they open may ask for the keyboard in their name.
class HotKeyX11 final : public QObject, public HotKeyBackend, public QAbstractNativeEventFilter {
public:
  // The application's; outlives the object.
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
  void keyReleased(const xcb_key_press_event_t &event); // the two are one type
  void keyboardChanged();
  void takeAnew();

  xcb_connection_t *const connection_;
  const std::uint8_t keyboardEvent_; // of the server's keyboard extension; 0: it has none
  std::optional<HotKeyPreset> preset_;
  std::vector<Grab> grabs_;
  bool held_ = false;           // the key was pressed and not let go
  std::uint32_t pressedAt_ = 0; // in the server's milliseconds
  bool changeIsKnown_ = false;  // the key is about to be taken anew
};

} // namespace quarrow
