#pragma once

#include "FennickCore/Network/LANAddress.h"
#include "Quarrow/Terminal/Report.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quarrow {

// Maps keys in the terminal to commands, and asks before the access key is reset. Main thread.
class TerminalKeys {
public:
  struct Actions {
    std::function<void()> showCode;
    std::function<void()> nextAddress;
    std::function<void()> resetKey; // after the confirmation
    std::function<void()> openFolder;
    std::function<void()> quit;
  };

  // `report` outlives the object.
  TerminalKeys(Actions actions, Report &report);

  // Handles keys as a terminal sends them. An escape character with what follows is a function key and
  // ignored; any key but "y" answers the question with no.
  void typed(std::string_view keys);

private:
  void press(char key);
  void answer(char key);
  void obey(char key);

  const Actions actions_;
  Report &report_;
  bool asking_ = false; // whether the question about the key is open
};

// Returns the interface after that of `present` in the order of `addresses`, starting again after the last
// one, or nullopt if there is no other.
[[nodiscard]] std::optional<std::string> nextInterface(std::span<const fennick::LANAddress> addresses,
                                                       const std::optional<fennick::LANAddress> &present);

} // namespace quarrow
