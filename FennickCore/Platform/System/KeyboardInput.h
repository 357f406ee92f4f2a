#pragma once

#include <memory>
#include <string>

namespace fennick {

// Single keys from the terminal on standard input: read as they are pressed, not shown. Ctrl-C and its like
// stay signals. A terminal belongs to the program in its foreground and is touched only while that is this
// one. Main thread; one for the process.
class KeyboardInput {
public:
  KeyboardInput();
  ~KeyboardInput(); // gives the terminal back
  KeyboardInput(const KeyboardInput &) = delete;
  KeyboardInput &operator=(const KeyboardInput &) = delete;

  // Sets the terminal to single keys. False, and nothing is touched, where standard input is no terminal or
  // the program is in the background. Again after the program was stopped: others used the terminal
  // meanwhile.
  [[nodiscard]] bool take();
  // Sets the terminal to what it was before the first `take`. Nothing to do without one.
  void giveBack();

  // Becomes readable when a key is pressed; standard input's own.
  [[nodiscard]] static int descriptor();
  // What was typed since the last call, without waiting beyond the first key; empty when the terminal is gone
  // or the program is in the background.
  [[nodiscard]] static std::string read();

private:
  struct Modes;
  std::unique_ptr<Modes> before_; // there while the terminal is taken
};

} // namespace fennick
