#include "FennickCore/Platform/System/KeyboardInput.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <termios.h>
#include <unistd.h>

#include <array>
#include <tuple>

namespace fennick {

namespace {

// Returns false as well if standard input is not a terminal, or not the controlling one.
bool isInForeground() { return ::tcgetpgrp(STDIN_FILENO) == ::getpgrp(); }

} // namespace

struct KeyboardInput::Modes {
  termios value;
};

KeyboardInput::KeyboardInput() = default;
KeyboardInput::~KeyboardInput() { giveBack(); }

bool KeyboardInput::take() {
  Modes modes{};
  if (!isInForeground() || ::tcgetattr(STDIN_FILENO, &modes.value) != 0)
    return false;
  if (!before_)
    before_ = std::make_unique<Modes>(modes);
  modes.value.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  modes.value.c_cc[VMIN] = 1;
  modes.value.c_cc[VTIME] = 0;
  return ::tcsetattr(STDIN_FILENO, TCSANOW, &modes.value) == 0;
}

void KeyboardInput::giveBack() {
  if (before_ && isInForeground())
    std::ignore = ::tcsetattr(STDIN_FILENO, TCSANOW, &before_->value);
  before_.reset();
}

int KeyboardInput::descriptor() { return STDIN_FILENO; }

std::string KeyboardInput::read() {
  std::array<char, 64> keys{};
  if (!isInForeground()) // reading would stop the program
    return {};
  const auto count = retried([&] { return ::read(STDIN_FILENO, keys.data(), keys.size()); });
  return {keys.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

} // namespace fennick
