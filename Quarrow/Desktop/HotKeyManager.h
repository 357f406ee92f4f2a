#pragma once

#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/Desktop/HotKeyBackend.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace quarrow {

// The one shortcut that opens the panel from any program. Main thread.
class HotKeyManager {
public:
  using Preset = HotKeyPreset;

  // All that can be chosen, in the order in which they are shown.
  [[nodiscard]] static std::span<const Preset> presets();
  // Nothing for a number that is none of them.
  [[nodiscard]] static const Preset *preset(std::int64_t id);

  // `mainQueue` outlives the object. Without a backend every shortcut is refused.
  HotKeyManager(fennick::MainQueue &mainQueue, std::unique_ptr<HotKeyBackend> backend);
  ~HotKeyManager();
  HotKeyManager(const HotKeyManager &) = delete;
  HotKeyManager &operator=(const HotKeyManager &) = delete;

  // Gives the current shortcut up and forgets its action; then, unless `preset` is null, takes another, for
  // which `action` is called from the main queue at each press. False: it is not to be had, and nothing is
  // kept. Some desktops answer later, or take the shortcut away again: `refused` is then called once, from
  // the main queue, and nothing is kept either.
  [[nodiscard]] bool replace(const Preset *preset, std::function<void()> action,
                             std::function<void()> refused = {});

private:
  struct Registration {
    std::function<void()> action;
    std::function<void()> refused;
  };
  void press();
  void refuse();

  fennick::MainQueue &mainQueue_;
  const std::unique_ptr<HotKeyBackend> backend_;
  std::shared_ptr<const Registration> registration_; // what waits in the main queue lapses with it
};

} // namespace quarrow
