#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/Desktop/TrayIcons.h"

#include <memory>
#include <optional>

namespace quarrow {

// Decides when the panel under the tray icon opens and closes, and shows the check mark after an arrival.
// Main thread.
class StatusItemController {
public:
  // How long the check mark stays after the last arrival.
  static constexpr fennick::Seconds kFlashLength{1.2};

  // The icon in the tray, if there is one.
  class Item {
  public:
    virtual ~Item() = default;
    virtual void setFace(TrayFace face) = 0;
  };
  class Panel {
  public:
    virtual ~Panel() = default;
    [[nodiscard]] virtual bool isOpen() const = 0;
    virtual void open() = 0; // or raises it; it gets focus
    virtual void close() = 0;
  };

  // All outlive the controller.
  StatusItemController(Item &item, Panel &panel, fennick::MainQueue &mainQueue, const fennick::Clock &clock)
      : item_(item), panel_(panel), mainQueue_(mainQueue), clock_(clock) {}

  // Handles a click on the icon.
  void togglePopover();
  // Closes the panel, since another window got focus. If a click on the icon caused this, the click arrives
  // afterwards and does not open it again.
  void panelLeft();
  void show() { panel_.open(); }
  void close() { panel_.close(); }

  // Shows the check mark until `kFlashLength` after the last call.
  void flash();

private:
  Item &item_;
  Panel &panel_;
  fennick::MainQueue &mainQueue_;
  const fennick::Clock &clock_;
  fennick::Lifetime flash_; // restores the normal icon; only the latest one runs
  std::optional<fennick::Uptime> leftAt_;
};

} // namespace quarrow
