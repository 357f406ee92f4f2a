#include "Quarrow/Terminal/TerminalKeyboard.h"

#include <QObject>

namespace quarrow {

TerminalKeyboard::TerminalKeyboard() : waiting_(fennick::KeyboardInput::descriptor(), QSocketNotifier::Read) {
  QObject::connect(&waiting_, &QSocketNotifier::activated, &waiting_, [this] { readKeys(); });
  resume();
}

void TerminalKeyboard::pause() {
  waiting_.setEnabled(false);
  input_.giveBack();
}

void TerminalKeyboard::resume() { waiting_.setEnabled(input_.take()); }

void TerminalKeyboard::readKeys() {
  const auto keys = fennick::KeyboardInput::read();
  if (keys.empty()) // the terminal is gone, or belongs to another program
    return waiting_.setEnabled(false);
  if (typed_)
    typed_(keys);
}

} // namespace quarrow
