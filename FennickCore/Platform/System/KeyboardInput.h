#pragma once

#include <memory>
#include <string>

namespace fennick {

// Reads single keys from the terminal on standard input as they are pressed, without echo. Ctrl-C and similar
// keys still send signals. The terminal is changed only while this program is in its foreground. Main thread;
// one object per process.
class KeyboardInput {
public:
  KeyboardInput();
  ~KeyboardInput(); // restores the terminal
  KeyboardInput(const KeyboardInput &) = delete;
  KeyboardInput &operator=(const KeyboardInput &) = delete;

  // Switches the terminal to single keys. Returns false and changes nothing if standard input is not a
  // terminal or the program is in the background. Call it again after the program was stopped and continued.
  [[nodiscard]] bool take();
  // Restores the modes that the terminal had before the first `take`. Does nothing without a terminal.
  void giveBack();

  // Standard input, which is readable when a key was pressed.
  [[nodiscard]] static int descriptor();
  // Returns what was typed since the last call and waits at most for the first key. Returns an empty text if
  // the terminal is gone or the program is in the background.
  [[nodiscard]] static std::string read();

private:
  struct Modes;
  std::unique_ptr<Modes> before_; // set while the terminal is in single-key mode
};

} // namespace fennick
