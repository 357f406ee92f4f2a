#include "Quarrow/Desktop/HotKeyManager.h"

#include "Quarrow/Desktop/HotKeyPortal.h"
#include "Quarrow/Desktop/HotKeyX11.h"

#include <QDBusConnection>
#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <exception>
#include <tuple>
#include <utility>

namespace quarrow {

namespace {

constexpr std::uint32_t kControlOption = HotKeyPreset::kControl | HotKeyPreset::kOption;
constexpr std::array kPresets{
    HotKeyPreset{0, "⌃⌥⌘P", 35, kControlOption | HotKeyPreset::kCommand},
    HotKeyPreset{1, "⌃⌥P", 35, kControlOption},
    HotKeyPreset{2, "⌘⇧2", 19, HotKeyPreset::kCommand | HotKeyPreset::kShift},
    HotKeyPreset{3, "⌃⌥Space", 49, kControlOption},
    HotKeyPreset{4, "F19", 80, 0},
};

constexpr std::array kSymbols{
    HotKeySymbol{35, 0x0070, 33, "p"},
    HotKeySymbol{19, 0x0032, 11, "2"},
    HotKeySymbol{49, 0x0020, 65, "space"},
    HotKeySymbol{80, 0xffd0, 197, "F19"},
};

} // namespace

const HotKeySymbol &hotKeySymbol(std::uint32_t keyCode) {
  const auto *found = std::ranges::find(kSymbols, keyCode, &HotKeySymbol::keyCode);
  if (found == kSymbols.end())
    std::terminate();
  return *found;
}

std::unique_ptr<HotKeyBackend> makeHotKeyBackend() {
  const QString platform = QGuiApplication::platformName();
  const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (platform == QStringLiteral("xcb") && x11 != nullptr)
    return std::make_unique<HotKeyX11>(x11->connection());
  if (platform.startsWith(QStringLiteral("wayland")))
    return std::make_unique<HotKeyPortal>(QDBusConnection::sessionBus());
  return nullptr;
}

std::span<const HotKeyManager::Preset> HotKeyManager::presets() { return kPresets; }

const HotKeyManager::Preset *HotKeyManager::preset(std::int64_t id) {
  const auto *found = std::ranges::find(kPresets, id, &Preset::id);
  return found == kPresets.end() ? nullptr : found;
}

HotKeyManager::HotKeyManager(fennick::MainQueue &mainQueue, std::unique_ptr<HotKeyBackend> backend)
    : mainQueue_(mainQueue), backend_(std::move(backend)) {
  if (backend_)
    backend_->listen({.pressed = [this] { press(); }, .refused = [this] { refuse(); }});
}

HotKeyManager::~HotKeyManager() { std::ignore = replace(nullptr, {}); }

bool HotKeyManager::replace(const Preset *preset, std::function<void()> action,
                            std::function<void()> refused) {
  if (backend_)
    backend_->release();
  registration_.reset();
  if (preset == nullptr)
    return true;
  if (!backend_ || !backend_->take(*preset))
    return false;
  registration_ = std::make_shared<const Registration>(std::move(action), std::move(refused));
  return true;
}

void HotKeyManager::press() {
  mainQueue_.post([pressed = std::weak_ptr(registration_)] {
    if (const auto registration = pressed.lock())
      registration->action();
  });
}

void HotKeyManager::refuse() {
  mainQueue_.post([this, refused = std::weak_ptr(registration_)] {
    const auto registration = refused.lock();
    if (!registration)
      return;
    registration_.reset();
    if (registration->refused)
      registration->refused();
  });
}

} // namespace quarrow
