#pragma once

#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/Desktop/HotKeyBackend.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace quarrow {

// The global shortcut that opens the panel. Main thread.
class HotKeyManager {
public:
  using Preset = HotKeyPreset;

  // All presets in their display order.
  [[nodiscard]] static std::span<const Preset> presets();
  // Returns null for an unknown number.
  [[nodiscard]] static const Preset *preset(std::int64_t id);

  // `mainQueue` outlives the object. Without a backend every shortcut is refused.
  HotKeyManager(fennick::MainQueue &mainQueue, std::unique_ptr<HotKeyBackend> backend);
  ~HotKeyManager();
  HotKeyManager(const HotKeyManager &) = delete;
  HotKeyManager &operator=(const HotKeyManager &) = delete;

  // Releases the current shortcut and its action; then, unless `preset` is null, takes another, for which
  // `action` is called from the main queue at each press. Returns false if it is not available; then there is
  // none. Some desktops answer later or withdraw the shortcut: `refused` is then called once from the main
  // queue, and there is none either.
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
  std::shared_ptr<const Registration> registration_; // its destruction disarms what waits in the main queue
};

} // namespace quarrow
