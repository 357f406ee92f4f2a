#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "Quarrow/Desktop/TrayIcons.h"

#include <memory>
#include <optional>

namespace quarrow {

// The rules of the tray icon and the panel that opens under it: when the panel opens and closes, and the
// check mark that tells of an arrival. Main thread.
class StatusItemController {
public:
  // How long the check mark stays after the last arrival.
  static constexpr fennick::Seconds kFlashLength{1.2};

  // The icon, wherever the session shows it, if it does.
  class Item {
  public:
    virtual ~Item() = default;
    virtual void setFace(TrayFace face) = 0;
  };
  class Panel {
  public:
    virtual ~Panel() = default;
    [[nodiscard]] virtual bool isOpen() const = 0;
    virtual void open() = 0; // or brings it to the front; it gets the keyboard
    virtual void close() = 0;
  };

  // All outlive the controller.
  StatusItemController(Item &item, Panel &panel, fennick::MainQueue &mainQueue, const fennick::Clock &clock)
      : item_(item), panel_(panel), mainQueue_(mainQueue), clock_(clock) {}

  // The icon was clicked.
  void togglePopover();
  // The person went on to something else while the panel was open: it closes. If that was a click on the
  // icon, the click arrives after this and opens nothing.
  void panelLeft();
  void show() { panel_.open(); }
  void close() { panel_.close(); }

  // A file has arrived: shows the check mark until `kFlashLength` after the last call.
  void flash();

private:
  Item &item_;
  Panel &panel_;
  fennick::MainQueue &mainQueue_;
  const fennick::Clock &clock_;
  fennick::Lifetime flash_; // the way back to the normal icon; the latest one counts
  std::optional<fennick::Uptime> leftAt_;
};

} // namespace quarrow
