#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace quarrow {

// One of the shortcuts that a person can choose.
struct HotKeyPreset {
  // Bits of `modifiers`.
  static constexpr std::uint32_t kCommand = 0x100; // Super here
  static constexpr std::uint32_t kShift = 0x200;
  static constexpr std::uint32_t kOption = 0x800; // Alt here
  static constexpr std::uint32_t kControl = 0x1000;

  std::int64_t id = 0;         // as settings store it
  std::string_view title;      // UTF-8, for people
  std::uint32_t keyCode = 0;   // a virtual key code, see HotKeySymbol
  std::uint32_t modifiers = 0; // exactly these are held

  bool operator==(const HotKeyPreset &) const = default;
};

// What this system calls the key with a virtual key code.
struct HotKeySymbol {
  std::uint32_t keyCode = 0;
  std::uint32_t keysym = 0;  // X11's number for what the key types
  std::uint8_t position = 0; // X11's key code of it on an ordinary keyboard
  const char *name = "";     // of the keysym
};

// A key code that no preset has is a mistake of the program (std::terminate).
[[nodiscard]] const HotKeySymbol &hotKeySymbol(std::uint32_t keyCode);

// The way in which a display server lets a program hear of a key that is pressed in any other. At most one
// key at a time. Main thread.
class HotKeyBackend {
public:
  struct Events {
    std::function<void()> pressed; // while the key is held by us, at each press
    std::function<void()> refused; // the key was given, but is not ours any more or never came to be
  };

  virtual ~HotKeyBackend() = default;
  // Before the first key is taken. They are called from the event loop, never from inside a call.
  void listen(Events events) { events_ = std::move(events); }

  // Takes the key, where none is held. False: somebody else has it, or there are no such keys here.
  [[nodiscard]] virtual bool take(const HotKeyPreset &preset) = 0;
  // Gives the key up, if there is one.
  virtual void release() = 0;

protected:
  [[nodiscard]] const Events &events() const { return events_; }

private:
  Events events_;
};

// The one for the platform that the application runs on (QGuiApplication::platformName); none where programs
// cannot have such keys.
[[nodiscard]] std::unique_ptr<HotKeyBackend> makeHotKeyBackend();

} // namespace quarrow
