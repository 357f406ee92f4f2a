#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace quarrow {

// A shortcut that users can choose.
struct HotKeyPreset {
  // Bits of `modifiers`.
  static constexpr std::uint32_t kCommand = 0x100; // the Super key
  static constexpr std::uint32_t kShift = 0x200;
  static constexpr std::uint32_t kOption = 0x800; // the Alt key
  static constexpr std::uint32_t kControl = 0x1000;

  std::int64_t id = 0;         // as settings store it
  std::string_view title;      // UTF-8, for people
  std::uint32_t keyCode = 0;   // a virtual key code, see HotKeySymbol
  std::uint32_t modifiers = 0; // exactly these must be held

  bool operator==(const HotKeyPreset &) const = default;
};

// The names of a key on this system, for a virtual key code.
struct HotKeySymbol {
  std::uint32_t keyCode = 0;
  std::uint32_t keysym = 0;  // X11's number for what the key types
  std::uint8_t position = 0; // X11 key code on an ordinary keyboard
  const char *name = "";     // of the keysym
};

// `keyCode` must be that of a preset; otherwise the program ends (std::terminate).
[[nodiscard]] const HotKeySymbol &hotKeySymbol(std::uint32_t keyCode);

// Receives a key from the display server while any program has focus. At most one key at a time. Main thread.
class HotKeyBackend {
public:
  struct Events {
    std::function<void()> pressed; // called at each press while the key is held
    std::function<void()> refused; // the key was granted, but was withdrawn or never activated
  };

  virtual ~HotKeyBackend() = default;
  // Call it before the first key is taken. The events come from the event loop, never from inside a call.
  void listen(Events events) { events_ = std::move(events); }

  // Takes the key; no key may be held. Returns false if another program has it or global keys are not
  // supported.
  [[nodiscard]] virtual bool take(const HotKeyPreset &preset) = 0;
  // Releases the key, if there is one.
  virtual void release() = 0;

protected:
  [[nodiscard]] const Events &events() const { return events_; }

private:
  Events events_;
};

// Returns the backend for the application's platform (QGuiApplication::platformName), or null if it has no
// global keys.
[[nodiscard]] std::unique_ptr<HotKeyBackend> makeHotKeyBackend();

} // namespace quarrow
