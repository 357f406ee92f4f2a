#pragma once

#include "FennickCore/Platform/System/KeyboardInput.h"

#include <QSocketNotifier>

#include <functional>
#include <string_view>
#include <utility>

namespace quarrow {

// The keyboard of the terminal that the program was started in, on Qt's event loop. Off where there is none
// and while the program is in the background. Main thread, while there is an application object.
class TerminalKeyboard {
public:
  TerminalKeyboard();

  [[nodiscard]] bool isOn() const { return waiting_.isEnabled(); }
  // `typed` gets what is typed from now on.
  void onTyped(std::function<void(std::string_view)> typed) { typed_ = std::move(typed); }

  // Leaves the terminal as it was found: the program is about to be stopped or ended.
  void pause();
  // The program may be in the foreground again.
  void resume();

private:
  void readKeys();

  fennick::KeyboardInput input_;
  QSocketNotifier waiting_;
  std::function<void(std::string_view)> typed_;
};

} // namespace quarrow
