#pragma once

#include "FennickCore/Platform/System/KeyboardInput.h"

#include <QSocketNotifier>

#include <functional>
#include <string_view>
#include <utility>

namespace quarrow {

// The keyboard of the terminal in which the program was started, on Qt's event loop. Inactive without a
// terminal and while the program is in the background. Main thread, while there is an application object.
class TerminalKeyboard {
public:
  TerminalKeyboard();

  [[nodiscard]] bool isOn() const { return waiting_.isEnabled(); }
  // Passes what is typed from now on to `typed`.
  void onTyped(std::function<void(std::string_view)> typed) { typed_ = std::move(typed); }

  // Restores the terminal because the program is about to be stopped or ended.
  void pause();
  // Activates the keyboard if the program is in the foreground again.
  void resume();

private:
  void readKeys();

  fennick::KeyboardInput input_;
  QSocketNotifier waiting_;
  std::function<void(std::string_view)> typed_;
};

} // namespace quarrow
